// What the log shows of a request, and what is done with it.
#include "practice_router/endpoints/worker.h"

#include "middleware/base/terminal_text.h"

#include <climits>
#include <mutex>
#include <new>
#include <poll.h>
#include <unistd.h>

namespace zul::practice {

using namespace plan;

namespace {

constexpr std::size_t MAX_LOGGED = 200; // bytes of one text
constexpr int OUTPUT_POLL_MILLISECONDS = 100;
std::mutex g_output; // of the process's routers one writes at a time: the room that it saw is still there

// A text as one piece of a log line.
std::string shown(std::string_view text) {
    return text.empty() ? "-" : shortened(text, MAX_LOGGED);
}

} // namespace

// Writes one line in one piece. A full pipe that nobody reads holds the router up, but not its end.
void Worker::log(const Request& request, const std::string& outcome) {
    std::string line = std::string(admin::commandName(request.kind)) + " invocation " +
                       std::to_string(request.id.invocation) + " target " + shown(request.target) +
                       " entity " + shown(request.entity) + ": " + outcome + "\n";
    if (isatty(STDOUT_FILENO) != 0) {
        line = ZULTerminal_shown(line);
    }
    static_assert(4 * (MAX_LOGGED + 64) < PIPE_BUF, "a line fits as soon as a pipe has room");
    const std::lock_guard lock(g_output);
    pollfd output{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
    // At the end each of many workers comes here in turn: then none waits.
    while (poll(&output, 1, queue_.isClosed() ? 0 : OUTPUT_POLL_MILLISECONDS) <= 0) {
        if (queue_.isClosed()) {
            return;
        }
    }
    // Standard output may be closed; the router works on without its log.
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
}

void Worker::turn(const Request& request) {
    if (!router_.isAddressed(request)) {
        router_.overhear(request);
        if (options_.isVerbose) {
            log(request, "addressed to another router");
        }
        return;
    }
    const std::optional<Answer> answer = router_.handle(request);
    if (!answer) {
        const Upload* upload = router_.uploads().find(request);
        if (upload != nullptr && !options_.countsOnly) { // a benchmark is not to wait for a terminal
            log(request, "piece " + std::to_string(upload->pieces) + ", " + std::to_string(upload->bytes) +
                             " bytes so far");
        }
        return;
    }
    // Before the answer goes out: whoever waits for this line may act between request and answer.
    const bool isKeptBack = options_.isSilent || options_.hasNoResponseWriter;
    log(request, std::string(isKeptBack ? "kept back: " : "") + admin::responseName(answer->kind) + " " +
                     shown(answer->text));
    if (isKeptBack || !queue_.pause(std::chrono::milliseconds(options_.delayMilliseconds))) {
        return;
    }
    if (!responder_.send(request, *answer) && !queue_.isClosed()) {
        log(request, "the answer was not acknowledged and is given up");
    }
}

void Worker::run() {
    while (const std::optional<Request> request = queue_.pop()) {
        try {
            turn(*request);
        } catch (const std::bad_alloc&) {
            // The line or the answer is lost; the router goes on.
        }
    }
}

} // namespace zul::practice
