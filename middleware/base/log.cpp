// A line is put together first and written with one call, so that lines of several threads do not mix. A sink
// is called under the lock that guards it.
#include "middleware/base/log.h"

#include "middleware/base/terminal_text.h"

#include <atomic>
#include <cerrno>
#include <exception>
#include <mutex>
#include <string>
#include <unistd.h>

namespace {

std::atomic<std::uint32_t> g_middlewareMask{ZUL_LOG_LEVEL_ERROR};
std::mutex g_sinkMutex;
ZULLogSink g_sink = nullptr;
void* g_sinkData = nullptr;

// Replaces each %s and %d by the next argument; places without an argument stay as they are.
void appendFormatted(std::string& line, std::string_view format, std::span<const ZULLogArgument> arguments) {
    std::size_t next = 0;
    for (std::size_t i = 0; i < format.size(); ++i) {
        const bool isPlace = format[i] == '%' && i + 1 < format.size() &&
                             (format[i + 1] == 's' || format[i + 1] == 'd') && next < arguments.size();
        if (!isPlace) {
            line += format[i];
            continue;
        }
        const ZULLogArgument& argument = arguments[next++];
        line += argument.isNumber() ? std::to_string(argument.number()) : std::string(argument.text());
        ++i;
    }
}

void writeToStandardError(std::string_view line) {
    while (!line.empty()) {
        const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return; // nowhere left to report to
        }
        line.remove_prefix(static_cast<std::size_t>(written));
    }
}

// `isOurs`: nothing in the line comes from elsewhere, so a terminal may have it as it is. Other lines may
// hold names from the network: a terminal must show them, not obey them.
void writeLine(std::string_view line, bool isOurs) {
    const std::lock_guard lock(g_sinkMutex);
    if (g_sink != nullptr) {
        g_sink(g_sinkData, line);
    } else if (!isOurs && isatty(STDERR_FILENO) != 0) {
        writeToStandardError(ZULTerminal_shown(line));
    } else {
        writeToStandardError(line);
    }
}

void emit(std::initializer_list<std::string_view> head, std::string_view format,
          std::span<const ZULLogArgument> arguments) {
    try {
        std::string line;
        for (const std::string_view part : head) {
            line += part;
        }
        appendFormatted(line, format, arguments);
        writeLine(line, false);
    } catch (const std::exception&) {
        writeLine(format, true);
    }
}

} // namespace

void ZULLog_emit(ZULLogLevel level, const char* context, const ZULLogTemplate& message,
                 std::span<const ZULLogArgument> arguments) {
    emit({level == ZUL_LOG_LEVEL_ERROR ? "ERROR [" : "WARNING [", context, "] "}, message.format, arguments);
}

void ZULLog_emitDebug(const char* format, std::span<const ZULLogArgument> arguments) {
    emit({}, format, arguments);
}

void ZULLog_setMiddlewareMask(std::uint32_t levels) {
    g_middlewareMask.store(levels);
}

bool ZULLog_isMiddlewareEnabled(ZULLogLevel level) {
    return (g_middlewareMask.load() & level) != 0;
}

void ZULLog_setSink(ZULLogSink sink, void* sinkData) {
    const std::lock_guard lock(g_sinkMutex);
    g_sink = sink;
    g_sinkData = sinkData;
}
