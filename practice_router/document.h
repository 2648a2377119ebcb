// A configuration document as bytes that may become active: read, and checked in form and in meaning.
#pragma once

#include "practice_router/answer.h"
#include "practice_router/xml.h"

#include <string>
#include <string_view>

// Null unless the document may become active; `error` then names the line and what is wrong. Checked are the
// product's document type definition and what it cannot express: the root, the names of entities (their
// characters, and that siblings differ) and the range of domain ids.
PracticeXmlDocument PracticeDocument_read(std::string_view xml, std::string& error);

// The whole way of a document that is to be loaded, without a router around it: any bytes may be given. OK
// when it could become active with the configuration of that name; ERROR or ENTITY_NOT_FOUND, with a message,
// otherwise.
PracticeAnswer PracticeRouter_loadDocument(std::string_view xml, std::string_view configurationName);
