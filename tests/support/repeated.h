// Long texts.
#pragma once

#include <string>
#include <string_view>

// The text so many times, with the number of the time where it has a #.
inline std::string repeated(std::string_view text, std::size_t count) {
    const std::size_t mark = text.find('#');
    std::string all;
    for (std::size_t i = 0; i < count; ++i) {
        all += text.substr(0, mark);
        if (mark != text.npos) {
            all.append(std::to_string(i)).append(text.substr(mark + 1));
        }
    }
    return all;
}
