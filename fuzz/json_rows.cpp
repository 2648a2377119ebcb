// Any bytes in what routers say: each row is one line that a terminal shows as it is, is valid JSON, and says
// what it was given, except for what is no UTF-8.
#include "zulctl/json_rows.h"

#include "middleware/base/terminal_text.h"

#include <cstdlib>
#include <fuzzer/FuzzedDataProvider.h>
#include <nlohmann/json.hpp>

namespace {

using Json = nlohmann::json;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

Json parse(const std::string& line) {
    ZULTerminalEscape escape{};
    std::string_view rest = line;
    require(ZULTerminal_takePiece(rest, escape) == line && line.find_first_of("\n\t") == std::string::npos);
    return Json::parse(line); // throws where it is none
}

void requireSame(const Json& value, const std::string& text) {
    const auto& written = value.get_ref<const std::string&>();
    require(written == text || written.find("\xEF\xBF\xBD") != std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    const auto text = [&input] {
        return input.ConsumeRandomLengthString();
    };
    const zul::fleet::Result result{.router = text(),
                                    .command = ZUL_ROUTING_SERVICE_COMMAND_GET,
                                    .entity = text(),
                                    .message = text(),
                                    .guid = text()};
    Json row = parse(zul::ctl::jsonRow(result));
    requireSame(row.at("router"), result.router);
    requireSame(row.at("entity"), result.entity);
    requireSame(row.at("message"), result.message);

    const zul::fleet::RouterRow router{.name = text(), .participant = text(), .host = text(), .guid = text()};
    row = parse(zul::ctl::jsonRow(router));
    requireSame(row.at("participant"), router.participant);
    requireSame(row.at("host"), router.host);

    const zul::fleet::Cause cause{.text = text(), .evidence = {text(), text()}};
    row = parse(zul::ctl::jsonRow(router.name, cause));
    requireSame(row.at("router"), router.name);
    requireSame(row.at("text"), cause.text);
    requireSame(row.at("evidence").at(1), cause.evidence.at(1));

    const zul::ctl::EntityRow entity{
        .router = text(), .path = text(), .kind = text(), .name = text(), .state = "enabled"};
    row = parse(zul::ctl::jsonRow(entity));
    requireSame(row.at("path"), entity.path);
    requireSame(row.at("name"), entity.name);
    return 0;
}
