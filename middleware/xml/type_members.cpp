// Types of members from the inside out: the element's word or name, then sequence, then array. Bounds and
// labels may be names of constants.
#include "middleware/xml/text.h"
#include "middleware/xml/type_reader.h"

namespace zul::xml {

// Of a chain with more typedefs than types may have levels, one of them: such types are refused at the end.
const DDS_TypeCode* underlyingType(const DDS_TypeCode* type) {
    for (int level = 0; type != nullptr && type->kind == DDS_TK_ALIAS && level <= TYPE_DEPTH_MAX; ++level) {
        type = type->content;
    }
    return type;
}

// The integer that `text` is, or the value of the constant of a discrete type that it names.
std::optional<Integer> TypeReader::integerOf(Scope scope, std::string_view text) {
    const std::optional<Integer> literal = parseInteger(text);
    const Symbol* symbol = literal ? nullptr : symbols_.resolve(scope, text);
    if (symbol != nullptr && symbol->isWrong) {
        throw Consequence{{0, "the const '" + std::string(text) + "' is wrong itself"}};
    }
    const bool isValue = symbol != nullptr && symbol->kind == SymbolKind::CONSTANT && symbol->isDiscrete;
    return isValue ? std::optional(symbol->value) : literal;
}

// A value of a discrete type: a literal of it, or the name of a constant in its range.
std::optional<Integer> TypeReader::valueOf(const TypeWord& type, Scope scope, std::string_view text) {
    if (const std::optional<Integer> literal = parseLiteral(type, text)) {
        return literal;
    }
    const std::optional<Integer> constant = parseInteger(text) ? std::nullopt : integerOf(scope, text);
    return constant && type.holds(*constant) ? constant : std::nullopt;
}

// A positive number or the name of a constant that is one.
std::uint64_t TypeReader::countOf(Element element, Scope scope, std::string_view text) {
    const std::optional<Integer> value = integerOf(scope, text);
    if (!value || value->negative || value->magnitude == 0 || value->magnitude > COUNT_MAX) {
        fail(element, "the bound '" + std::string(text) + "' must be a number from 1 to " +
                          std::to_string(COUNT_MAX) + " or a const defined before it");
    }
    return value->magnitude;
}

// The value of an attribute that holds a bound; 0 for unbounded, which -1 or no attribute says.
std::uint32_t TypeReader::boundOf(Element element, Scope scope, std::string_view attributeName) {
    const std::string_view text = trimmed(attribute(element, attributeName));
    const bool isUnbounded = !hasAttribute(element, attributeName) || text == "-1";
    return isUnbounded ? 0 : static_cast<std::uint32_t>(countOf(element, scope, text));
}

void TypeReader::addDimensions(Element element, Scope scope, DDS_TypeCode& array) {
    std::string_view list = attribute(element, "arrayDimensions");
    std::uint64_t elements = 1;
    for (bool isLast = false; !isLast;) {
        if (array.dimensions.size() == DIMENSIONS_MAX) {
            fail(element, "the array has more than " + std::to_string(DIMENSIONS_MAX) + " dimensions");
        }
        const std::size_t comma = list.find(',');
        isLast = comma == std::string_view::npos;
        const std::uint64_t count = countOf(element, scope, trimmed(list.substr(0, comma)));
        elements *= count; // below 2^62: both are below 2^31
        if (elements > COUNT_MAX) {
            fail(element, "the array has more than " + std::to_string(COUNT_MAX) + " elements");
        }
        array.dimensions.push_back(static_cast<std::uint32_t>(count));
        list.remove_prefix(isLast ? 0 : comma + 1);
    }
}

const DDS_TypeCode* TypeReader::namedType(Element element, Scope scope, std::string_view attributeName,
                                          bool mustBeDefined) {
    const std::string name(attribute(element, attributeName));
    const Symbol* symbol = symbols_.resolve(scope, name);
    if (symbol == nullptr || symbol->kind != SymbolKind::TYPE) {
        const std::string message =
            "unknown type '" + name + "'; define it, or announce it with forward_dcl, before it is used";
        if (!types_.missing.text.empty()) {
            throw Consequence{{element.line, message}}; // it may be in a file that could not be included
        }
        fail(element, message);
    }
    if (symbol->isWrong) {
        throw Consequence{{element.line, "the type '" + name + "' is wrong itself"}};
    }
    if (mustBeDefined && !symbol->isDefined) {
        fail(element, "the type '" + name + "' must be defined before this use, not only announced");
    }
    return symbol->type;
}

// The type without sequence and array around it.
const DDS_TypeCode* TypeReader::elementTypeOf(Element element, Scope scope) {
    const std::string word(attribute(element, "type"));
    const bool isNamed = word == "nonBasic";
    const TypeWord* basic = findTypeWord(word);
    if (!isNamed && basic == nullptr) {
        fail(element, "unknown type word '" + word +
                          "'; for a defined type, write type=\"nonBasic\" nonBasicTypeName=\"" + word + "\"");
    }
    if (isNamed != hasAttribute(element, "nonBasicTypeName")) {
        fail(element, "nonBasicTypeName goes with type=\"nonBasic\", and only with it");
    }
    const bool isString = !isNamed && basic->isString();
    if (!isString && hasAttribute(element, "stringMaxLength")) {
        fail(element, "stringMaxLength goes with a string or wstring only");
    }
    if (isNamed) {
        return namedType(element, scope, "nonBasicTypeName", false);
    }
    if (!isString) {
        return DDS_TypeCode_primitive(basic->kind);
    }
    const std::uint32_t bound = boundOf(element, scope, "stringMaxLength");
    return newCode({.kind = basic->kind, .extensibility = DDS_FINAL_EXTENSIBILITY, .bound = bound});
}

const DDS_TypeCode* TypeReader::typeOf(Element element, Scope scope) {
    const DDS_TypeCode* type = elementTypeOf(element, scope);
    if (hasAttribute(element, "sequenceMaxLength")) {
        const std::uint32_t bound = boundOf(element, scope, "sequenceMaxLength");
        type = newCode({.kind = DDS_TK_SEQUENCE,
                        .extensibility = DDS_FINAL_EXTENSIBILITY,
                        .bound = bound,
                        .content = type});
    }
    if (hasAttribute(element, "arrayDimensions")) {
        DDS_TypeCode* array =
            newCode({.kind = DDS_TK_ARRAY, .extensibility = DDS_FINAL_EXTENSIBILITY, .content = type});
        addDimensions(element, scope, *array);
        type = array;
    }
    return type;
}

} // namespace zul::xml
