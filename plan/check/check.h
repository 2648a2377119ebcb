// Checking configuration documents: the product's document type definition, and what its comments promise but
// a definition cannot say (numbers, words, names that refer to other elements, types). The time is linear in
// the document but for look-ups in sorted sets; nothing is recursive in anything but its depth.
#pragma once

#include "plan/document/xml.h"

#include <string>
#include <string_view>
#include <vector>

namespace zul::plan {

struct Finding {
    int line = 0; // from 1; 0 in a tree that was not parsed, or where a whole document is refused
    std::string message{};
};

// Everything that is wrong with a document, in the order of its lines; what only follows from something
// reported before is left out. `path`, if not empty, is the file that the document came from: what its types
// sections include is read, relative to that. In a document without a path, includes are not followed, and
// where there are any, types are not checked. Gives up soon, with a Refusal, when asked to stop.
std::vector<Finding> findFaults(const xmlDoc* document, const std::string& path, const std::stop_token& stop);

// The same for a text. What cannot be read at all is one finding.
std::vector<Finding> findFaults(std::string_view xml, const std::string& path, const std::stop_token& stop);

// Refuses what may not become active, with the line of the first finding.
void checkDocument(const xmlDoc* document, const std::stop_token& stop);

// Parses a document that may become active.
XmlDocument readDocument(std::string_view xml, const std::stop_token& stop);

} // namespace zul::plan
