// A prefix is shown as the three words that it is: host, process, participant.
#include "fleet/identity.h"

#include <algorithm>

namespace zul::fleet {

Guid guidOf(const std::uint8_t (&value)[16]) {
    return std::to_array(value);
}

GuidPrefix prefixOf(const Guid& guid) {
    GuidPrefix prefix{};
    std::copy_n(guid.begin(), prefix.size(), prefix.begin());
    return prefix;
}

std::string textOf(const GuidPrefix& prefix) {
    constexpr const char* DIGITS = "0123456789abcdef";
    constexpr std::size_t WORD = 4;
    std::string text;
    for (std::size_t i = 0; i < prefix.size(); ++i) {
        if (i > 0 && i % WORD == 0) {
            text += '.';
        }
        text += DIGITS[prefix[i] >> 4];
        text += DIGITS[prefix[i] & 0xF];
    }
    return text;
}

} // namespace zul::fleet
