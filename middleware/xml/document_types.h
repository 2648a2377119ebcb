// The types that the types sections of a document describe.
#pragma once

#include "middleware/idl/type_code.h"
#include "middleware/xml/document.h"

// What a document and the files that it includes say of one scoped name ("Module::Type", no "::" before it).
struct ZULXMLTypeDefinition {
    std::string_view tag;     // of the element that defines it; empty when there is none
    std::int32_t line;        // of that element, of what is wrong in it, or of the include that brings it
    const DDS_TypeCode* code; // null when it is wrong or no type
};
// Looks the name up; what it returns is valid as long as the document. All types sections are read on first
// use. What is wrong with one type leaves the others alone; what is wrong with the one asked for is in the
// document's `error`. An announcement (forward_dcl) counts only where there is no definition, and of several
// definitions the first.
ZULXMLTypeDefinition ZULXMLDocument_findType(ZULXMLDocument* self, std::string_view name);
