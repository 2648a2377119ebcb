// What becomes of an unfinished line when a read fails, is interrupted, would block, or ends.
#include "shell/line_reader.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

// What one read returns: some bytes, an error, or the end.
struct Step {
    std::string bytes{};
    int error = 0;
};
using Steps = std::vector<Step>;

ssize_t readStep(void* cookie, char* buffer, std::size_t) {
    auto& steps = *static_cast<Steps*>(cookie);
    const Step step = steps.empty() ? Step{} : steps.front();
    if (!steps.empty()) {
        steps.erase(steps.begin());
    }
    errno = step.error;
    return step.error != 0 ? -1 : step.bytes.copy(buffer, step.bytes.size());
}

// The lines read, and a word for each read without one, up to the second end of input in a row.
std::vector<std::string> readAll(std::FILE* input) {
    ROUTERShellLineReader reader{.input = input};
    std::vector<std::string> all;
    char line[ROUTER_SHELL_LINE_SIZE] = "";
    const char* const words[] = {line, "(interrupted)", "(end)", "(failed)"};
    while (all.size() < 2 || all.back() != "(end)" || all.end()[-2] != "(end)") {
        all.emplace_back(words[ROUTERShellLineReader_read(&reader, line)]);
    }
    all.resize(all.size() - 2);
    return all;
}

TEST(LineReader, EndsALastLineAtTheEndOfInputOnly) {
    const std::string longest(4095, 'x');
    const std::tuple<const char*, Steps, std::vector<std::string>> cases[] = {
        {"end", {{"get r1\nenable r1"}}, {"get r1\n", "enable r1"}},
        {"end, twice", {{"get"}, {}, {" r1\n"}, {}, {"hello\n"}}, {"get", " r1\n", "(end)", "hello\n"}},
        {"parts", {{"en"}, {"able"}, {"\nget\n"}}, {"enable\n", "get\n"}},
        {"signals",
         {{"disable r1"}, {"", EINTR}, {" Plant::"}, {"", EINTR}, {"Fast\n"}},
         {"(interrupted)", "(interrupted)", "disable r1 Plant::Fast\n"}},
        // Nothing of the cut line runs, neither what came before the error nor what comes after it.
        {"error",
         {{"get\ndisable r1"}, {"", EIO}, {" Plant"}, {"", EIO}, {"::Fast\nhello\nget"}, {"", ECONNRESET}},
         {"get\n", "(failed)", "(failed)", "hello\n", "(failed)"}},
        {"error, signal, end",
         {{"disable r1"}, {"", EIO}, {"", EINTR}, {"x"}, {}, {"get\n"}},
         {"(failed)", "(interrupted)", "(end)", "get\n"}},
        {"error between lines",
         {{"get\n"}, {"", EIO}, {"", EIO}, {"hello\n"}},
         {"get\n", "(failed)", "(failed)", "hello\n"}},
        {"long",
         {{longest}, {"\n" + longest.substr(1)}, {"yz\n"}},
         {longest, "\n", longest.substr(1) + "y", "z\n"}},
    };
    for (const auto& [name, script, expected] : cases) {
        Steps steps = script;
        std::FILE* input =
            fopencookie(&steps, "r", {.read = readStep, .write = nullptr, .seek = nullptr, .close = nullptr});
        EXPECT_EQ(readAll(input), expected) << name;
        std::fclose(input);
    }
}

} // namespace
