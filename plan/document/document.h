// Reading and checking configuration documents that are to become active.
#pragma once

#include "plan/document/xml.h"

#include <string>
#include <string_view>

namespace zul::plan {

// Refuses what may not become active, with the line and what is wrong. Checked are the product's document
// type definition and what it cannot express: the root, the names of entities (their characters, and that
// siblings differ) and the range of domain ids. Gives up soon when asked to stop.
void checkDocument(const xmlDoc* document, const std::stop_token& stop);

// Parses a document that may become active.
XmlDocument readDocument(std::string_view xml, const std::stop_token& stop);

} // namespace zul::plan
