// Type descriptions from the types sections of a configuration document.
#pragma once

#include "middleware/xml/document_types.h"

// The type code of the struct, union, enum, valuetype or sparse_valuetype of that scoped name
// ("Module::Type", "::" in front or not) in the document; it belongs to the document and is valid as long.
// Null, with the reason logged, when the document could not be read, no such type is defined in it, or a
// types section is wrong. `reserved` is not used.
const DDS_TypeCode* ROUTERUtils_getTypeCodeFromXML(ZULXMLDocument* document, const char* typeName,
                                                   int reserved);
const DDS_TypeCode* ROUTERUtils_getTypeCodeFromXMLDom(ZULXMLDocument* document, const char* typeName);
