// The outcome of one command: the kind of the last response and the text gathered from all of them.
#pragma once

#include "middleware/base/basic_types.h"

#include <cstddef>
#include <string_view>

constexpr int ROUTER_RESULT_TEXT_MAX = 4096; // characters held inline

// The caller owns the record; `text` refers to `textBuffer`, to a heap string that the record owns, or is
// null.
struct ROUTERRemoteConfigResult {
    DDS_Long kind; // a CommandResponseKind value: 0 is OK
    char textBuffer[ROUTER_RESULT_TEXT_MAX + 1];
    char* text;
};

// Makes the record empty; `kind` is left as it is.
void ROUTERRemoteConfigResult_initialize(ROUTERRemoteConfigResult* self);
// Releases a heap text; the record is empty again.
void ROUTERRemoteConfigResult_finalize(ROUTERRemoteConfigResult* self);
namespace zul::remote_config {

// Gathers the messages of one command's responses into its result. However many there are, each character is
// copied a constant number of times: a text on the heap grows by doubling its room.
class ResultText {
public:
    // The result must have a null text, and outlive this.
    explicit ResultText(ROUTERRemoteConfigResult& result) : result_(result) {}

    // Appends a message, without a separator. An empty one adds nothing and leaves a null text null; a first
    // one is cut to ROUTER_RESULT_TEXT_MAX characters, by design. False, logged under `context`, when memory
    // is exhausted; the text is then as it was.
    bool append(std::string_view message, const char* context);

private:
    bool makeRoom(std::size_t needed);

    ROUTERRemoteConfigResult& result_;
    std::size_t length_ = 0;                    // of the text so far
    std::size_t room_ = ROUTER_RESULT_TEXT_MAX; // characters that fit where it is
};

} // namespace zul::remote_config
