// The answer to one request: its outcome and its text. The text is UTF-8 and has no line feed at its end
// unless it is a document. What went well may be of any length; why something failed is one line within a
// bound, whatever names and texts from outside it quotes.
#pragma once

#include "admin_types/modules.h"
#include "plan/document/text.h"

#include <cstddef>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace zul::practice {

struct Answer {
    ZUL_RoutingService_Administration_CommandResponseKind kind;
    std::string text;

    static Answer ok(std::string text) { return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK, std::move(text)}; }
    static Answer error(std::string_view text) {
        return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ERROR, plan::shortened(text, plan::MAX_FAILURE)};
    }
    static Answer notFound(std::string_view text) {
        return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND,
                plan::shortened(text, plan::MAX_FAILURE)};
    }
};

// Runs an operation; what it throws becomes an answer. An operation that throws must have changed nothing.
template <class Operation>
auto answered(const Operation& operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (const plan::Refusal& refusal) {
        return refusal.isMissing ? Answer::notFound(refusal.why) : Answer::error(refusal.why);
    } catch (const std::bad_alloc&) {
        return Answer::error("out of memory");
    }
}

// The text of an answer as responses carry it: parts of at most 4096 characters, in order, at least one and
// at least `atLeast`, of about equal length if `atLeast` asks for more than are needed; there may be empty
// ones. No UTF-8 character is cut in two; in text that is not UTF-8 cuts may fall anywhere. The parts borrow
// from `text`.
std::vector<std::string_view> answerParts(std::string_view text, std::size_t atLeast);

} // namespace zul::practice
