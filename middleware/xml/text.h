// Blanks of XML text: space, tab and line ends.
#pragma once

#include <string_view>

namespace zul::xml {

// The text without the blanks around it.
inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view BLANKS = " \t\r\n";
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? text.substr(0, 0)
                                           : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

} // namespace zul::xml
