// Splitting the text of an answer into what one response sample can carry.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace zul::practice {

// Parts of at most 4096 characters, in order, at least one and at least `atLeast`, of about equal length if
// `atLeast` asks for more than are needed; there may be empty ones. No UTF-8 character is cut in two; in text
// that is no UTF-8 cuts may fall anywhere. The parts borrow from `text`.
std::vector<std::string_view> answerParts(std::string_view text, std::size_t atLeast);

} // namespace zul::practice
