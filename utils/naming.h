// Names of entities inside a service.
#pragma once

#include "middleware/base/strings.h"

// A qualified name is "::<service>::<domain route>::<session>::...". These return "::<service name>::<domain
// route>" and "::<service name>::<domain route>::<session>", new strings that the caller frees with
// DDS_String_free; null when the qualified name ends before the "::" that must follow the wanted part, or
// memory is exhausted.
char* ROUTERUtils_makeDomainRouteName(const char* serviceName, const char* qualifiedEntityName);
char* ROUTERUtils_makeSessionName(const char* serviceName, const char* qualifiedEntityName);
// What both are made of: level 1 for the domain route, 2 for the session.
char* ROUTERUtils_makeNameI(const char* serviceName, const char* qualifiedEntityName, int level);

// The text after a leading "::", or the whole name: a part of `name`. Null for null.
const char* ROUTERUtils_removeScopeChars(const char* name);
