// Differences, plans and how an apply ended.
#include "plan/document/text.h"
#include "zulctl/json.h"
#include "zulctl/output.h"

namespace zul::ctl {

namespace {

constexpr std::size_t MAX_XML = 200; // bytes of it in a row for people

fleet::CommandKind kindOf(plan::Step::Kind kind) {
    constexpr fleet::CommandKind KINDS[] = {
        ZUL_ROUTING_SERVICE_COMMAND_UPDATE,  ZUL_ROUTING_SERVICE_COMMAND_CREATE,
        ZUL_ROUTING_SERVICE_COMMAND_DELETE,  ZUL_ROUTING_SERVICE_COMMAND_ENABLE,
        ZUL_ROUTING_SERVICE_COMMAND_DISABLE, ZUL_ROUTING_SERVICE_COMMAND_LOAD};
    return KINDS[static_cast<std::size_t>(kind)];
}

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
        writeLine(dump({{"path", difference.path},
                        {"change", plan::nameOf(difference.change)},
                        {"from", difference.from},
                        {"to", difference.to}}));
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
        const std::string command = nameOf(kindOf(step.kind));
        if (isJson_) {
            writeLine(dump({{"plan", purpose},
                            {"step", number},
                            {"router", router},
                            {"command", command},
                            {"entity", step.entity},
                            {"xml", step.xml}}));
            continue;
        }
        const bool isInside = step.kind == plan::Step::Kind::CREATE;
        writeLine(oneLine(std::to_string(number) + ". " + command + (isInside ? " in " : " ") +
                          (step.entity.empty() ? "the router" : step.entity) +
                          (step.xml.empty() ? "" : ": " + plan::shortened(step.xml, MAX_XML))));
    }
}

void Output::print(const ApplyEnd& end) {
    if (!isJson_) {
        writeLine(oneLine(end.router + ": " + end.message));
        return;
    }
    writeLine(dump({{"router", end.router},
                    {"outcome", end.outcome},
                    {"message", end.message},
                    {"backup", end.backup}}));
}

} // namespace zul::ctl
