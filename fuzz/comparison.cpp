// Two documents of any bytes, with a NUL between them: the first is the same as itself; they differ in both
// directions or in none; a plan from the first to the second leads there or is refused.
#include "plan/compare/planner.h"
#include "plan/document/entity.h"
#include "plan/document/text.h"

#include <libxml/tree.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace zul::plan;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

XmlDocument parse(std::string_view text) {
    try {
        return parseXml(text, {});
    } catch (const Refusal&) {
        return nullptr;
    }
}

std::size_t count(const XmlDocument& from, const XmlDocument& to, const std::string& name) {
    return compare(from.get(), to.get(), name).size();
}

void checkPlan(const XmlDocument& from, const XmlDocument& to, const std::string& name) {
    const XmlDocument played = copyXml(from.get());
    Plan plan;
    try {
        plan = makePlan(from.get(), to.get(), name);
    } catch (const Refusal&) {
        return;
    }
    for (const Step& step : plan) {
        play(step, played.get(), name);
    }
    require(count(played, to, name) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const std::size_t cut = bytes.find('\0');
    const XmlDocument one = parse(bytes.substr(0, cut));
    const XmlDocument other = cut != std::string_view::npos ? parse(bytes.substr(cut + 1)) : nullptr;
    const auto names = one != nullptr ? configurationsOf(one.get()) : std::vector<std::string>{};
    if (names.empty()) {
        return 0;
    }
    const std::string& name = names.front();
    require(count(one, one, name) == 0);
    if (other != nullptr && findService(other.get(), name) != nullptr) {
        require((count(one, other, name) == 0) == (count(other, one, name) == 0));
        checkPlan(one, other, name);
    }
    return 0;
}
