// The library's log goes through a consumer of ours. Its log thread starts with the first line that is
// logged, so one is logged here, while signals are blocked.
#include "middleware/dds/process.h"

#include "middleware/fastdds/library_call.h"

#include <cstdio>
#include <cstdlib>
#include <fastdds/dds/log/Log.hpp>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

using eprosima::fastdds::dds::Log;

namespace {

// Opens /dev/null on each standard descriptor that is closed: the next file or socket would get the number
// otherwise, and output and log lines would go there. Where there is no /dev/null, nothing is done.
void openStandardStreams() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDWR); // the lowest number that is free
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor >= 0) {
        close(descriptor);
    }
}

// The library counts a log thread that could not start as started. It keeps its lines then, and would wait
// for ever for them to be written.
bool canFlushLog = true;

class LogBridge final : public eprosima::fastdds::dds::LogConsumer {
public:
    void Consume(const Log::Entry& entry) override {
        if (entry.kind == Log::Info) {
            return; // only the line that starts the thread
        }
        const ZULLogLevel level = entry.kind == Log::Error ? ZUL_LOG_LEVEL_ERROR : ZUL_LOG_LEVEL_WARNING;
        const char* category = entry.context.category != nullptr ? entry.context.category : "DDS";
        ZULLog_middleware(level, category, ZUL_LOG_ANY_s, entry.message.c_str());
    }
};

} // namespace

void ZULProcess_takeOver() {
    openStandardStreams();
    canFlushLog = zul::createInLibrary(__func__, false, [] {
        Log::ClearConsumers();
        Log::RegisterConsumer(std::make_unique<LogBridge>());
        Log::SetVerbosity(ZULLog_isMiddlewareEnabled(ZUL_LOG_LEVEL_WARNING) ? Log::Warning : Log::Error);
        // The library starts its log thread with the first line, whoever writes it: here, with all signals
        // blocked, so that no signal meant for the program's own thread is ever delivered to it.
        Log::QueueLog("start", Log::Context{__FILE__, __LINE__, "ZULProcess_takeOver", "LOG"}, Log::Info);
        return true;
    });
}

void ZULProcess_exit(int status) {
    if (canFlushLog) {
        Log::Flush();
    }
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    std::exit(status); // the sanitizers report when the process ends in the usual way
#else
    std::fflush(nullptr);
    std::_Exit(status);
#endif
}
