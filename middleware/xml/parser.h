// The parser of configuration documents: text or a local file in, a tree of objects out. Nothing is ever
// fetched from a network, no external entity or definition is read, and declarations that make a document
// grow while it is read (entities, default attributes) are refused.
#pragma once

#include "middleware/xml/document.h"
#include "middleware/xml/extension_registry.h"

struct ZULXMLParser {
    ZULXMLExtensionRegistry registry;
};

// With the builtin element classes; false when memory is exhausted.
bool ZULXMLParser_initialize(ZULXMLParser* self);
void ZULXMLParser_finalize(ZULXMLParser* self);

// Reads a document. An element's own name is its attribute "name"; one without, or whose name a sibling
// has, gets its tag or name followed by "#" and its position among its siblings, and more "#" while that is
// taken; a root without the attribute gets its tag. Returns null when memory is exhausted; otherwise the
// caller owns a document, which has no root when it could not be read: the reason, with the line, is in its
// `error` and logged. A null parser knows no element classes, and any element becomes a plain object.
ZULXMLDocument* ZULXMLParser_parseText(const ZULXMLParser* self, std::string_view text);
ZULXMLDocument* ZULXMLParser_parseFile(const ZULXMLParser* self, const char* path);

// The same without logging.
ZULXMLDocument* ZULXMLParser_readText(const ZULXMLParser* self, std::string_view text);
ZULXMLDocument* ZULXMLParser_readFile(const ZULXMLParser* self, const char* path);

// Frees the object, which is in no list, and its whole subtree.
void ZULXMLParser_freeSubtree(ZULXMLParser* self, ZULXMLObject* object);
