// JSON on one line, valid whatever the bytes: those that are no UTF-8 become U+FFFD.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zul::ctl {

using Json = nlohmann::ordered_json;

inline std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace zul::ctl
