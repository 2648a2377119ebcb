// The members of a row keep the order in which they are written here.
#include "zulctl/json_rows.h"

#include "zulctl/json.h"

#include <algorithm>

namespace zul::ctl {

namespace {

const char* nameOf(fleet::Status status) {
    static constexpr const char* NAMES[] = {"ok", "error", "not_found", "no_answer", "interrupted"};
    return NAMES[static_cast<std::size_t>(status)];
}

} // namespace

std::string nameOf(fleet::CommandKind kind) {
    std::string name = admin::commandName(kind);
    std::ranges::transform(name, name.begin(), [](char c) {
        return c == '_' ? '-' : static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    });
    return name;
}

fleet::CommandKind kindOf(plan::Step::Kind kind) {
    constexpr fleet::CommandKind KINDS[] = {
        ZUL_ROUTING_SERVICE_COMMAND_UPDATE,  ZUL_ROUTING_SERVICE_COMMAND_CREATE,
        ZUL_ROUTING_SERVICE_COMMAND_DELETE,  ZUL_ROUTING_SERVICE_COMMAND_ENABLE,
        ZUL_ROUTING_SERVICE_COMMAND_DISABLE, ZUL_ROUTING_SERVICE_COMMAND_LOAD};
    return KINDS[static_cast<std::size_t>(kind)];
}

std::string jsonRow(const fleet::Result& result) {
    return dump({{"router", result.router},
                 {"command", nameOf(result.command)},
                 {"entity", result.entity},
                 {"status", nameOf(result.status)},
                 {"message", result.message},
                 {"parts", result.parts},
                 {"ms", result.took.count()},
                 {"guid", result.guid}});
}

std::string jsonRow(const fleet::RouterRow& row) {
    return dump({{"router", row.name},
                 {"domain", row.domain},
                 {"product", fleet::nameOf(row.product)},
                 {"participant", row.participant},
                 {"host", row.host},
                 {"guid", row.guid},
                 {"answers", row.answers},
                 {"duplicate", row.isDuplicate}});
}

std::string jsonRow(const std::string& router, const fleet::Cause& cause) {
    return dump({{"router", router},
                 {"cause", fleet::nameOf(cause.kind)},
                 {"text", cause.text},
                 {"evidence", cause.evidence}});
}

std::string jsonRow(const EntityRow& row) {
    return dump({{"router", row.router},
                 {"guid", row.guid},
                 {"path", row.path},
                 {"kind", row.kind},
                 {"name", row.name},
                 {"state", row.state}});
}

std::string jsonRow(const std::string& file, int line, const plan::Finding& finding) {
    return dump({{"file", file}, {"line", line}, {"message", finding.message}});
}

std::string jsonRow(const plan::Difference& difference) {
    return dump({{"path", difference.path},
                 {"change", plan::nameOf(difference.change)},
                 {"from", difference.from},
                 {"to", difference.to}});
}

std::string jsonRow(const ApplyEnd& end) {
    return dump(
        {{"router", end.router}, {"outcome", end.outcome}, {"message", end.message}, {"backup", end.backup}});
}

std::string jsonRow(const std::string& router, const plan::Step& step, const char* purpose,
                    std::size_t number) {
    return dump({{"plan", purpose},
                 {"step", number},
                 {"router", router},
                 {"command", nameOf(kindOf(step.kind))},
                 {"entity", step.entity},
                 {"xml", step.xml}});
}

} // namespace zul::ctl
