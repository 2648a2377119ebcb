// Calls into the library, and from it. It throws when memory, threads or descriptors run out: here that
// becomes a failure, with a log line. It starts threads, which must not receive the program's signals: here
// they start with all of them blocked.
#pragma once

#include "middleware/base/log.h"

#include <csignal>
#include <exception>
#include <type_traits>

namespace zul {

// Blocks every signal on this thread for as long as it lives; threads that start meanwhile inherit the mask.
class BlockedSignals {
public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;

private:
    sigset_t previous_;
};

// What `call` returns, or `failure` when it threw.
template <class Call>
std::invoke_result_t<Call> callLibrary(const char* context, std::invoke_result_t<Call> failure, Call call) {
    try {
        return call();
    } catch (const std::exception& error) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_ANY_FAILURE_s, error.what());
    }
    return failure;
}

// What the library calls: nothing may be thrown into it.
template <class Callback>
void inCallback(const char* context, Callback callback) {
    callLibrary(context, false, [&callback] {
        callback();
        return true;
    });
}

// As callLibrary, for calls that may start threads.
template <class Create>
std::invoke_result_t<Create> createInLibrary(const char* context, std::invoke_result_t<Create> failure,
                                             Create create) {
    const BlockedSignals blocked;
    return callLibrary(context, failure, create);
}

} // namespace zul
