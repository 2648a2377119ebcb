// The hand-over of responses: the one place where three contexts meet. The shell thread S sends requests and
// waits; the delivery thread L brings responses, one at a time; a signal handler H interrupts S at any
// moment and ends before S goes on. They share the record's `waitingForResponse` and `currentResponse`, its
// two semaphores and the number of its request. Nobody else touches these.
//
// - L publishes a response in `currentResponse`, gives "ready", and waits for "taken".
// - S, woken by "ready", claims the response by exchanging `currentResponse` with null. Each claim owes one
//   "taken", no more and no less; until then L keeps the loan. A "ready" without a response is stray: L had
//   withdrawn it, or H crossed a delivery. S waits on with the time that is left.
// - L withdraws by compare-exchange when its patience ends. If S was faster, L waits until "taken" is given.
// - `waitingForResponse` is true from the start of a request until S has the final response or gives up. H
//   clears it and gives "ready". It stays true while S gathers a part, so that H counts then, too.
// - L looks at `waitingForResponse` again after it has published, and S clears it before it looks for a last
//   response. One of them always sees the other, so nothing stays published that nobody will claim.
#pragma once

#include "remote_config/client.h"
#include "remote_config/log.h"

namespace zul::remote_config {

using Response = ZUL_RoutingService_Administration_CommandResponse;

// The context of what goes wrong in a send.
constexpr const char* SEND = "ROUTERRemoteConfigClient_sendEntityMessage"; // oddity 7

// What the hand-over is built on: the record that keeps the shared words, and the operations that the words
// do not have themselves. A test puts its own in this place, to order them as it likes.
struct ClientPlatform {
    using Record = ROUTERRemoteConfigClient;

    static ZULDeadline deadlineAfter(const ZULTime& span) { return ZULDeadline_after(span); }
    static ZULSemaphoreStatus take(ZULSemaphore* semaphore, const ZULDeadline& deadline) {
        return ZULSemaphore_take(semaphore, deadline);
    }
    static ZULSemaphoreStatus give(ZULSemaphore* semaphore) { return ZULSemaphore_give(semaphore); }
    static void pause() { ZULSleep(0, 1'000'000); } // nanoseconds
    static DDS_Long load(DDS_Long& word) { return std::atomic_ref(word).load(); }
    static void store(DDS_Long& word, DDS_Long value) { std::atomic_ref(word).store(value); }
};

// How a wait ended.
enum class WaitEnd {
    ANSWERED,    // the final response was gathered
    INTERRUPTED, // by H
    TIMED_OUT,   // no response came within `responseTimeout`, which starts afresh for each
    FAILED,      // a semaphore failed, which is logged, or `gather` gave up
};

// A view of a record; made where it is needed.
template <class Platform = ClientPlatform>
class HandOver {
public:
    using Record = typename Platform::Record;
    explicit HandOver(Record& record, Platform platform = {}) : record_(record), platform_(platform) {}

    // S: counts the request's number up. Responses to the one before are not credited any more.
    void nextRequest() {
        DDS_Long& invocation = record_.commandSample->id.invocation;
        // Counts as unsigned, so that the largest number is followed by the smallest.
        const auto next = static_cast<DDS_UnsignedLong>(platform_.load(invocation)) + 1;
        platform_.store(invocation, static_cast<DDS_Long>(next));
    }

    // S: starts the waiting state. All that is sent until the next start belongs together.
    void begin() { record_.waitingForResponse.store(true); }
    // S: whether H has come since `begin`. For sends that belong together, before one of them is awaited.
    bool isInterrupted() const { return !record_.waitingForResponse.load(); }

    // S: calls `bool gather(const Response&)` with each response to the request until one is final. The
    // response is valid during the call; false gives up. Leaves the waiting state.
    template <class Gather>
    WaitEnd await(Gather gather) {
        bool released = true;
        for (;;) {
            const Response* response = nullptr;
            const WaitEnd end = claimNext(response);
            if (response == nullptr) {
                return end;
            }
            const bool gathered = gather(*response);
            const bool isLast = !gathered || response->is_final != 0;
            if (isLast) {
                // before L goes on, which drops what nobody waits for
                record_.waitingForResponse.store(false);
            }
            released = giveTaken() && released;
            if (isLast) {
                return gathered && released ? WaitEnd::ANSWERED : WaitEnd::FAILED;
            }
        }
    }

    // S: leaves the waiting state and lets L go, so that L does not wait for a consumer that will not come.
    void close() {
        record_.waitingForResponse.store(false);
        discardPublished();
    }

    // H: ends the waiting state, if there is one. Async-signal-safe.
    void abort() {
        if (record_.waitingForResponse.exchange(false)) {
            platform_.give(record_.responseReadySemaphore);
        }
    }

    // L: offers a response and returns when its loan may go back: at once if nobody waits for it.
    void publish(const Response& response) {
        if (!record_.waitingForResponse.load() || !isAnswer(response) ||
            response.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT) {
            return;
        }
        record_.currentResponse.store(&response);
        if (!record_.waitingForResponse.load() && withdraw(response)) {
            return;
        }
        if (platform_.give(record_.responseReadySemaphore) != ZUL_SEMAPHORE_OK) {
            remoteConfigError(LISTENER, ZUL_LOG_SEMAPHORE_GIVE_FAILURE);
        }
        platform_.pause();
        awaitTaken(response);
    }

    // Whether the response has the id of the current request.
    bool isAnswer(const Response& response) const {
        auto& current = record_.commandSample->id;
        const auto& id = response.id;
        return id.host == current.host && id.app == current.app &&
               id.invocation == platform_.load(current.invocation);
    }

private:
    static constexpr const char* LISTENER =
        "ZUL_RoutingService_Administration_CommandResponseListener_on_data_available";

    // Sets `response` to the next one of the current request, which then owes a "taken", or leaves it null
    // and says how the wait ended.
    WaitEnd claimNext(const Response*& response) {
        const ZULDeadline deadline = platform_.deadlineAfter(record_.responseTimeout);
        for (;;) {
            const ZULSemaphoreStatus status = platform_.take(record_.responseReadySemaphore, deadline);
            const Response* claimed = record_.currentResponse.exchange(nullptr);
            if (status == ZUL_SEMAPHORE_OK && record_.waitingForResponse.load()) {
                if (claimed != nullptr && isAnswer(*claimed)) {
                    response = claimed;
                    return WaitEnd::ANSWERED;
                }
                if (claimed != nullptr) {
                    giveTaken(); // it answers an earlier request
                }
                continue;
            }
            const bool wasInterrupted = !record_.waitingForResponse.exchange(false);
            if (claimed != nullptr) {
                giveTaken();
            }
            discardPublished();
            if (wasInterrupted || status == ZUL_SEMAPHORE_TIMEOUT) {
                return wasInterrupted ? WaitEnd::INTERRUPTED : WaitEnd::TIMED_OUT;
            }
            remoteConfigError(SEND, ZUL_LOG_SEMAPHORE_TAKE_FAILURE);
            return WaitEnd::FAILED;
        }
    }

    bool giveTaken() {
        if (platform_.give(record_.responseTakenSemaphore) == ZUL_SEMAPHORE_OK) {
            return true;
        }
        remoteConfigError(SEND, ZUL_LOG_SEMAPHORE_GIVE_FAILURE);
        return false;
    }

    void discardPublished() {
        if (record_.currentResponse.exchange(nullptr) != nullptr) {
            giveTaken();
        }
    }

    // Takes back a response that nobody has claimed. False when S has.
    bool withdraw(const Response& response) {
        const Response* expected = &response;
        return record_.currentResponse.compare_exchange_strong(expected, nullptr);
    }

    void awaitTaken(const Response& response) {
        const ZULSemaphoreStatus status =
            platform_.take(record_.responseTakenSemaphore, platform_.deadlineAfter(record_.responseTimeout));
        if (status == ZUL_SEMAPHORE_OK) {
            return;
        }
        if (status == ZUL_SEMAPHORE_ERROR) {
            remoteConfigError(LISTENER, ZUL_LOG_SEMAPHORE_TAKE_FAILURE);
        } else {
            remoteConfigError(LISTENER, ZUL_LOG_ANY_s, "timeout");
        }
        if (!withdraw(response)) {
            // S is reading it: the loan must wait, but not for long.
            platform_.take(record_.responseTakenSemaphore,
                           platform_.deadlineAfter({.sec = ZUL_TIME_FOREVER_SEC, .frac = 0}));
        }
    }

    Record& record_;
    Platform platform_;
};

// The client's own is compiled once, in hand_over.cpp; a test includes this header for its own.
extern template class HandOver<ClientPlatform>;

} // namespace zul::remote_config
