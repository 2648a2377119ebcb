// Values of elements and attributes: the one way in which each is compared, however it is written, and what
// counts where one is left out. A quality of service has no default here: a base profile may differ from
// the standard.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

namespace zul::plan {

enum class ValueForm { TEXT, INTEGER, DURATION, PATTERNS, WORDS, EXTENSIBILITY };

struct ValueRule {
    ValueForm form = ValueForm::TEXT;
    const char* absent = nullptr; // the value that counts where there is none; null: no value does
    bool isPresent = false;       // an empty one is not the same as none
};

// What holds for an element `tag` in an element `parent`.
const ValueRule& ruleOfElement(std::string_view tag, std::string_view parent);
const ValueRule& ruleOfAttribute(std::string_view name);

// The text in which a value is compared; of a DURATION see durationOf.
std::string canonical(ValueForm form, std::string_view text);
// "0.25 s" or "infinite".
std::string durationOf(const xmlNode* element);
// The two parts of such a duration; both empty when it is none.
struct DurationParts {
    std::string sec;
    std::string nanosec;
};
DurationParts splitDuration(std::string_view duration);

} // namespace zul::plan
