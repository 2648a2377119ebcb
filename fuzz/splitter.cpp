// The splitter leaves at most 256 words, each begun inside the line and ended inside it, in order.
#include "shell/splitter.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <span>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto line =
        std::make_unique<char[]>(size + 1); // of the exact size: the sanitizer sees any byte beyond it
    std::copy_n(data, size, line.get());
    const std::size_t length = std::strlen(line.get());
    const auto words = std::make_unique<char*[]>(ROUTER_SHELL_MAX_WORDS);
    int count = -1;
    ROUTERShell_createArgv(line.get(), words.get(), &count);
    if (count < 0 || count > ROUTER_SHELL_MAX_WORDS) {
        std::abort();
    }
    const char* const end = line.get() + length;
    const char* previous = nullptr;
    for (const char* word : std::span(words.get(), static_cast<std::size_t>(count))) {
        const bool isInside = word >= line.get() && word < end;
        const bool isInOrder = previous == nullptr || word > previous;
        if (!isInside || !isInOrder || *word == '\0' || word + std::strlen(word) > end) {
            std::abort();
        }
        previous = word;
    }
    return 0;
}
