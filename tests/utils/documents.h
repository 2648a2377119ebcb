// Documents for tests: read, and freed with their types.
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
