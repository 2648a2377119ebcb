// What can only be checked once all types of a set are known.
#pragma once

#include "middleware/xml/type_scope.h"

#include <functional>

namespace zul::xml {

// Most levels of types inside each other; sequences, arrays and typedefs count, too.
constexpr int TYPE_DEPTH_MAX = 256;

// Finds those of the types that are announced and never defined, contain themselves other than through a
// sequence, or are too deep; then those that are made of a wrong one, however far down. `tell(name, reason,
// isOwn)` is called once for each; `isOwn` is false for a type that is wrong only because of another.
void checkTypes(
    const NamedTypes& types,
    const std::function<void(const std::string& name, const std::string& reason, bool isOwn)>& tell);

} // namespace zul::xml
