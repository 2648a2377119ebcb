// What can only be checked once all types of a set are known.
#pragma once

#include "middleware/xml/type_scope.h"

namespace xml_types {

// A type and the types that it is made of, and so on, stand at most so many levels inside each other;
// sequences, arrays and typedefs count as levels.
constexpr int TYPE_DEPTH_MAX = 256;

// Every announced type is defined, none contains itself other than through a sequence, and none is too deep.
// False with the error set otherwise.
bool checkTypes(const Symbols& symbols, ZULXMLError& error);

} // namespace xml_types
