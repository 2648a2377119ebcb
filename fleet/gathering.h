// Gathering: which answers are awaited, what has come, and when nobody is waited for any more. Knows nothing
// of DDS or of clocks; one thread.
//
// An answer belongs to a request by its number and to a router by the writer it came from. So two routers
// with one name give two results, and parts that arrive interleaved are put together router by router.
#pragma once

#include "fleet/identity.h"
#include "fleet/wakeup.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace zul::fleet {

// Bytes. Each part of an expected router starts the time-out anew, so one that sends them without end is cut
// off by size.
constexpr std::size_t MAX_ANSWER = 256U << 20;

// A response as it arrived, whoever it is for.
struct Response {
    std::int32_t invocation = 0; // of the request; host and application are this participant's
    GuidPrefix writer{};
    std::int32_t kind = 0;
    std::string message{};
    bool isFinal = false;
    Clock::time_point at{};
};

enum class Status { OK, ERROR, NOT_FOUND, NO_ANSWER, INTERRUPTED };
// Whether a router has spoken, be it to refuse.
constexpr bool isAnswer(Status status) {
    return status == Status::OK || status == Status::ERROR || status == Status::NOT_FOUND;
}

// What became of one request at one router.
struct Answer {
    std::string router{};               // the name that was asked
    std::optional<GuidPrefix> writer{}; // nothing when nobody is known who could have answered
    Status status = Status::NO_ANSWER;
    std::string message{}; // of all parts
    std::size_t parts = 0;
    std::chrono::milliseconds took{}; // from the request to the last part
    bool isWhole = true;              // else the error is not the router's: what it answered was lost
};

class Gathering {
public:
    // `timeout` counts from the request or the last part.
    explicit Gathering(Clock::duration timeout) : timeout_(timeout) {}

    // A request has been sent. `routers` are those that it must reach; with none, one answer is enough.
    void expect(std::int32_t invocation, const std::string& router, const std::vector<GuidPrefix>& routers,
                Clock::time_point sent);
    // Credits a response, or drops it: a foreign, a late or a duplicate one. Returns what there is now of an
    // answer that goes on; valid until the next call. Null: dropped, or it was the last part.
    const Answer* add(const Response& response);
    // A participant is gone: it is not waited for.
    void lose(const GuidPrefix& participant);
    // Ends the waits whose time is up.
    void expire(Clock::time_point now);
    // Ends all waits.
    void interrupt();
    // Ends all waits with an error: a response is missing, and nobody knows whose.
    void spoil();

    bool isComplete() const { return open_ == 0; }
    // When `expire` is due.
    Clock::time_point deadline() const;
    // If nothing comes: the time from which fewer than `count` (at least 1) of the open waits have been heard
    // from within the last `patience`.
    Clock::time_point whenFewerThan(std::size_t count, Clock::duration patience) const;
    // The answers that have ended since the last call.
    std::vector<Answer> takeEnded();

private:
    struct Wait {
        Answer answer{};
        Clock::time_point begin{};
        Clock::time_point last{}; // sent, or the last part
        bool isExpected = true;   // or a stranger, whose parts do not keep us waiting
        bool hasEnded = false;
    };
    Wait* find(std::int32_t invocation, const GuidPrefix& writer);
    void end(Wait& wait, Status status);

    Clock::duration timeout_;
    std::multimap<std::int32_t, Wait> waits_; // by invocation
    std::size_t open_ = 0;
    std::vector<Answer> ended_;
};

} // namespace zul::fleet
