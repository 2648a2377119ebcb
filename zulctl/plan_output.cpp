// Differences, plans and how an apply ended.
#include "plan/document/text.h"
#include "zulctl/output.h"

namespace zul::ctl {

namespace {

constexpr std::size_t MAX_XML = 200; // bytes of it in a row for people

} // namespace

fleet::Command commandOf(const plan::Step& step) {
    return {.kind = kindOf(step.kind),
            .name = step.entity,
            .url = step.xml.empty() ? "" : fleet::inlineUrl(step.xml)};
}

void Output::say(const std::string& sentence) {
    if (!isJson_) {
        writeLine(oneLine(sentence));
    }
}

void Output::print(const plan::Difference& difference) {
    if (isJson_) {
        writeLine(jsonRow(difference));
        return;
    }
    const bool hasBoth = !difference.from.empty() && !difference.to.empty();
    const std::string value =
        hasBoth ? difference.from + " -> " + difference.to : difference.from + difference.to;
    writeLine(oneLine(std::string(plan::nameOf(difference.change)) + " " + difference.path +
                      (value.empty() ? "" : ": " + value)));
}

void Output::print(const std::string& router, const plan::Plan& plan, const char* purpose) {
    std::size_t number = 0;
    for (const plan::Step& step : plan) {
        ++number;
        if (isJson_) {
            writeLine(jsonRow(router, step, purpose, number));
            continue;
        }
        const bool isInside = step.kind == plan::Step::Kind::CREATE;
        writeLine(oneLine(std::to_string(number) + ". " + nameOf(kindOf(step.kind)) +
                          (isInside ? " in " : " ") + (step.entity.empty() ? "the router" : step.entity) +
                          (step.xml.empty() ? "" : ": " + plan::shortened(step.xml, MAX_XML))));
    }
}

void Output::print(const ApplyEnd& end) {
    if (!isJson_) {
        writeLine(oneLine(end.router + ": " + end.message));
        return;
    }
    writeLine(jsonRow(end));
}

} // namespace zul::ctl
