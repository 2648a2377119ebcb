// Merging an XML snippet into a document: elements are matched by tag and name attribute as they were before,
// and the values of leaves are replaced, without the blanks around them. A merge that fails leaves the
// caller's document half changed, to be thrown away. The time is linear in document and snippet.
#pragma once

#include <libxml/tree.h>

#include <stop_token>

namespace zul::plan {

// Applies a snippet, which shares the dictionary of the entity's document, and moves nodes out of it. The
// snippet's outermost element is the entity itself or something inside it; for the service it may also be a
// whole document. Where several elements have a snippet's tag, the name of the one that is meant may be the
// next tag. Refuses what has no counterpart or no place. Gives up soon when asked to stop.
void applySnippet(xmlNode* entity, xmlNode* snippet, const std::stop_token& stop);

// Merges `child` into the children of `target`, as if it came in a snippet for `target`; may move it there.
void mergeChild(xmlNode* target, xmlNode* child);

} // namespace zul::plan
