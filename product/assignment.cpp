// The text is parsed once into its parts, then rendered twice: to measure the snippet, and to write it.
#include "product/assignment.h"

#include "middleware/base/strings.h"
#include "product/log_masks.h"
#include "product/product_info.h"
#include "product/vocabulary.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <span>
#include <string_view>

namespace {

constexpr std::size_t MAX_COMPONENTS = 31;

bool isSpace(char c) {
    return std::isspace(static_cast<unsigned char>(c)) != 0;
}

bool isAssignment(std::string_view text) {
    return text.starts_with(ROUTER_getProductInfo()->xmlTagName) ||
           std::ranges::any_of(zul::product::ENTITY_KINDS,
                               [text](const auto& entity) { return text.starts_with(entity.tag); });
}

// Quotes around a value become blanks; the value is not trimmed.
void blankQuotes(char* value) {
    const std::span<char> characters(value, std::strlen(value));
    const auto first = std::find_if_not(characters.begin(), characters.end(), isSpace);
    if (first != characters.end() && *first == '"') {
        *first = ' ';
    }
    const auto last = std::find_if_not(characters.rbegin(), characters.rend(), isSpace);
    if (last != characters.rend() && *last == '"') {
        *last = ' ';
    }
}

// The parts of an assignment; they refer to a working copy of its text.
struct Assignment {
    std::array<const char*, MAX_COMPONENTS> components{};
    std::size_t componentCount = 0;
    const char* member = nullptr; // between brackets after the last component
    const char* value = nullptr;
};

bool parse(char* text, Assignment& assignment) {
    char* equals = std::strchr(text, '=');
    if (equals == nullptr) {
        return false;
    }
    char* nameEnd = equals;
    while (nameEnd > text && isSpace(nameEnd[-1])) {
        --nameEnd;
    }
    *nameEnd = '\0';
    blankQuotes(equals + 1);
    assignment.value = equals + 1;

    char* context = nullptr;
    char* last = nullptr;
    for (char* token = strtok_r(text, ".", &context); token != nullptr;
         token = strtok_r(nullptr, ".", &context)) {
        if (assignment.componentCount == MAX_COMPONENTS) {
            return false;
        }
        assignment.components[assignment.componentCount++] = token;
        last = token;
    }
    if (last == nullptr) {
        return false;
    }
    const char* element = strtok_r(last, "[]", &context);
    assignment.components[assignment.componentCount - 1] = element;
    assignment.member = strtok_r(nullptr, "[]", &context);
    return element != nullptr;
}

std::string_view escaped(const char& character) {
    switch (character) {
    case '"':
        return "&quot;";
    case '&':
        return "&amp;";
    case '\'':
        return "&apos;";
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    default:
        return {&character, 1};
    }
}

// Hands the snippet to `put` piece by piece.
template <class Put>
void render(const Assignment& assignment, Put put) {
    const std::span components(assignment.components.data(), assignment.componentCount);
    put(zul::product::INLINE_SCHEME), put("\"");
    for (const char* component : components) {
        put("<"), put(component), put(">");
    }
    if (assignment.member != nullptr) {
        put("<value><element><name>"), put(assignment.member), put("</name><value>");
    }
    for (const char* character = assignment.value; *character != '\0'; ++character) {
        put(escaped(*character));
    }
    if (assignment.member != nullptr) {
        put("</value></element></value>");
    }
    for (auto component = components.rbegin(); component != components.rend(); ++component) {
        put("</"), put(*component), put(">");
    }
    put("\"");
}

char* outOfMemory(std::size_t length) {
    ROUTERLog_error(ROUTER_SUBMODULE_REMOTE_CONFIG, "ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet",
                    ZUL_LOG_OUT_OF_HEAP_STRING_d, length);
    errno = ENOMEM;
    return nullptr;
}

} // namespace

char* ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(const char* text) {
    if (!isAssignment(text)) {
        return nullptr;
    }
    const ZULStringPtr copy(DDS_String_dup(text));
    if (copy == nullptr) {
        return outOfMemory(std::strlen(text));
    }
    Assignment assignment;
    if (!parse(copy.get(), assignment)) {
        return nullptr;
    }
    std::size_t length = 0;
    render(assignment, [&length](std::string_view piece) { length += piece.size(); });
    char* snippet = DDS_String_alloc(length);
    if (snippet == nullptr) {
        return outOfMemory(length);
    }
    render(assignment, [end = snippet](std::string_view piece) mutable {
        end = std::copy(piece.begin(), piece.end(), end);
    });
    return snippet;
}
