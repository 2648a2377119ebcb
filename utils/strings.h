// String helpers. Strings that are changed in place are owned ones (DDS_String_alloc) or null.
#pragma once

#include "middleware/idl/sequence.h"

// Same length and, position by position, the same reference or equal texts. A present text differs from an
// absent one. Null sequences equal only each other.
bool ROUTERUtils_StringSeq_equals(const DDS_StringSeq* a, const DDS_StringSeq* b);

// Makes room for `length` characters: keeps a string that is at least that long, else replaces it by an empty
// one of that room; the contents are not kept then. Returns the string, or null with `*string` null when
// memory is exhausted.
char* ROUTERUtils_String_assertLength(char** string, std::size_t length);

// Makes the string a copy of `newText`, which may be part of it, or frees it and sets it to null for a null
// text. Returns the string; null for a null text or when memory is exhausted, which is logged.
char* ROUTERUtils_String_replace(char** string, const char* newText);
