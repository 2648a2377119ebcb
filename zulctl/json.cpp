// The library escapes what JSON demands. DEL and C1 are left to us; they can only be inside strings.
#include "zulctl/json.h"

#include <array>
#include <cstdio>

namespace zul::ctl {

namespace {

constexpr unsigned char DEL = 0x7F;
constexpr unsigned char C1_LEAD = 0xC2; // of U+0080 to U+00BF, whose second byte is the code
constexpr unsigned char C1_LAST = 0x9F;

} // namespace

std::string dump(const Json& json) {
    const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        auto code = static_cast<unsigned char>(text[i]);
        const auto next = static_cast<unsigned char>(i + 1 < text.size() ? text[i + 1] : 0);
        const bool isC1 = code == C1_LEAD && next <= C1_LAST;
        if (code != DEL && !isC1) {
            line += text[i];
            continue;
        }
        if (isC1) {
            code = next;
            ++i;
        }
        std::array<char, 8> escape{};
        std::snprintf(escape.data(), escape.size(), "\\u%04x", static_cast<unsigned>(code));
        line += escape.data();
    }
    return line;
}

} // namespace zul::ctl
