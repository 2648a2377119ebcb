// Gathers the messages of one command's responses into its result.
#pragma once

#include "remote_config/result.h"

#include <cstddef>
#include <string_view>

namespace zul::remote_config {

// However many messages there are, each character is copied a constant number of times: a text on the heap
// grows by doubling its room. What that needs to know lives here, not in the record.
class ResultText {
public:
    // The result must have a null text, and outlive this.
    explicit ResultText(ROUTERRemoteConfigResult& result) : result_(result) {}

    // Appends a message, without a separator. An empty one adds nothing and leaves a null text null; a first
    // one is cut to ROUTER_RESULT_TEXT_MAX characters (oddity 15). False, logged under `context`, when memory
    // is exhausted; the text is then as it was.
    bool append(std::string_view message, const char* context);

private:
    bool makeRoom(std::size_t needed);

    ROUTERRemoteConfigResult& result_;
    std::size_t length_ = 0;                    // of the text so far
    std::size_t room_ = ROUTER_RESULT_TEXT_MAX; // characters that fit where it is
};

} // namespace zul::remote_config
