// Each part takes its share of what is left, so that the parts are of about equal length.
#include "practice_router/actions/answer.h"

#include <algorithm>

namespace zul::practice {

using namespace plan;

std::vector<std::string_view> answerParts(std::string_view text, std::size_t atLeast) {
    std::vector<std::string_view> parts;
    do {
        const std::size_t missing = atLeast > parts.size() ? atLeast - parts.size() : 1;
        const std::size_t share = std::min<std::size_t>(text.size() / missing, admin::XML_CONTENT_BOUND);
        const std::size_t length = wholeCharacters(text, share);
        parts.push_back(text.substr(0, length));
        text.remove_prefix(length);
    } while (!text.empty() || parts.size() < atLeast);
    return parts;
}

} // namespace zul::practice
