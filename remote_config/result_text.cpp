// The text moves once from the inline buffer to the heap, then from room to room of twice the size.
#include "remote_config/result_text.h"

#include "middleware/base/strings.h"
#include "product/log_masks.h"

#include <algorithm>
#include <cstring>

namespace zul::remote_config {

bool ResultText::makeRoom(std::size_t needed) {
    if (needed <= room_) {
        return true;
    }
    const std::size_t room = std::max(needed, 2 * room_);
    char* grown = DDS_String_alloc(room);
    if (grown == nullptr) {
        return false;
    }
    std::memcpy(grown, result_.text, length_);
    if (result_.text != result_.textBuffer) {
        DDS_String_free(result_.text);
    }
    result_.text = grown;
    room_ = room;
    return true;
}

bool ResultText::append(std::string_view message, const char* context) {
    if (message.empty()) {
        return true;
    }
    if (result_.text == nullptr) {
        message = message.substr(0, ROUTER_RESULT_TEXT_MAX);
        result_.text = result_.textBuffer;
    }
    const std::size_t needed = length_ + message.size();
    if (!makeRoom(needed)) {
        ROUTERLog_error(ROUTER_SUBMODULE_REMOTE_CONFIG, context, ZUL_LOG_OUT_OF_HEAP_STRING_d, needed);
        return false;
    }
    message.copy(result_.text + length_, message.size());
    result_.text[needed] = '\0';
    length_ = needed;
    return true;
}

} // namespace zul::remote_config
