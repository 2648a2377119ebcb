// The form of each element as a table of attributes and children. What depends on other definitions is
// checked by the reader, not here.
#include "middleware/xml/type_grammar.h"

#include <algorithm>

namespace zul::xml {

namespace {

#define ZUL_XML_TYPE_OPTIONS "nonBasicTypeName stringMaxLength sequenceMaxLength arrayDimensions"

// Lists are words with one blank between them.
struct ElementForm {
    std::string_view tag;
    std::string_view required; // attributes
    std::string_view optional; // attributes
    std::string_view children;
};
constexpr std::string_view ANY = "*"; // children are looked at one by one, when they are read
constexpr ElementForm ELEMENTS[] = {
    {"types", "", "", ANY},
    {"module", "name", "", ANY},
    {"include", "file", "", ""},
    {"const", "name type value", "nonBasicTypeName", ""},
    {"forward_dcl", "name kind", "", ""},
    {"struct", "name", "baseType extensibility nested", "member"},
    {"member", "name type", ZUL_XML_TYPE_OPTIONS " key optional id visibility", ""},
    {"union", "name", "extensibility nested", "discriminator case"},
    {"discriminator", "type", "nonBasicTypeName key", ""},
    {"case", "", "", "caseDiscriminator member"},
    {"caseDiscriminator", "value", "", ""},
    {"enum", "name", "extensibility", "enumerator"},
    {"enumerator", "name", "value", ""},
    {"typedef", "name type", ZUL_XML_TYPE_OPTIONS, ""},
    {"valuetype", "name", "baseType modifier extensibility", "member"},
    {"sparse_valuetype", "name", "baseType modifier", "member"},
};
#undef ZUL_XML_TYPE_OPTIONS

// Attributes whose value is one of a few words.
struct AttributeWords {
    std::string_view attribute;
    std::string_view words;
};
constexpr AttributeWords WORDS[] = {
    {"key", "true false"},
    {"optional", "true false"},
    {"nested", "true false"},
    {"visibility", "public private"},
    {"modifier", "none custom abstract truncatable"},
    {"extensibility", "final appendable extensible mutable"},
    {"kind", "struct union enum valuetype sparse_valuetype"},
};

// Calls `visit` for each word of a list while it returns true.
template <class Visit>
bool eachWord(std::string_view list, const Visit& visit) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(' '), list.size());
        if (!visit(list.substr(0, end))) {
            return false;
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return true;
}

bool contains(std::string_view list, std::string_view word) {
    return !eachWord(list, [word](std::string_view each) { return each != word; });
}

// Letters, digits, "_" and "-", not starting with a digit or "-".
bool isName(std::string_view text) {
    const auto isLetter = [](char c) {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
    };
    const auto isNamePart = [isLetter](char c) {
        return isLetter(c) || (c >= '0' && c <= '9') || c == '-';
    };
    return !text.empty() && isLetter(text.front()) && std::all_of(text.begin(), text.end(), isNamePart);
}

std::string inBrackets(std::string_view tag) {
    return "<" + std::string(tag) + ">";
}

void checkAttribute(const TypeElement& element, const ElementForm& form, const ZULXMLAttribute& given) {
    const std::string_view name = given.name;
    const std::string_view value = given.value;
    if (!contains(form.required, name) && !contains(form.optional, name)) {
        throw ZULXMLError{element.line, inBrackets(form.tag) + " has no attribute '" + given.name + "'"};
    }
    for (const AttributeWords& row : WORDS) {
        if (row.attribute == name && !contains(row.words, value)) {
            throw ZULXMLError{element.line, std::string("the attribute ") + given.name + " is '" +
                                                given.value +
                                                "'; it must be one of: " + std::string(row.words)};
        }
    }
    if (name == "name" && !isName(value)) {
        throw ZULXMLError{element.line,
                          std::string("'") + given.value + "' is no name; use letters, digits, '_' and '-'"};
    }
}

} // namespace

void checkForm(const TypeElement& element) {
    const std::string_view tag = element.tag;
    const auto* form = std::ranges::find(ELEMENTS, tag, &ElementForm::tag);
    if (form == std::end(ELEMENTS)) {
        throw ZULXMLError{element.line, inBrackets(tag) + " has no place in a types section"};
    }
    if (element.holdsText) {
        throw ZULXMLError{element.line, inBrackets(tag) + " must not hold text"};
    }
    eachWord(form->required, [&](std::string_view name) {
        if (!hasAttribute(element, name)) {
            throw ZULXMLError{element.line,
                              inBrackets(tag) + " needs the attribute '" + std::string(name) + "'"};
        }
        return true;
    });
    for (const ZULXMLAttribute& given : element.attributes) {
        checkAttribute(element, *form, given);
    }
    for (const TypeElement* child = element.first; child != nullptr; child = child->next) {
        if (form->children != ANY && !contains(form->children, child->tag)) {
            throw ZULXMLError{child->line, inBrackets(child->tag) + " cannot stand in " + inBrackets(tag)};
        }
    }
}

} // namespace zul::xml
