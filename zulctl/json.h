// JSON on one line, valid whatever the bytes in it, and shown by a terminal as it is: bytes that are no UTF-8
// become U+FFFD, every control character is escaped.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zul::ctl {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json);

} // namespace zul::ctl
