// The entities of a configuration, in the order of the document.
#pragma once

#include "plan/document/entity.h"

#include <string>
#include <string_view>
#include <vector>

namespace zul::plan {

struct OutlineEntry {
    EntityLevel level;
    std::string tag;
    std::string name;
    std::string path;      // from the service, which has an empty one
    bool isEnabled = true; // as the document says; it does not say so of the service
    bool isLast = false;   // of the entities directly inside the same one
};

// Each entity comes directly after the one it is in, or after what is inside the one before it. Refuses a
// text that is no document or has no service of the selected product.
std::vector<OutlineEntry> outline(std::string_view xml);

} // namespace zul::plan
