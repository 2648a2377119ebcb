// Logging facility: message templates, decoration and the one sink. A line goes to standard error as
// "LEVEL [context] text" in a single write, so lines of several threads do not mix. Safe from any thread, not
// from a signal handler. When there is no memory for a line, its bare format is written. Callers decide
// which messages are wanted; the middleware's own mask is below.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

enum ZULLogLevel : std::uint32_t { ZUL_LOG_LEVEL_ERROR = 1, ZUL_LOG_LEVEL_WARNING = 2 };

// A template: its 32-bit code and its text with %s and %d places, line feed included.
struct ZULLogTemplate {
    std::uint32_t code;
    const char* format;
};

// clang-format off
inline constexpr ZULLogTemplate ZUL_LOG_ANY_s                  {0x2000000, "%s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_ANY_FAILURE_s          {0x2000001, "failure: %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_INIT_FAILURE_s         {0x2000002, "failed to initialize %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_CREATION_FAILURE_s     {0x2000003, "failed to create %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_DESTRUCTION_FAILURE_s  {0x2000004, "failed to destroy %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_GET_FAILURE_s          {0x2000005, "failed to get %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_ADD_FAILURE_s          {0x2000006, "failed to add %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_REMOVE_FAILURE_s       {0x2000007, "failed to remove %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_BAD_PARAMETER_s        {0x2000008, "bad parameter: %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_ASSERTION_s            {0x2000009, "refused: %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_ALLOCATION_FAILURE_d   {0x200000A, "failed to allocate %d bytes\n"};
inline constexpr ZULLogTemplate ZUL_LOG_OUT_OF_HEAP_STRUCT_d   {0x200000B, "out of memory for a structure of %d bytes\n"};
inline constexpr ZULLogTemplate ZUL_LOG_OUT_OF_HEAP_STRING_d   {0x200000C, "out of memory for a string of %d characters\n"};
inline constexpr ZULLogTemplate ZUL_LOG_INSUFFICIENT_SPACE_dd  {0x200000D, "insufficient space: %d available, %d needed\n"};
inline constexpr ZULLogTemplate ZUL_LOG_SEMAPHORE_TAKE_FAILURE {0x200000E, "failed to take semaphore\n"};
inline constexpr ZULLogTemplate ZUL_LOG_SEMAPHORE_GIVE_FAILURE {0x200000F, "failed to give semaphore\n"};
inline constexpr ZULLogTemplate ZUL_LOG_XML_PARSE_FAILURE_ds   {0x2000010, "XML line %d: %s\n"};
inline constexpr ZULLogTemplate ZUL_LOG_XML_ILLEGAL_VALUE_d    {0x2000011, "XML line %d: illegal value\n"};
inline constexpr ZULLogTemplate ZUL_LOG_XML_INTERNAL_FAILURE_s {0x2000012, "XML reader failed: %s\n"};
// clang-format on

// One argument of a template. The text is borrowed for the call; a null text prints as "(null)".
class ZULLogArgument {
public:
    ZULLogArgument(const char* text) : text_(text != nullptr ? text : "(null)") {}
    ZULLogArgument(std::string_view text) : text_(text) {}
    ZULLogArgument(long long number) : number_(number), isNumber_(true) {}
    ZULLogArgument(int number) : ZULLogArgument(static_cast<long long>(number)) {}
    ZULLogArgument(unsigned long number) : ZULLogArgument(static_cast<long long>(number)) {}
    bool isNumber() const { return isNumber_; }
    long long number() const { return number_; }
    std::string_view text() const { return text_; }

private:
    std::string_view text_;
    long long number_ = 0;
    bool isNumber_ = false;
};

// Emits one decorated message. `context` names the failing operation.
void ZULLog_emit(ZULLogLevel level, const char* context, const ZULLogTemplate& message,
                 std::span<const ZULLogArgument> arguments);
// The debug print: `format` with its arguments, undecorated.
void ZULLog_emitDebug(const char* format, std::span<const ZULLogArgument> arguments);

template <class... Arguments>
void ZULLog_message(ZULLogLevel level, const char* context, const ZULLogTemplate& message,
                    const Arguments&... arguments) {
    const std::array<ZULLogArgument, sizeof...(arguments)> list{ZULLogArgument(arguments)...};
    ZULLog_emit(level, context, message, list);
}

template <class... Arguments>
void ZULLog_debug(const char* format, const Arguments&... arguments) {
    const ZULLogArgument list[] = {ZULLogArgument(arguments)...};
    ZULLog_emitDebug(format, list);
}

// The middleware's own messages (its bindings, sequences, type support) pass this mask of level bits;
// errors only at first.
void ZULLog_setMiddlewareMask(std::uint32_t levels);
bool ZULLog_isMiddlewareEnabled(ZULLogLevel level);

template <class... Arguments>
void ZULLog_middleware(ZULLogLevel level, const char* context, const ZULLogTemplate& message,
                       const Arguments&... arguments) {
    if (ZULLog_isMiddlewareEnabled(level)) {
        ZULLog_message(level, context, message, arguments...);
    }
}

// Replaces the sink (standard error); null restores it. For tests. A sink borrows the line for
// the call and must not log.
using ZULLogSink = void (*)(void* sinkData, std::string_view line);
void ZULLog_setSink(ZULLogSink sink, void* sinkData);
