// Collects log lines while it lives. One at a time.
#pragma once

#include "middleware/base/log.h"

#include <string>
#include <utility>

class CapturedLog {
public:
    CapturedLog() { ZULLog_setSink(append, &text_); }
    ~CapturedLog() { ZULLog_setSink(nullptr, nullptr); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    // What was logged since the last call.
    std::string take() { return std::exchange(text_, {}); }

private:
    static void append(void* text, std::string_view line) { static_cast<std::string*>(text)->append(line); }
    std::string text_;
};
