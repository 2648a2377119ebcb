// Type descriptions from the types sections of a configuration document.
#pragma once

#include "middleware/xml/document_types.h"

// The type code of the struct, union, enum, valuetype or sparse_valuetype of that scoped name
// ("Module::Type", "::" in front or not) in the document or a local file that it includes; it belongs to the
// document and lives as long. Null, with one log line, when the document could not be read, no such type
// is defined in it, or that type or one that it is made of is wrong: what is wrong is in the document's
// `error`. `reserved` is not used (oddity 35).
const DDS_TypeCode* ROUTERUtils_getTypeCodeFromXML(ZULXMLDocument* document, const char* typeName,
                                                   int reserved);
const DDS_TypeCode* ROUTERUtils_getTypeCodeFromXMLDom(ZULXMLDocument* document, const char* typeName);
