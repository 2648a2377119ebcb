// From bytes to a tree of objects, by the events of libxml2. Pure but for the byte source.
#pragma once

#include "middleware/xml/document.h"
#include "middleware/xml/extension_registry.h"

// Puts at most `size` bytes into `buffer`: how many, 0 at the end, -1 on failure.
using ZULXMLRead = int (*)(void* source, char* buffer, int size);

// Builds the tree of `document`, or records in its `error` why it cannot. `registry` may be null.
void ZULXMLSaxReader_read(ZULXMLDocument* document, const ZULXMLExtensionRegistry* registry, ZULXMLRead read,
                          void* source);
