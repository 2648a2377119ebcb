// Merging an XML snippet into a document: elements are matched by tag and name attribute, the values of
// leaves replaced (without the blanks around them, which do not count). Works on a document of the caller's
// that is thrown away when a merge fails half way.
#pragma once

#include <libxml/tree.h>

#include <string>

// Applies the snippet to an entity. The snippet's outermost element is the entity itself or something inside
// it; for the service it may also be a whole document. Where several elements have a snippet's tag, the name
// of the one that is meant may stand as the next tag. False when something in the snippet has no counterpart;
// `error` then names it.
bool PracticeMerge_apply(xmlNode* target, xmlNode* snippet, std::string& error);
