// From bytes to a tree of objects, by the events of libxml2. Pure but for the source.
#pragma once

#include "middleware/xml/extension_registry.h"
#include "middleware/xml/guard.h"

namespace zul::xml {

// Builds the tree of `document`, or records in its `error` why it cannot. `registry` may be null.
void readTree(ZULXMLDocument& document, const ZULXMLExtensionRegistry* registry, Source source);

} // namespace zul::xml
