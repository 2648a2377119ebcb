// An update of the practice router with many new properties against one with a quarter of them. The time must
// not grow faster than their number.
#include "practice_router/actions/configuration.h"
#include "product/product_info.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

using namespace zul::practice;

constexpr std::int64_t MANY = 8000; // properties
constexpr std::int64_t FEW = 2000;

void update(benchmark::State& state, std::int64_t properties) {
    std::string snippet = "<domain_route><property><value>";
    for (std::int64_t i = 0; i < properties; ++i) {
        snippet += "<element><name>p" + std::to_string(i) + "</name><value>1</value></element>";
    }
    snippet += "</value></property></domain_route>";
    Configuration configuration;
    for (auto _ : state) {
        state.PauseTiming();
        // The second update adds to the property that the first has made, one element after the other.
        configuration.loadFirst(*ROUTER_getProductInfo()->builtinDefaultConfiguration);
        configuration.update("DefaultDomainRoute",
                             "<domain_route><property><value/></property></domain_route>");
        state.ResumeTiming();
        const Answer answer = configuration.update("DefaultDomainRoute", snippet);
        if (answer.kind != ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK) {
            state.SkipWithError(answer.text.c_str());
            break;
        }
    }
}

BENCHMARK_CAPTURE(update, ours, MANY);
BENCHMARK_CAPTURE(update, baseline, FEW);

} // namespace
