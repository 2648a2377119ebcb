#include "remote_config/result.h"

#include "middleware/strings.h"
#include "product/log_masks.h"

#include <cstring>

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

bool ROUTERRemoteConfigResult_append(ROUTERRemoteConfigResult* self, const char* message,
                                     const char* context) {
    const std::size_t added = std::strlen(message);
    if (added == 0) {
        return true;
    }
    if (self->text == nullptr) {
        ZULString_copyBounded(self->textBuffer, sizeof(self->textBuffer), message);
        self->text = self->textBuffer;
        return true;
    }
    const std::size_t length = std::strlen(self->text);
    if (length + added > ROUTER_RESULT_TEXT_MAX) {
        char* grown = DDS_String_alloc(length + added);
        if (grown == nullptr) {
            ROUTERLog_error(ROUTER_SUBMODULE_REMOTE_CONFIG, context, ZUL_LOG_OUT_OF_HEAP_STRING_d,
                            length + added);
            return false;
        }
        std::memcpy(grown, self->text, length);
        if (self->text != self->textBuffer) {
            DDS_String_free(self->text);
        }
        self->text = grown;
    }
    std::memcpy(self->text + length, message, added + 1);
    return true;
}
