// The hand-over's own code, run through all interleavings of a sending thread, a delivery thread and up to
// two signals, over words and semaphores that ask the explorer at every operation who goes on. No
// interleaving may hang, lose an interrupt or a response, credit one to another request, give a loan back
// while it is read, or leave a token behind. Seeded mistakes show that it would be seen.
#include "remote_config/hand_over.h"
#include "tests/remote_config/hand_over_explorer.h"

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <type_traits>

namespace {

using explorer::DELIVERY;
using explorer::SHELL;
using zul::remote_config::HandOver;
using zul::remote_config::Response;
using zul::remote_config::WaitEnd;

// clang-format off
enum class Operation {
    LOAD_FLAG, STORE_FLAG, EXCHANGE_FLAG, PUBLISH, CLAIM, WITHDRAW, TAKE, GIVE, LOAD_NUMBER, STORE_NUMBER,
};
enum class Context { SENDER, HANDLER, LISTENER };

// What a hasty hand would write: an operation that is left out, in two steps, or done twice.
struct Mistake {
    const char* name = "none";
    Context context{};
    Operation operation{};
    enum { NONE, LEFT_OUT, SPLIT, TWICE } effect = NONE;
};
constexpr Mistake MISTAKES[] = {
    {"offered without a look whether anybody waits",   Context::LISTENER, Operation::LOAD_FLAG,     Mistake::LEFT_OUT},
    {"no look for an interrupt",                       Context::SENDER,   Operation::LOAD_FLAG,     Mistake::LEFT_OUT},
    {"the flag stays after the final response",        Context::SENDER,   Operation::STORE_FLAG,    Mistake::LEFT_OUT},
    {"the flag is tested, then cleared",               Context::SENDER,   Operation::EXCHANGE_FLAG, Mistake::SPLIT},
    {"the handler leaves the flag",                    Context::HANDLER,  Operation::EXCHANGE_FLAG, Mistake::LEFT_OUT},
    {"ready without a response",                       Context::LISTENER, Operation::PUBLISH,       Mistake::LEFT_OUT},
    {"claimed by a load and a store",                  Context::SENDER,   Operation::CLAIM,         Mistake::SPLIT},
    {"withdrawn by a load and a store",                Context::LISTENER, Operation::WITHDRAW,      Mistake::SPLIT},
    {"withdrawn whatever is there",                    Context::LISTENER, Operation::WITHDRAW,      Mistake::LEFT_OUT},
    {"the loan goes back without a wait",              Context::LISTENER, Operation::TAKE,          Mistake::LEFT_OUT},
    {"taken is not given",                             Context::SENDER,   Operation::GIVE,          Mistake::LEFT_OUT},
    {"taken is given twice",                           Context::SENDER,   Operation::GIVE,          Mistake::TWICE},
    {"the listener gives no ready",                    Context::LISTENER, Operation::GIVE,          Mistake::LEFT_OUT},
    {"the handler gives no ready",                     Context::HANDLER,  Operation::GIVE,          Mistake::LEFT_OUT},
    {"claimed without a look at the id",               Context::SENDER,   Operation::LOAD_NUMBER,   Mistake::LEFT_OUT},
    {"the number is not counted up",                   Context::SENDER,   Operation::STORE_NUMBER,  Mistake::LEFT_OUT},
};
// clang-format on

// A scenario: words of a command, a colon, and what the router sends when that command is written.
//   W waits for its answer      N does not wait; the next command is another one
//   U does not wait; the next one is the next piece of the same request
//   D does not wait; the next one is another request that an interrupt ends too
//   . the next command comes when the delivery thread has nothing left to do
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
// bound: the search is then complete, in less than a minute.
int preemptions() {
    const char* wanted = std::getenv("ZUL_EXPLORE");
    return wanted != nullptr && std::string_view(wanted) == "all" ? explorer::UNBOUNDED : 2;
}

constexpr int SIGNALS = 2;

// All that a run changes, without gaps: its bytes are what the explorer knows a state by.
struct State {
    // The record: its words, its request's id, its semaphores.
    int flag = 0;
    int published = 0; // a response, counted from 1, as below
    ZUL_RoutingService_Administration_CommandId id{1, 1, 0};
    int ready = 0, taken = 0;
    // The delivery thread.
    int sent = 0; // responses on their way or further
    int hasWork = 0, isQuiet = 1, isClosing = 0, hasEnded = 0;
    int loanBegin = 0, loanEnd = 0;
    int waitsForTaken = 0, timedOut = 0, isOfferClaimed = 0;
    // The sending thread.
    int number = 0;    // of the request
    int isWaiting = 0; // between the start of a request and the end of its wait
    int waitsForReady = 0, mustBeInterrupted = 0, mayBeInterrupted = 0;
    int claimed = 0, claimedTooLate = 0; // after an interrupt that should have ended the wait
    int lastGathered = 0, partsGathered = 0, deadlines = 0;
};
static_assert(std::has_unique_object_representations_v<State>);

class World : explorer::Explorer {
public:
    World(const Scenario& scenario, const Mistake& mistake)
        : Explorer(SIGNALS, preemptions()), scenario_(scenario), mistake_(mistake) {}
    using Explorer::explore;

private:
    // --- the record and the operations on it
    struct Flag {
        World& world;
        bool load() {
            const bool value = !world.begin(Operation::LOAD_FLAG) || world.state_.flag != 0;
            world.observe(value);
            return value;
        }
        void store(bool value) {
            if (world.begin(Operation::STORE_FLAG)) {
                world.setFlag(value);
            }
        }
        bool exchange(bool value) {
            const bool isDone = world.begin(Operation::EXCHANGE_FLAG);
            const bool before = world.state_.flag != 0;
            world.betweenHalves(Operation::EXCHANGE_FLAG);
            if (isDone) {
                world.setFlag(value);
            }
            world.observe(before);
            return before;
        }
    };
    struct Slot {
        World& world;
        void store(const Response* response) {
            if (world.begin(Operation::PUBLISH)) {
                world.state_.published = world.indexOf(response);
            }
        }
        const Response* exchange(std::nullptr_t) {
            world.begin(Operation::CLAIM);
            State& state = world.state_;
            const int found = state.published;
            world.observe(static_cast<std::uint64_t>(found));
            if (found != 0) {
                state.claimed = found;
                state.isOfferClaimed = 1;
                state.claimedTooLate = state.mustBeInterrupted;
                world.betweenHalves(Operation::CLAIM);
            }
            state.published = 0;
            return found == 0 ? nullptr : &world.response(found);
        }
        bool compare_exchange_strong(const Response*& expected, std::nullptr_t) {
            const bool isForced = !world.begin(Operation::WITHDRAW);
            const bool isThere = isForced || world.state_.published == world.indexOf(expected);
            world.observe(isThere);
            world.betweenHalves(Operation::WITHDRAW);
            world.state_.published = isThere ? 0 : world.state_.published;
            return isThere;
        }
    };
    struct Request {
        ZUL_RoutingService_Administration_CommandId& id;
    };
    struct Record {
        World& world;
        Flag waitingForResponse{world};
        Slot currentResponse{world};
        int* responseReadySemaphore = &world.state_.ready;
        int* responseTakenSemaphore = &world.state_.taken;
        Request request{world.state_.id};
        Request* commandSample = &request;
        ZULTime responseTimeout{1, 0};
    };
    struct Platform {
        using Record = World::Record;
        World& world;
        ZULDeadline deadlineAfter(const ZULTime& span) {
            world.state_.deadlines += world.thread() == SHELL ? 1 : 0;
            return {.nanoseconds = world.state_.deadlines, .never = span.sec == ZUL_TIME_FOREVER_SEC};
        }
        ZULSemaphoreStatus take(int* semaphore, const ZULDeadline& deadline) {
            State& state = world.state_;
            const bool isSender = world.context() == Context::SENDER;
            world.require(!isSender || deadline.nanoseconds == state.deadlines, "an old time-out");
            if (world.isSeeded(Operation::TAKE, Mistake::LEFT_OUT)) {
                return ZUL_SEMAPHORE_OK;
            }
            int& waits = isSender ? state.waitsForReady : state.waitsForTaken;
            waits = 1;
            const bool isTaken = world.step(semaphore, !deadline.never);
            waits = 0;
            *semaphore -= isTaken ? 1 : 0;
            state.timedOut |= isTaken || isSender ? 0 : 1;
            return isTaken ? ZUL_SEMAPHORE_OK : ZUL_SEMAPHORE_TIMEOUT;
        }
        ZULSemaphoreStatus give(int* semaphore) {
            const bool isDone = world.begin(Operation::GIVE);
            *semaphore += !isDone ? 0 : world.isSeeded(Operation::GIVE, Mistake::TWICE) ? 2 : 1;
            world.state_.claimed = semaphore == &world.state_.taken ? 0 : world.state_.claimed;
            return ZUL_SEMAPHORE_OK;
        }
        void pause() {}
        DDS_Long load(DDS_Long& word) const {
            if (world.context() == Context::SENDER) { // nobody else writes it: no scheduling point
                const bool isBlind = world.isSeeded(Operation::LOAD_NUMBER, Mistake::LEFT_OUT);
                return isBlind && world.state_.claimed != 0
                           ? world.response(world.state_.claimed).id.invocation
                           : word;
            }
            world.begin(Operation::LOAD_NUMBER);
            world.observe(static_cast<std::uint64_t>(word));
            return word;
        }
        void store(DDS_Long& word, DDS_Long next) {
            word = world.begin(Operation::STORE_NUMBER) ? next : word;
        }
    };

    Context context() const {
        return thread() == DELIVERY ? Context::LISTENER : isInHandler() ? Context::HANDLER : Context::SENDER;
    }
    bool isSeeded(Operation operation, int effect) const {
        return mistake_.effect == effect && mistake_.operation == operation && mistake_.context == context();
    }
    // A scheduling point before an operation; false when it is left out.
    bool begin(Operation operation) {
        step();
        return !isSeeded(operation, Mistake::LEFT_OUT);
    }
    void betweenHalves(Operation operation) {
        if (isSeeded(operation, Mistake::SPLIT)) {
            step();
        }
    }
    const Response& response(int index) const {
        return scenario_.responses[static_cast<std::size_t>(index) - 1];
    }
    int indexOf(const Response* response) const {
        return response == nullptr ? 0 : static_cast<int>(response - scenario_.responses.data()) + 1;
    }
    bool isRight(const Response& response) const {
        return response.id.host == 1 && response.id.invocation == state_.number;
    }
    void setFlag(bool value) {
        state_.flag = value ? 1 : 0;
        if (context() == Context::SENDER) {
            state_.isWaiting = state_.flag;
            state_.mustBeInterrupted &= value ? 0 : 1;
            state_.mayBeInterrupted &= value ? 0 : 1;
        }
    }

    // --- the program
    void reset() override { state_ = {}; }
    void runThread(int thread) override { thread == SHELL ? sendAll() : deliverAll(); }
    void handleSignal() override {
        if (state_.isWaiting != 0) {
            // A final answer that is already claimed may still be reported.
            const bool isAnswered = state_.claimed != 0 && isRight(response(state_.claimed)) &&
                                    response(state_.claimed).is_final != 0;
            state_.mayBeInterrupted = 1;
            state_.mustBeInterrupted |= isAnswered ? 0 : 1;
        }
        room_.abort();
    }

    void sendAll() {
        bool isDropped = false;
        for (std::size_t i = 0; i < scenario_.commands.size(); ++i) {
            const Command& command = scenario_.commands[i];
            const char before = i == 0 ? 'N' : scenario_.commands[i - 1].kind;
            state_.deadlines = state_.partsGathered = state_.lastGathered = 0;
            forget(i * 2 + (isDropped ? 1 : 0));
            const bool goesOn = before == 'U' || before == 'D';
            if (goesOn && !isDropped) {
                const bool mustBe = state_.mustBeInterrupted != 0;
                isDropped = room_.isInterrupted();
                require(isDropped || !mustBe, "interrupt lost");
                require(!isDropped || state_.mayBeInterrupted != 0, "interrupt out of nothing");
            }
            if (goesOn && isDropped) {
                continue;
            }
            isDropped = false;
            if (before != 'U') {
                ++state_.number;
                room_.nextRequest();
            }
            if (!goesOn) {
                room_.begin();
            }
            step();
            if (state_.sent < command.responsesEnd) {
                state_.sent = command.responsesEnd;
                state_.hasWork = 1;
                state_.isQuiet = 0;
            }
            if (command.kind == 'W') {
                judge(room_.await([this](const Response& response) { return gather(response); }));
            }
            if (command.isFollowedByQuiet) {
                step(&state_.isQuiet);
            }
        }
        room_.close();
        state_.isClosing = state_.hasWork = 1;
        step(&state_.hasEnded);
    }
    bool gather(const Response& response) {
        require(state_.claimed == indexOf(&response), "read without a claim");
        require(isRight(response), "credited to another request");
        require(state_.lastGathered < state_.claimed, "gathered twice, or out of order");
        require(state_.claimedTooLate == 0, "interrupt lost: another response was gathered");
        state_.lastGathered = state_.claimed;
        state_.partsGathered += response.is_final == 0 ? 1 : 0;
        step(); // reading takes its time
        return true;
    }
    void judge(WaitEnd end) {
        const bool isFinal = state_.lastGathered != 0 && response(state_.lastGathered).is_final != 0;
        require(isFinal == (end == WaitEnd::ANSWERED), "answered without a final response, or the reverse");
        require(end != WaitEnd::INTERRUPTED || state_.mayBeInterrupted != 0, "interrupt out of nothing");
        require(end != WaitEnd::TIMED_OUT || state_.mustBeInterrupted == 0, "interrupt lost: timed out");
        require(end <= WaitEnd::TIMED_OUT, "a semaphore failed");
        require(state_.deadlines == state_.partsGathered + 1,
                "the time-out did not start afresh for each response, or did for a stray token");
        require(state_.flag == 0, "still waiting");
        require(state_.claimed == 0, "a claimed response was kept");
    }

    void deliverAll() {
        for (;;) {
            forget(static_cast<std::uint64_t>(state_.loanEnd));
            state_.isQuiet = state_.hasWork == 0 ? 1 : 0;
            step(&state_.hasWork);
            state_.loanBegin = state_.loanEnd;
            state_.loanEnd = state_.sent;
            state_.hasWork = state_.isClosing;
            if (state_.loanBegin == state_.loanEnd) {
                break; // there was nothing but the end
            }
            for (int i = state_.loanBegin + 1; i <= state_.loanEnd; ++i) {
                forget(static_cast<std::uint64_t>(100 + i * 10 + state_.loanEnd));
                state_.timedOut = state_.isOfferClaimed = 0;
                room_.publish(response(i));
                require(state_.isOfferClaimed != 0 || state_.isWaiting == 0 || state_.mayBeInterrupted != 0 ||
                            !isRight(response(i)) || state_.timedOut != 0,
                        "response lost");
            }
            step();
            require(state_.claimed <= state_.loanBegin || state_.claimed > state_.loanEnd,
                    "loan returned while read");
            state_.loanBegin = state_.loanEnd;
        }
        state_.hasEnded = 1;
    }

    std::string whatIsStuck() const override {
        if (state_.waitsForTaken != 0) {
            return "the listener waits for a taken that nobody will give";
        }
        const bool isLost = state_.waitsForReady != 0 && state_.mustBeInterrupted != 0;
        return isLost ? "interrupt lost: the wait goes on" : "";
    }
    std::string whatIsLeft() const override {
        return state_.taken != 0 || state_.published != 0 ? "a token or a response is left" : "";
    }
    std::uint64_t shared() const override {
        return std::hash<std::string_view>{}({reinterpret_cast<const char*>(&state_), sizeof(state_)});
    }

    const Scenario& scenario_;
    const Mistake& mistake_;
    State state_{};
    Record record_{*this};
    HandOver<Platform> room_{record_, Platform{*this}};
};

// clang-format off
const char* const SCENARIOS[] = {
    "N:F",         "N:PFF",       "D D N",       "U U W:F",     "W W:LF.",       "U:F W:F",
    "D:F U W:LF",  "W:PPF.",      "W:PPP.",      "N:F W:LF.",   "N:F W:F",       "U:P U:P W:F",
    "W:PXF W:L",   "W:F W:L W:F", "W:FF. W:F",   "N:F N:P W:F", "W:XF W:PF.",    "W:F W:F W:F",
};
// clang-format on

TEST(HandOver, HoldsInEveryInterleaving) {
    ROUTERLog_setBitmaps(0, 0);
    constexpr Mistake NONE{};
    long runs = 0, states = 0;
    for (const char* text : SCENARIOS) {
        const Scenario scenario(text);
        const explorer::Report report = World(scenario, NONE).explore();
        EXPECT_EQ(report.violation, "") << text;
        runs += report.runs;
        states += report.states;
    }
    const bool isComplete = preemptions() == explorer::UNBOUNDED;
    std::printf("%ld interleavings, %ld states, %zu scenarios, %d signals, preemptions: %s\n", runs, states,
                std::size(SCENARIOS), SIGNALS, isComplete ? "all" : std::to_string(preemptions()).c_str());
    EXPECT_GT(states, 10000);
}

TEST(HandOver, SeesEverySeededMistake) {
    ROUTERLog_setBitmaps(0, 0);
    for (const Mistake& mistake : MISTAKES) {
        std::string seen;
        for (const char* text : SCENARIOS) {
            const Scenario scenario(text);
            if (seen.empty() && !(seen = World(scenario, mistake).explore().violation).empty()) {
                std::printf("%s: in %s, %s\n", mistake.name, text, seen.c_str());
            }
        }
        EXPECT_NE(seen, "") << mistake.name;
    }
}

} // namespace
