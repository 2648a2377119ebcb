// The types that the types sections of a document describe.
#pragma once

#include "middleware/type_code.h"
#include "middleware/xml/document.h"

// The element that defines the type of that scoped name ("Module::Type", without "::" in front) in a types
// section of the document, or null. An announcement (forward_dcl) is no definition. The first of several
// counts.
const ZULXMLObject* ZULXMLDocument_findDefinition(const ZULXMLDocument* self, std::string_view name);
// The type code of that scoped name, valid as long as the document. All types sections are read on first use.
// Null, with the reason in `error` and logged, when one is wrong; null when there is no such type.
const DDS_TypeCode* ZULXMLDocument_getTypeCode(ZULXMLDocument* self, std::string_view name);
