// The record's own operations; result_text.cpp fills it.
#include "remote_config/result.h"

#include "middleware/base/strings.h"

void ROUTERRemoteConfigResult_initialize(ROUTERRemoteConfigResult* self) {
    self->textBuffer[0] = '\0';
    self->textBuffer[ROUTER_RESULT_TEXT_MAX] = '\0';
    self->text = self->textBuffer;
}

void ROUTERRemoteConfigResult_finalize(ROUTERRemoteConfigResult* self) {
    if (self->text != self->textBuffer) {
        DDS_String_free(self->text);
    }
    self->textBuffer[0] = '\0';
    self->text = self->textBuffer;
}
