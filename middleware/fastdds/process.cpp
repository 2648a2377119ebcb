// The library's log goes through a consumer of ours. Its log thread starts with the first line that is
// logged, so one is logged here, while signals are blocked.
#include "middleware/dds/process.h"

#include "middleware/base/standard_streams.h"
#include "middleware/fastdds/library_call.h"

#include <cstdio>
#include <cstdlib>
#include <fastdds/dds/log/Log.hpp>
#include <memory>
#include <string>

using eprosima::fastdds::dds::Log;

namespace {

class LogBridge final : public eprosima::fastdds::dds::LogConsumer {
public:
    void Consume(const Log::Entry& entry) override {
        if (entry.kind == Log::Info) {
            return; // only the line that starts the thread
        }
        const ZULLogLevel level = entry.kind == Log::Error ? ZUL_LOG_LEVEL_ERROR : ZUL_LOG_LEVEL_WARNING;
        const std::string category = entry.context.category != nullptr ? entry.context.category : "DDS";
        ZULLog_middleware(level, category.c_str(), ZUL_LOG_ANY_s, entry.message.c_str());
    }
};

} // namespace

void ZULProcess_takeOver() {
    ZULStandardStreams_open();
    // Without its thread the library's log keeps its lines: no failure of the program.
    zul::createInLibrary(__func__, false, [] {
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
    Log::Flush();
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    std::exit(status); // the sanitizers report when the process ends in the usual way
#else
    std::fflush(nullptr);
    std::_Exit(status);
#endif
}
