// The outcome of one command: the kind of the last response and the text gathered from all of them.
#pragma once

#include "middleware/base/basic_types.h"

constexpr int ROUTER_RESULT_TEXT_MAX = 4096; // characters held inline

// The caller owns the record; `text` is null, `textBuffer`, or a heap string that the record owns.
struct ROUTERRemoteConfigResult {
    DDS_Long kind; // a CommandResponseKind value: 0 is OK
    char textBuffer[ROUTER_RESULT_TEXT_MAX + 1];
    char* text;
};

// Makes the record empty; `kind` is left as it is.
void ROUTERRemoteConfigResult_initialize(ROUTERRemoteConfigResult* self);
// Releases a heap text; the record is empty again.
void ROUTERRemoteConfigResult_finalize(ROUTERRemoteConfigResult* self);
