// Documents for tests: put together, read, and freed with their types.
#pragma once

#include "middleware/xml/parser.h"

using DocumentPtr = std::unique_ptr<ZULXMLDocument, void (*)(ZULXMLDocument*)>;

inline DocumentPtr readText(std::string_view text) {
    return {ZULXMLParser_parseText(nullptr, text), ZULXMLDocument_delete};
}
inline DocumentPtr readFile(const std::string& path) {
    return {ZULXMLParser_parseFile(nullptr, path.c_str()), ZULXMLDocument_delete};
}
inline std::string typesDocument(std::string_view definitions) {
    return "<dds><types>\n" + std::string(definitions) + "\n</types></dds>";
}

// The full names in a tree, "::root{ ::root::a 'text'{} ::root::b{}}"; what does not fit together is marked.
inline std::string dump(const ZULXMLObject& object) {
    std::string text = object.fullName;
    text += object.text != nullptr ? " '" + std::string(object.text) + "'{" : "{";
    const ZULXMLObject* previous = nullptr;
    std::size_t count = 0;
    for (const ZULXMLObject* child = object.children.first; child != nullptr; child = child->next) {
        const bool isSound = child->previous == previous && child->parent == &object &&
                             child->list == &object.children && child->context == object.context &&
                             ZULXMLObject_findChild(&object, child->name) == child;
        text += (isSound ? " " : " UNSOUND ") + dump(*child);
        previous = child;
        ++count;
    }
    const bool isSound =
        object.children.last == previous && object.children.count == count && object.childSet.size() == count;
    return text + (isSound ? "}" : " UNSOUND}");
}

// The pattern once for each blank-separated word, with the word in place of every "*".
inline std::string forEach(std::string_view words, std::string_view pattern) {
    std::string all;
    while (!words.empty()) {
        const std::string_view word = words.substr(0, words.find(' '));
        for (const char c : pattern) {
            all += c == '*' ? word : std::string_view(&c, 1);
        }
        words.remove_prefix(std::min(word.size() + 1, words.size()));
    }
    return all;
}

const std::string BYTE = "type='byte'";

inline std::string member(const std::string& attributes, const std::string& name = "m") {
    return "<member name='" + name + "' " + attributes + "/>";
}
inline std::string named(const std::string& type) {
    return "type='nonBasic' nonBasicTypeName='" + type + "'";
}
inline std::string structOf(const std::string& members, const std::string& name = "T",
                            const std::string& attributes = "") {
    return "<struct name='" + name + "' " + attributes + ">" + members + "</struct>";
}
inline std::string caseOf(std::string_view labels, const std::string& branch = member(BYTE)) {
    return "\n<case>" + forEach(labels, "<caseDiscriminator value=\"*\"/>") + branch + "</case>";
}
inline std::string unionOf(const std::string& discriminator, const std::string& cases,
                           const std::string& attributes = "name='T'") {
    return "<union " + attributes + "><discriminator " + discriminator + "/>" + cases + "</union>";
}
