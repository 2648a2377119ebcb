// Collects log lines, of all threads, while it lives. One at a time.
#pragma once

#include "middleware/base/log.h"

#include <mutex>
#include <string>
#include <utility>

class CapturedLog {
public:
    CapturedLog() { ZULLog_setSink(append, this); }
    ~CapturedLog() { ZULLog_setSink(nullptr, nullptr); }
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    // What was logged since the last call.
    std::string take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(text_, {});
    }

private:
    static void append(void* self, std::string_view line) {
        auto& log = *static_cast<CapturedLog*>(self);
        const std::lock_guard lock(log.mutex_);
        log.text_.append(line);
    }
    std::mutex mutex_;
    std::string text_;
};
