// The types sections of a document, read as a router reads them.
#pragma once

#include "plan/check/check.h"

#include <functional>
#include <string>
#include <unordered_set>

namespace zul::plan {

// Elements of the types sections in which a fault was already reported.
using KnownFaults = std::unordered_set<const xmlNode*>;

// Whether a path names a type, or may name one that could not be read.
using IsType = std::function<bool(std::string_view path)>;

// Reports what is wrong with the definitions, except for those with a known fault inside. `path` is that of
// the document's file.
using TypeReport = std::function<void(int line, const std::string& what)>;
IsType checkTypes(const xmlNode* root, const std::string& path, const KnownFaults& known,
                  const std::stop_token& stop, const TypeReport& report);

} // namespace zul::plan
