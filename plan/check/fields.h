// What the texts and attributes of a document may say, as one table.
#pragma once

#include "plan/check/values.h"

#include <libxml/tree.h>

#include <string>
#include <string_view>
#include <vector>

namespace zul::plan {

enum class Form {
    INTEGER,
    WORDS, // one of a few words
    FLAGS, // words with "|" between them, in any case
    NAME,  // a name that the document defines
    BASE64,
    TEXT,      // any, without elements inside
    NEEDED,    // any but an empty one
    ELEMENTS,  // elements called element, and no text
    PAIR,      // name, value and perhaps propagate
    REFERENCE, // the name of another element
};

enum class Target { PROFILE, ADAPTER, TRANSFORMATION, TYPE };

struct Field {
    // Tags from the outside in with "/" between them, as many as it takes; then "@" and an attribute. Of the
    // rows that fit an element the first counts.
    std::string_view place;
    Form form = Form::TEXT;
    Target target = Target::PROFILE; // of a REFERENCE
    std::int64_t least = INTEGER_MIN;
    std::int64_t most = INTEGER_MAX; // of a text: its longest, in characters
    std::string_view words = {};     // with a blank between them; of an INTEGER one that may stand for it
    std::int64_t word = INTEGER_MIN; // and the number that the word means
};

// The rows for elements of one tag.
struct FieldsOfTag {
    std::vector<const Field*> contents;
    std::vector<const Field*> attributes;
    // The row for the content of that element; null when there is none.
    const Field* contentOf(const xmlNode* element) const;
};
// Null when there is none for a tag.
const FieldsOfTag* findFields(std::string_view tag);

// The tag that a place ends with, and the attribute after it.
std::string_view tagIn(std::string_view place);
std::string_view attributeIn(std::string_view place);

// What was expected where the value, or the content of an element, is not of the form; empty where it is.
// References are not looked at.
std::string expectedInstead(const Field& field, std::string_view value);
std::string expectedInstead(const Field& field, const xmlNode* element);

} // namespace zul::plan
