// The hand-over's own code, run through all interleavings of a sending thread, a delivery thread and up to
// two signals, over words and semaphores that ask the explorer at every operation who goes on. No
// interleaving may hang, lose an interrupt or a response, credit one to another request, give a loan back
// while it is read, or leave a token behind. Seeded mistakes show that it would be seen.
#include "remote_config/hand_over.h"
#include "tests/remote_config/hand_over_explorer.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <optional>

namespace {

using explorer::DELIVERY;
using explorer::mix;
using explorer::SHELL;
using zul::remote_config::HandOver;
using zul::remote_config::Response;
using zul::remote_config::WaitEnd;

// What a hasty hand would write in place of what is there.
enum class Mistake {
    NONE,
    TAKEN_NOT_GIVEN,
    TAKEN_GIVEN_TWICE,
    READY_NOT_GIVEN_BY_LISTENER,
    READY_NOT_GIVEN_BY_HANDLER,
    READY_GIVEN_BEFORE_PUBLISHING,
    CLAIM_BY_LOAD_AND_STORE,
    WITHDRAW_BY_STORE,
    WITHDRAW_BY_LOAD_AND_STORE,
    LOAN_RETURNED_THOUGH_CLAIMED,
    NO_SECOND_LOOK_AT_THE_FLAG,
    NO_SECOND_LOOK_AT_THE_ID,
    FLAG_DOWN_WHILE_GATHERING,
    FLAG_CLEARED_AFTER_TAKEN,
    FLAG_TESTED_THEN_CLEARED,
    FLAG_NOT_CLEARED_BY_HANDLER,
    LAST_RESPONSE_NOT_DISCARDED,
    INTERRUPT_FORGOTTEN_BETWEEN_PIECES,
    LAST,
};

// A scenario: words of a command, a colon, and what the router sends when that command is written.
//   W waits for its answer      N does not wait; the next command is another one
//   U does not wait; the next one is the next piece of the same request
//   D does not wait; the next one is another request that an interrupt ends too
//   a point: the next command comes when the delivery thread has nothing left to do
//   F the final response   P a part   L a final one to the request before   X a final one to another shell
struct Command {
    char kind;
    int responsesEnd; // of `Scenario::responses`, once it is written
    bool isFollowedByQuiet = false;
};
struct Scenario {
    explicit Scenario(std::string_view text) {
        DDS_Long number = 0;
        for (const char c : text) {
            if (std::string_view("WNUD").find(c) != std::string_view::npos) {
                number += commands.empty() || commands.back().kind != 'U' ? 1 : 0;
                commands.push_back({c, static_cast<int>(responses.size())});
            } else if (std::string_view("FPLX").find(c) != std::string_view::npos) {
                Response response{};
                response.id = {c == 'X' ? 2 : 1, 1, number - (c == 'L' ? 1 : 0)};
                response.is_final = c == 'P' ? 0 : 1;
                responses.push_back(response);
                commands.back().responsesEnd = static_cast<int>(responses.size());
            } else if (c == '.') {
                commands.back().isFollowedByQuiet = true;
            }
        }
    }
    std::vector<Command> commands;
    std::vector<Response> responses;
};

// One preemption finds every seeded mistake; two are searched within seconds. ZUL_EXPLORE=all lifts the
// bound: the search is then complete, in about a minute. The sanitizers slow it up to tenfold and have little
// to see here, where all runs on one thread.
int preemptions() {
    const char* wanted = std::getenv("ZUL_EXPLORE");
    if (wanted != nullptr && std::string_view(wanted) == "all") {
        return explorer::UNBOUNDED;
    }
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    return 1;
#else
    return 2;
#endif
}

constexpr int SIGNALS = 2;

struct World {
    World(const Scenario& scenarioToRun, Mistake mistakeToMake)
        : scenario(scenarioToRun), mistake(mistakeToMake) {
        explorer.emplace(explorer::Program{
            .reset =
                [this] {
                    state = {};
                    record = Record(*this);
                },
            .threads = {[this] { sendAll(); },
                        [this] {
                            deliverAll();
                        }},
            .handler = [this] { interrupt(); },
            .signals = SIGNALS,
            .preemptions = preemptions(),
            .shared = [this] { return hash(); },
            .stuck = [this] { return whatIsStuck(); },
            .end = [this] { return whatIsLeft(); },
        });
    }

    // The words and semaphores of the record. Each operation is one step.
    struct Flag {
        World* world;
        bool value = false;
        bool load() { return world->loadFlag(); }
        void store(bool next) { world->storeFlag(next); }
        bool exchange(bool next) { return world->exchangeFlag(next); }
    };
    struct Slot {
        World* world;
        const Response* value = nullptr;
        void store(const Response* next) { world->publish(next); }
        const Response* exchange(std::nullptr_t) { return world->claim(); }
        bool compare_exchange_strong(const Response*& expected, std::nullptr_t) {
            return world->withdraw(expected);
        }
    };
    struct Request {
        ZUL_RoutingService_Administration_CommandId id{1, 1, 0};
    };
    struct Semaphore {
        int count = 0;
    };
    struct Record {
        explicit Record(World& world)
            : waitingForResponse{&world},
              currentResponse{&world},
              responseReadySemaphore(&world.state.ready),
              responseTakenSemaphore(&world.state.taken),
              commandSample(&world.state.request) {}
        Flag waitingForResponse;
        Slot currentResponse;
        Semaphore* responseReadySemaphore;
        Semaphore* responseTakenSemaphore;
        Request* commandSample;
        ZULTime responseTimeout{1, 0};
    };
    struct Platform {
        using Record = World::Record;
        World* world;
        ZULDeadline deadlineAfter(const ZULTime& span) const { return world->deadlineAfter(span); }
        ZULSemaphoreStatus take(Semaphore* semaphore, const ZULDeadline& deadline) const {
            return world->take(*semaphore, deadline);
        }
        ZULSemaphoreStatus give(Semaphore* semaphore) const { return world->give(*semaphore); }
        void pause() const {}
        DDS_Long load(DDS_Long& word) const { return world->loadNumber(word); }
        void store(DDS_Long& word, DDS_Long next) const { world->storeNumber(word, next); }
    };
    HandOver<Platform> room() { return HandOver<Platform>(record, Platform{this}); }

    // All that a run changes, but for the two words.
    struct State {
        Request request{};
        Semaphore ready{}, taken{};
        int sent = 0;                               // responses on their way or further
        int hasWork = 0, isQuiet = 1, hasEnded = 0; // of the delivery thread
        bool isClosing = false;
        int loanBegin = 0, loanEnd = 0;
        bool waitsForReady = false, waitsForTaken = false, listenerTimedOut = false;
        // What the sending thread is at.
        bool isWaiting = false; // between the start of a request and the end of its wait
        bool mustBeInterrupted = false, mayBeInterrupted = false;
        int claimed = 0;             // the response that is claimed, counted from 1
        bool claimedTooLate = false; // after an interrupt that should have ended the wait
        bool isOfferClaimed = false; // the response that the delivery thread offers
        int last = 0;                // gathered, counted from 1
        int deadlines = 0, parts = 0;
        int heldBack = 0; // a seeded mistake's
    };

    explorer::Explorer& at() { return *explorer; }
    bool seeded(Mistake which) const { return mistake == which; }
    bool isShell() { return at().thread() == SHELL && !at().isInHandler(); }
    int indexOf(const Response* response) const {
        return response == nullptr ? 0 : static_cast<int>(response - scenario.responses.data()) + 1;
    }
    bool isRight(const Response& response) const {
        return response.id.host == 1 && response.id.invocation == state.request.id.invocation;
    }
    void require(bool condition, const char* violation) {
        if (!condition) {
            at().fail(violation);
        }
    }

    // --- the operations
    bool loadFlag() {
        at().step();
        bool value = record.waitingForResponse.value;
        if (at().thread() == DELIVERY) {
            const bool hasPublished = record.currentResponse.value != nullptr || state.heldBack != 0;
            value |= seeded(Mistake::NO_SECOND_LOOK_AT_THE_FLAG) && hasPublished;
        } else if (seeded(Mistake::INTERRUPT_FORGOTTEN_BETWEEN_PIECES) && state.deadlines == 0) {
            value = record.waitingForResponse.value = true;
        }
        at().observe(value);
        return value;
    }
    void setFlag(bool value) {
        record.waitingForResponse.value = value;
        if (isShell()) {
            state.isWaiting = value;
            state.mustBeInterrupted &= !value;
            state.mayBeInterrupted &= !value;
        }
    }
    void storeFlag(bool value) {
        at().step();
        if (seeded(Mistake::FLAG_CLEARED_AFTER_TAKEN) && state.claimed != 0) {
            state.heldBack = 1;
        } else {
            setFlag(value);
        }
    }
    bool exchangeFlag(bool value) {
        at().step();
        const bool before = record.waitingForResponse.value;
        if (seeded(Mistake::FLAG_TESTED_THEN_CLEARED) && isShell()) {
            at().step();
        }
        if (!seeded(Mistake::FLAG_NOT_CLEARED_BY_HANDLER) || isShell()) {
            const bool must = state.mustBeInterrupted, may = state.mayBeInterrupted;
            setFlag(value);
            state.mustBeInterrupted = must;
            state.mayBeInterrupted = may;
        }
        at().observe(before);
        return before;
    }
    void publish(const Response* response) {
        at().step();
        if (seeded(Mistake::READY_GIVEN_BEFORE_PUBLISHING)) {
            state.heldBack = indexOf(response);
        } else {
            record.currentResponse.value = response;
        }
    }
    const Response* claim() {
        at().step();
        const Response* response = record.currentResponse.value;
        if (seeded(Mistake::LAST_RESPONSE_NOT_DISCARDED) && !state.isWaiting) {
            return nullptr;
        }
        at().observe(static_cast<std::uint64_t>(indexOf(response)));
        if (response != nullptr) {
            state.claimed = indexOf(response);
            state.isOfferClaimed = true;
            state.claimedTooLate = state.mustBeInterrupted;
            if (seeded(Mistake::CLAIM_BY_LOAD_AND_STORE)) {
                at().step();
            }
        }
        record.currentResponse.value = nullptr;
        return response;
    }
    bool withdraw(const Response* expected) {
        at().step();
        bool isThere = record.currentResponse.value == expected;
        at().observe(isThere);
        if (seeded(Mistake::WITHDRAW_BY_LOAD_AND_STORE)) {
            at().step();
        }
        if (isThere || seeded(Mistake::WITHDRAW_BY_STORE)) {
            record.currentResponse.value = nullptr;
            isThere = true;
        }
        return isThere;
    }
    ZULDeadline deadlineAfter(const ZULTime& span) {
        state.deadlines += at().thread() == SHELL ? 1 : 0;
        return {.nanoseconds = state.deadlines, .never = span.sec == ZUL_TIME_FOREVER_SEC};
    }
    ZULSemaphoreStatus take(Semaphore& semaphore, const ZULDeadline& deadline) {
        if (seeded(Mistake::LOAN_RETURNED_THOUGH_CLAIMED) && deadline.never) {
            return ZUL_SEMAPHORE_OK;
        }
        require(at().thread() == DELIVERY || deadline.nanoseconds == state.deadlines, "an old time-out");
        bool& waits = at().thread() == SHELL ? state.waitsForReady : state.waitsForTaken;
        waits = true;
        const bool isTaken = at().step(&semaphore.count, !deadline.never);
        waits = false;
        semaphore.count -= isTaken ? 1 : 0;
        state.listenerTimedOut |= !isTaken && at().thread() == DELIVERY;
        return isTaken ? ZUL_SEMAPHORE_OK : ZUL_SEMAPHORE_TIMEOUT;
    }
    ZULSemaphoreStatus give(Semaphore& semaphore) {
        at().step();
        const bool isTaken = &semaphore == &state.taken;
        const bool isLost = isTaken                     ? seeded(Mistake::TAKEN_NOT_GIVEN)
                            : at().thread() == DELIVERY ? seeded(Mistake::READY_NOT_GIVEN_BY_LISTENER)
                                                        : seeded(Mistake::READY_NOT_GIVEN_BY_HANDLER);
        semaphore.count += isLost ? 0 : isTaken && seeded(Mistake::TAKEN_GIVEN_TWICE) ? 2 : 1;
        if (isTaken) {
            state.claimed = 0;
        }
        if (state.heldBack != 0 && (isTaken || at().thread() == DELIVERY)) {
            at().step();
            if (isTaken) {
                setFlag(false);
            } else {
                record.currentResponse.value =
                    &scenario.responses[static_cast<std::size_t>(state.heldBack) - 1];
            }
            state.heldBack = 0;
        }
        return ZUL_SEMAPHORE_OK;
    }
    DDS_Long loadNumber(const DDS_Long& word) {
        if (isShell()) { // nobody else writes it
            const bool isBlind = seeded(Mistake::NO_SECOND_LOOK_AT_THE_ID) && state.claimed != 0;
            return isBlind ? scenario.responses[static_cast<std::size_t>(state.claimed) - 1].id.invocation
                           : word;
        }
        at().step();
        at().observe(static_cast<std::uint64_t>(word));
        return word;
    }
    void storeNumber(DDS_Long& word, DDS_Long next) {
        at().step();
        word = next;
    }

    // --- the signal handler
    void interrupt() {
        if (state.isWaiting) {
            // A final answer that is already claimed may still be reported.
            const Response* claimed = state.claimed != 0
                                          ? &scenario.responses[static_cast<std::size_t>(state.claimed) - 1]
                                          : nullptr;
            state.mayBeInterrupted = true;
            state.mustBeInterrupted |= claimed == nullptr || !isRight(*claimed) || claimed->is_final == 0;
        }
        room().abort();
    }

    // --- the sending thread
    void sendAll() {
        bool isDropped = false;
        for (std::size_t i = 0; i < scenario.commands.size(); ++i) {
            const Command& command = scenario.commands[i];
            const char before = i == 0 ? 'N' : scenario.commands[i - 1].kind;
            state.deadlines = state.parts = state.last = 0;
            at().forget(i * 2 + (isDropped ? 1 : 0));
            const bool goesOn = before == 'U' || before == 'D';
            if (goesOn && !isDropped) {
                const bool must = state.mustBeInterrupted;
                isDropped = room().isInterrupted();
                require(isDropped || !must, "interrupt lost");
                require(!isDropped || state.mayBeInterrupted, "interrupt out of nothing");
            }
            if (goesOn && isDropped) {
                continue;
            }
            isDropped = false;
            if (before != 'U') {
                room().nextRequest();
            }
            if (!goesOn) {
                room().begin();
            }
            at().step();
            if (state.sent < command.responsesEnd) {
                state.sent = command.responsesEnd;
                state.hasWork = 1;
                state.isQuiet = 0;
            }
            if (command.kind == 'W') {
                judge(room().await([this](const Response& response) { return gather(response); }));
            }
            if (command.isFollowedByQuiet) {
                at().step(&state.isQuiet);
            }
        }
        room().close();
        state.isClosing = true;
        state.hasWork = 1;
        at().step(&state.hasEnded);
    }
    bool gather(const Response& response) {
        require(state.claimed == indexOf(&response), "read without a claim");
        require(isRight(response), "credited to another request");
        require(state.last < state.claimed, "gathered twice, or out of order");
        require(!state.claimedTooLate, "interrupt lost: another response was gathered");
        state.last = state.claimed;
        state.parts += response.is_final == 0 ? 1 : 0;
        if (seeded(Mistake::FLAG_DOWN_WHILE_GATHERING)) {
            at().step();
            record.waitingForResponse.value = false;
            at().step();
            record.waitingForResponse.value = response.is_final == 0;
        }
        at().step(); // reading takes its time
        return true;
    }
    void judge(WaitEnd end) {
        const bool isLastFinal =
            state.last != 0 && scenario.responses[static_cast<std::size_t>(state.last) - 1].is_final != 0;
        require(isLastFinal == (end == WaitEnd::ANSWERED),
                "answered without a final response, or the reverse");
        require(end != WaitEnd::INTERRUPTED || state.mayBeInterrupted, "interrupt out of nothing");
        require(end != WaitEnd::TIMED_OUT || !state.mustBeInterrupted, "interrupt lost: timed out");
        require(end <= WaitEnd::TIMED_OUT, "a semaphore failed");
        require(state.deadlines == state.parts + 1,
                "the time-out did not start afresh for each response, or did for a stray token");
        require(!record.waitingForResponse.value, "still waiting");
        require(state.claimed == 0, "a claimed response was kept");
    }

    // --- the delivery thread
    void deliverAll() {
        for (;;) {
            at().forget(static_cast<std::uint64_t>(state.loanEnd));
            state.isQuiet = state.hasWork == 0 ? 1 : 0;
            at().step(&state.hasWork);
            state.loanBegin = state.loanEnd;
            state.loanEnd = state.sent;
            state.hasWork = state.isClosing ? 1 : 0;
            if (state.loanBegin == state.loanEnd) {
                break; // there was nothing but the end
            }
            for (int i = state.loanBegin; i < state.loanEnd; ++i) {
                const Response& response = scenario.responses[static_cast<std::size_t>(i)];
                at().forget(static_cast<std::uint64_t>(100 + i * 10 + state.loanEnd));
                state.listenerTimedOut = state.isOfferClaimed = false;
                room().publish(response);
                require(state.isOfferClaimed || !state.isWaiting || state.mayBeInterrupted ||
                            !isRight(response) || state.listenerTimedOut,
                        "response lost");
            }
            at().step();
            require(state.claimed <= state.loanBegin || state.claimed > state.loanEnd,
                    "loan returned while read");
            state.loanBegin = state.loanEnd;
        }
        state.hasEnded = 1;
    }

    // --- verdicts
    std::string whatIsStuck() const {
        if (state.waitsForTaken) {
            return "the listener waits for a taken that nobody will give";
        }
        return state.waitsForReady && state.mustBeInterrupted ? "interrupt lost: the wait goes on" : "";
    }
    std::string whatIsLeft() const {
        if (state.taken.count != 0 || record.currentResponse.value != nullptr) {
            return "a token or a response is left";
        }
        return "";
    }
    std::uint64_t hash() const {
        std::uint64_t hash = 0;
        for (const int value : {int{record.waitingForResponse.value},
                                indexOf(record.currentResponse.value),
                                int{state.request.id.invocation},
                                state.ready.count,
                                state.taken.count,
                                state.sent,
                                state.hasWork,
                                state.hasEnded,
                                int{state.isClosing},
                                state.loanBegin,
                                state.loanEnd,
                                int{state.waitsForReady},
                                int{state.waitsForTaken},
                                int{state.listenerTimedOut},
                                int{state.isWaiting},
                                int{state.mustBeInterrupted},
                                int{state.mayBeInterrupted},
                                state.claimed,
                                int{state.claimedTooLate},
                                int{state.isOfferClaimed},
                                state.last,
                                state.deadlines,
                                state.parts,
                                state.heldBack}) {
            hash = mix(hash, static_cast<std::uint64_t>(value));
        }
        return hash;
    }

    const Scenario& scenario;
    const Mistake mistake;
    State state{};
    Record record{*this};
    std::optional<explorer::Explorer> explorer;
};

// clang-format off
const char* const SCENARIOS[] = {
    "N:F",         "N:PFF",       "D D N",       "U U W:F",     "W W:LF.",       "U:F W:F",
    "D:F U W:LF",  "W:PPF.",      "W:PPP.",      "N:F W:LF.",   "N:F W:F",       "U:P U:P W:F",
    "W:PXF W:L",   "W:F W:L W:F", "W:FF. W:F",   "N:F N:P W:F", "W:XF W:PF.",    "W:F W:F W:F",
};
// clang-format on

class HandOverTest : public testing::Test {
protected:
    HandOverTest() { ROUTERLog_setBitmaps(0, 0); }
    ~HandOverTest() override { ROUTERLog_setBitmaps(0xFFFF, ZUL_LOG_LEVEL_ERROR); }
};

TEST_F(HandOverTest, HoldsInEveryInterleaving) {
    long runs = 0, states = 0;
    for (const char* text : SCENARIOS) {
        const Scenario scenario(text);
        const explorer::Report report = World(scenario, Mistake::NONE).explorer->explore();
        EXPECT_EQ(report.violation, "") << text;
        runs += report.runs;
        states += report.states;
    }
    const bool isComplete = preemptions() == explorer::UNBOUNDED;
    std::printf("%ld interleavings, %ld states, %zu scenarios, %d signals, preemptions: %s\n", runs, states,
                std::size(SCENARIOS), SIGNALS, isComplete ? "all" : std::to_string(preemptions()).c_str());
    EXPECT_GT(states, 10000);
}

TEST_F(HandOverTest, SeesEverySeededMistake) {
    for (int mistake = 1; mistake < static_cast<int>(Mistake::LAST); ++mistake) {
        const bool isSeen = std::ranges::any_of(SCENARIOS, [mistake](const char* text) {
            const Scenario scenario(text);
            const std::string seen =
                World(scenario, static_cast<Mistake>(mistake)).explorer->explore().violation;
            if (!seen.empty()) {
                std::printf("mistake %2d in %-12s: %s\n", mistake, text, seen.c_str());
            }
            return !seen.empty();
        });
        EXPECT_TRUE(isSeen) << "mistake " << mistake;
    }
}

} // namespace
