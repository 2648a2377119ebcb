// A configuration document as bytes that may become active: read, and checked in form and in meaning.
#pragma once

#include "practice_router/xml.h"

#include <string>
#include <string_view>

// Null unless the document may become active; `error` then names the line and what is wrong. Checked are the
// product's document type definition and what it cannot express: the root, the names of entities (their
// characters, and that siblings differ) and the range of domain ids.
PracticeXmlDocument PracticeDocument_read(std::string_view xml, std::string& error);
