// Logging facility: message templates, decoration and the one sink. A line goes to standard error as
// "LEVEL [context] text" in a single write, so lines of several threads do not mix. Safe from any thread, not
// from a signal handler. Of a line for which there is no memory, the bare format is reported. Which
// messages are wanted is the caller's gate; the middleware's own is below.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

enum ZULLogLevel : std::uint32_t { ZUL_LOG_LEVEL_ERROR = 1, ZUL_LOG_LEVEL_WARNING = 2 };

// A template: its 32-bit code and its text with %s and %d places, line feed included.
struct ZULLogTemplate {
    std::uint32_t code;
    const char* format;
};

extern const ZULLogTemplate ZUL_LOG_ANY_s;                 // any message
extern const ZULLogTemplate ZUL_LOG_ANY_FAILURE_s;         // any failure
extern const ZULLogTemplate ZUL_LOG_INIT_FAILURE_s;        // an object could not be initialized
extern const ZULLogTemplate ZUL_LOG_CREATION_FAILURE_s;    // an object could not be created
extern const ZULLogTemplate ZUL_LOG_DESTRUCTION_FAILURE_s; // an object could not be destroyed
extern const ZULLogTemplate ZUL_LOG_GET_FAILURE_s;         // something could not be read or found
extern const ZULLogTemplate ZUL_LOG_ADD_FAILURE_s;         // something could not be added
extern const ZULLogTemplate ZUL_LOG_REMOVE_FAILURE_s;      // something could not be removed
extern const ZULLogTemplate ZUL_LOG_BAD_PARAMETER_s;       // an argument was refused
extern const ZULLogTemplate ZUL_LOG_ASSERTION_s;           // a precondition did not hold
extern const ZULLogTemplate ZUL_LOG_ALLOCATION_FAILURE_d;  // bytes
extern const ZULLogTemplate ZUL_LOG_OUT_OF_HEAP_STRUCT_d;  // bytes of the structure
extern const ZULLogTemplate ZUL_LOG_OUT_OF_HEAP_STRING_d;  // characters of the string
extern const ZULLogTemplate ZUL_LOG_INSUFFICIENT_SPACE_dd; // available, needed
extern const ZULLogTemplate ZUL_LOG_SEMAPHORE_TAKE_FAILURE;
extern const ZULLogTemplate ZUL_LOG_SEMAPHORE_GIVE_FAILURE;
extern const ZULLogTemplate ZUL_LOG_XML_PARSE_FAILURE_ds; // line number of the document, what is wrong there
extern const ZULLogTemplate ZUL_LOG_XML_ILLEGAL_VALUE_d;  // line number of the document
extern const ZULLogTemplate ZUL_LOG_XML_INTERNAL_FAILURE_s; // what the reader could not do

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
    if constexpr (sizeof...(arguments) == 0) {
        ZULLog_emit(level, context, message, {});
    } else {
        const ZULLogArgument list[] = {ZULLogArgument(arguments)...};
        ZULLog_emit(level, context, message, list);
    }
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

// Replaces the sink (standard error); null restores it. The text is borrowed for the call. For tests.
using ZULLogSink = void (*)(void* sinkData, std::string_view line);
void ZULLog_setSink(ZULLogSink sink, void* sinkData);
