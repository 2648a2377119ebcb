#include "middleware/fastdds/log_bridge.h"

#include "middleware/log.h"

#include <csignal>
#include <fastdds/dds/log/Log.hpp>
#include <memory>
#include <string>

namespace zul {

namespace {

using eprosima::fastdds::dds::Log;

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

void installLogBridge() {
    Log::ClearConsumers();
    Log::RegisterConsumer(std::make_unique<LogBridge>());
    Log::SetVerbosity(ZULLog_isMiddlewareEnabled(ZUL_LOG_LEVEL_WARNING) ? Log::Warning : Log::Error);
    // The library starts its log thread with the first line, whoever writes it: here, with all signals
    // blocked, so that no signal meant for the program's own thread is ever delivered to it.
    sigset_t all;
    sigset_t previous;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &previous);
    Log::QueueLog("start", Log::Context{__FILE__, __LINE__, __func__, "LOG"}, Log::Info);
    pthread_sigmask(SIG_SETMASK, &previous, nullptr);
}

void endLogThread() {
    Log::Flush();
    Log::KillThread();
}

} // namespace zul
