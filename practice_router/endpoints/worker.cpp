#include "practice_router/endpoints/worker.h"

#include "practice_router/endpoints/responder.h"

#include <climits>
#include <poll.h>
#include <unistd.h>

namespace {

constexpr std::size_t MAX_LOGGED = 200; // bytes of one text
constexpr int OUTPUT_POLL_MILLISECONDS = 100;

constexpr const char* answerName(ZUL_RoutingService_Administration_CommandResponseKind kind) {
    switch (kind) {
#define X(name, value)                                                                                       \
    case value:                                                                                              \
        return #name;
        ZUL_ADMINISTRATION_RESPONSE_KINDS(X)
#undef X
    default:
        return "UNKNOWN";
    }
}

// A text as one piece of a log line.
std::string shown(std::string_view text) {
    return text.empty() ? "-" : zul::practice::shortened(text, MAX_LOGGED);
}

// One line on standard output at once. A full pipe that nobody reads holds the router up, but not its end.
void log(PracticeRequestQueue& queue, const PracticeRequest& request, const std::string& outcome) {
    const std::string line = std::string(PracticeRequest_kindName(request.kind)) + " invocation " +
                             std::to_string(request.id.invocation) + " target " + shown(request.target) +
                             " entity " + shown(request.entity) + ": " + outcome + "\n";
    static_assert(4 * (MAX_LOGGED + 64) < PIPE_BUF, "a line fits as soon as a pipe has room");
    pollfd output{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
    while (poll(&output, 1, OUTPUT_POLL_MILLISECONDS) <= 0) {
        if (PracticeRequestQueue_isClosed(queue)) {
            return;
        }
    }
    // Standard output may be closed; the router works on without its log.
    [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, line.data(), line.size());
}

std::string describe(const PracticeAnswer& answer) {
    return std::string(answerName(answer.kind)) + " " + shown(answer.text);
}

void handle(PracticeRouter& router, PracticeResponder& responder, const PracticeRequest& request) {
    const std::optional<PracticeAnswer> answer = PracticeRouter_handle(router, request);
    if (!answer) {
        const PracticeUpload* upload = PracticeUploads_find(router.uploads, request);
        if (upload != nullptr && !router.uploads.countsOnly) { // a benchmark is not to wait for a terminal
            log(responder.queue, request,
                "piece " + std::to_string(upload->pieces) + ", " + std::to_string(upload->bytes) +
                    " bytes so far");
        }
        return;
    }
    // Before the answer goes out: whoever waits for this line may act between request and answer.
    log(responder.queue, request, (responder.faults.isSilent ? "kept back: " : "") + describe(*answer));
    if (responder.faults.isSilent ||
        !PracticeRequestQueue_pause(responder.queue,
                                    std::chrono::milliseconds(responder.faults.delayMilliseconds))) {
        return;
    }
    if (!PracticeResponder_send(responder, request, *answer) &&
        !PracticeRequestQueue_isClosed(responder.queue)) {
        log(responder.queue, request, "the answer was not acknowledged and is given up");
    }
}

} // namespace

void PracticeWorker_run(PracticeRouter& router, PracticeRequestQueue& queue, PracticeEndpoints& endpoints,
                        const PracticeOptions& options) {
    PracticeResponder responder{.endpoints = endpoints, .queue = queue, .faults = options.faults};
    router.configuration.stop = queue.ending.get_token();
    while (const std::optional<PracticeRequest> request = PracticeRequestQueue_pop(queue)) {
        if (PracticeRouter_isAddressed(router, *request)) {
            handle(router, responder, *request);
        } else {
            PracticeRouter_overhear(router, *request);
            if (options.isVerbose) {
                log(queue, *request, "addressed to another router");
            }
        }
    }
}
