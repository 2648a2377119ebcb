// One wait for each router that a request must reach. An answer from a writer that nobody expected takes the
// wait that has no writer yet, or gets one of its own: it is the only word of a router that was not known.
#include "fleet/gathering.h"

#include "admin_types/modules.h"

#include <algorithm>

namespace zul::fleet {

namespace {

Status statusOf(std::int32_t kind) {
    return kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK ||
                   kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT
               ? Status::OK
           : kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ENTITY_NOT_FOUND ? Status::NOT_FOUND
                                                                           : Status::ERROR;
}

} // namespace

void Gathering::expect(std::int32_t invocation, const std::string& router,
                       const std::vector<GuidPrefix>& routers, Clock::time_point sent) {
    const auto add = [&](std::optional<GuidPrefix> writer) {
        waits_.insert(
            {invocation, {.answer = {.router = router, .writer = writer}, .begin = sent, .last = sent}});
        ++open_;
    };
    std::ranges::for_each(routers, add);
    if (routers.empty()) {
        add(std::nullopt);
    }
}

Gathering::Wait* Gathering::find(std::int32_t invocation, const GuidPrefix& writer) {
    const auto [begin, end] = waits_.equal_range(invocation);
    Wait* free = nullptr;
    for (auto wait = begin; wait != end; ++wait) {
        if (wait->second.answer.writer == writer) {
            return &wait->second;
        }
        if (!wait->second.answer.writer && (free == nullptr || !wait->second.hasEnded)) {
            free = &wait->second; // also one that has ended: its answer is late
        }
    }
    if (free == nullptr && begin != end) {
        const Wait& known = begin->second;
        free = &waits_
                    .insert({invocation,
                             {.answer = {.router = known.answer.router},
                              .begin = known.begin,
                              .last = known.begin,
                              .isExpected = false}})
                    ->second;
        ++open_;
    }
    if (free != nullptr) {
        free->answer.writer = writer;
    }
    return free;
}

const Answer* Gathering::add(const Response& response) {
    Wait* wait = find(response.invocation, response.writer);
    if (wait == nullptr || wait->hasEnded) {
        return nullptr;
    }
    if (response.message.size() > MAX_ANSWER - wait->answer.message.size()) {
        wait->answer.message = "its answer is longer than " + std::to_string(MAX_ANSWER) + " bytes";
        wait->answer.isWhole = false;
        end(*wait, Status::ERROR);
        return nullptr;
    }
    wait->answer.message += response.message;
    ++wait->answer.parts;
    const auto at = std::max(wait->last, response.at); // it may come before the call that sends returns
    if (wait->isExpected) {
        wait->last = at;
    }
    wait->answer.took = std::chrono::duration_cast<std::chrono::milliseconds>(at - wait->begin);
    if (response.isFinal) {
        end(*wait, statusOf(response.kind));
        return nullptr;
    }
    return &wait->answer;
}

void Gathering::end(Wait& wait, Status status) {
    wait.hasEnded = true;
    wait.answer.status = status;
    --open_;
    // The name and the writer stay, to tell a duplicate by.
    ended_.push_back({.router = wait.answer.router,
                      .writer = wait.answer.writer,
                      .status = status,
                      .message = std::move(wait.answer.message),
                      .parts = wait.answer.parts,
                      .took = wait.answer.took,
                      .isWhole = wait.answer.isWhole});
    wait.answer.message = {};
}

void Gathering::lose(const GuidPrefix& participant) {
    for (auto& [invocation, wait] : waits_) {
        if (!wait.hasEnded && wait.answer.writer == participant) {
            end(wait, Status::NO_ANSWER);
        }
    }
}

void Gathering::expire(Clock::time_point now) {
    for (auto& [invocation, wait] : waits_) {
        if (!wait.hasEnded && wait.last + timeout_ <= now) {
            end(wait, Status::NO_ANSWER);
        }
    }
}

void Gathering::interrupt() {
    for (auto& [invocation, wait] : waits_) {
        if (!wait.hasEnded) {
            end(wait, Status::INTERRUPTED);
        }
    }
}

void Gathering::spoil() {
    for (auto& [invocation, wait] : waits_) {
        if (!wait.hasEnded) {
            wait.answer.message = "a part of an answer did not fit in memory; ask fewer routers at a time";
            wait.answer.isWhole = false;
            end(wait, Status::ERROR);
        }
    }
}

Clock::time_point Gathering::deadline() const {
    Clock::time_point earliest = Clock::time_point::max();
    for (const auto& [invocation, wait] : waits_) {
        if (!wait.hasEnded) {
            earliest = std::min(earliest, wait.last + timeout_);
        }
    }
    return earliest;
}

Clock::time_point Gathering::whenFewerThan(std::size_t count, Clock::duration patience) const {
    std::vector<Clock::time_point> ends;
    for (const auto& [invocation, wait] : waits_) {
        if (!wait.hasEnded) {
            ends.push_back(wait.last + patience);
        }
    }
    if (ends.size() < count) {
        return Clock::time_point::min();
    }
    const auto last = std::prev(ends.end(), static_cast<std::ptrdiff_t>(count));
    std::ranges::nth_element(ends, last);
    return *last;
}

std::vector<Answer> Gathering::takeEnded() {
    return std::exchange(ended_, {});
}

} // namespace zul::fleet
