// Conversion of a dotted assignment, with a long value against a short one. The rates are characters a
// second; the time of a character must not grow with the length.
#include "remote_config/assignment.h"
#include "middleware/base/strings.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

constexpr std::int64_t LONG_VALUE = 64 * 1024; // characters
constexpr std::int64_t SHORT_VALUE = 1024;

void convert(benchmark::State& state) {
    // Ordinary configuration text: now and then a character that must be escaped.
    constexpr std::string_view PATTERN = "a value of ordinary length & <content>; ";
    std::string text = "domain_route.participant_1.domain_id=";
    const std::size_t length = text.size() + static_cast<std::size_t>(state.range(0));
    while (text.size() < length) {
        text += PATTERN.substr(0, length - text.size());
    }
    for (auto _ : state) {
        const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(text.c_str()));
        if (snippet == nullptr) {
            state.SkipWithError("an assignment was refused");
            break;
        }
        benchmark::DoNotOptimize(snippet.get());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(convert)->Name("assignment/ours")->Arg(LONG_VALUE);
BENCHMARK(convert)->Name("assignment/baseline")->Arg(SHORT_VALUE);

} // namespace
