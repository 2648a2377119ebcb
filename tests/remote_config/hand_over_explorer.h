// Runs a program of two threads and a signal handler through its interleavings, on one real thread: each
// operation on what they share is a scheduling point, at which the explorer decides who goes on. It is a
// depth-first search that replays the program from its start for every path, and gives a path up at a state
// that it has been in before. A state is what the threads share and what each has seen so far, as hashes: the
// threads must depend on nothing else. The search is complete but for the bound on preemptions, if any.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <ucontext.h>
#include <unordered_set>
#include <utility>
#include <vector>

namespace explorer {

inline std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
    hash = (hash ^ value) * 0x9E3779B97F4A7C15ULL;
    return hash ^ (hash >> 29);
}

// A stack of its own to run on.
class Fiber {
public:
    Fiber() = default; // the one that runs already
    // `body` starts with the first switch to it, and never returns.
    explicit Fiber(std::function<void()> body) : body_(std::move(body)), stack_(256 * 1024) {
        getcontext(&context_);
        context_.uc_stack.ss_sp = stack_.data();
        context_.uc_stack.ss_size = stack_.size();
        void (*const enter)(Fiber*) = [](Fiber* self) {
            self->body_();
        };
        makecontext(&context_, reinterpret_cast<void (*)()>(enter), 1, this); // a pointer passes on 64 bits
    }
    Fiber(const Fiber&) = delete;
    Fiber& operator=(const Fiber&) = delete;
    void switchTo(Fiber& next) { swapcontext(&context_, &next.context_); }

private:
    std::function<void()> body_{};
    std::vector<char> stack_{};
    ucontext_t context_{};
};

constexpr int SHELL = 0;    // the thread that signals interrupt; it goes on when the handler has ended
constexpr int DELIVERY = 1; // the other one
constexpr int THREADS = 2;
constexpr int UNBOUNDED = 1000000;

struct Report {
    long runs = 0; // interleavings, those given up at a known state included
    long states = 0;
    std::string violation{}; // empty, or what was wrong first, and after which moves
};

// The program is what derives from this.
class Explorer {
public:
    Explorer(int signals, int preemptions) : signals_(signals), preemptions_(preemptions) {}
    virtual ~Explorer() = default;

    Report explore() {
        do {
            runOnce();
            ++report_.runs;
            while (!path_.empty() && path_.back().taken + 1 == path_.back().count) {
                path_.pop_back();
            }
            if (!path_.empty()) {
                ++path_.back().taken;
            }
        } while (!path_.empty() && report_.violation.empty());
        report_.states = static_cast<long>(visited_.size());
        return report_;
    }

protected:
    virtual void reset() = 0; // before every run
    virtual void runThread(int thread) = 0;
    virtual void handleSignal() = 0;
    virtual std::uint64_t shared() const = 0;    // a hash of all that the threads share
    virtual std::string whatIsStuck() const = 0; // no thread goes on but by a signal or a time-out
    virtual std::string whatIsLeft() const = 0;  // all threads have ended

    // A scheduling point. Goes on when `*count` is above 0 (null: at any time) or, with a timer, when the
    // time is up, which the explorer decides; false then. A signal's handler has scheduling points inside
    // this one.
    bool step(const int* count = nullptr, bool hasTimer = false) {
        Thread& self = threads_[at(current_)];
        Wait wait{count, hasTimer};
        Wait* const outer = std::exchange(self.wait, &wait);
        for (;;) {
            schedule();
            if (isEnding_) {
                throw RunEnded{};
            }
            if (!std::exchange(self.isSignalled, false)) {
                break;
            }
            self.isInHandler = true;
            observe(wait.isTimeUp ? 2 : 3);
            handleSignal();
            self.isInHandler = false;
        }
        self.wait = outer;
        observe(wait.isTimeUp ? 1 : 0);
        return !wait.isTimeUp;
    }
    // What the thread has seen, which its next steps depend on; or that they depend on this alone.
    void observe(std::uint64_t value) {
        std::uint64_t& history = threads_[at(current_)].history;
        history = mix(history, value + 1);
    }
    void forget(std::uint64_t position) { threads_[at(current_)].history = mix(0x51A7E, position); }
    void require(bool condition, const char* violation) {
        if (!condition) {
            end(violation);
            throw RunEnded{};
        }
    }
    int thread() const { return current_; }
    bool isInHandler() const { return current_ == SHELL && threads_[SHELL].isInHandler; }

private:
    struct RunEnded {}; // thrown at a scheduling point to end a run early
    struct Wait {
        const int* count; // null: for nothing
        bool hasTimer;
        bool isTimeUp = false;
    };
    struct Thread { // in this run
        bool isStarted = false, isFinished = false, isInHandler = false, isSignalled = false;
        Wait* wait = nullptr;
        std::uint64_t history = 0;
    };
    struct Choice {
        std::size_t taken, count;
    };
    struct Move {
        enum Kind { RUN, SIGNAL, TIME_OUT } kind;
        int thread;
        bool isPreemption;
    };
    static constexpr int HOME = THREADS; // the explorer itself
    static std::size_t at(int thread) { return static_cast<std::size_t>(thread); }

    void runOnce() {
        reset();
        threads_ = {};
        signalsLeft_ = signals_;
        preemptionsLeft_ = preemptions_;
        lastRun_ = SHELL;
        isEnding_ = false;
        depth_ = 0;
        trace_.clear();
        schedule();
        for (const int thread : {SHELL, DELIVERY}) {
            if (threads_[at(thread)].isStarted && !threads_[at(thread)].isFinished) {
                switchTo(thread); // unwinds
            }
        }
    }
    // The same fiber serves every run.
    void runFiber(int thread) {
        for (;;) {
            try {
                threads_[at(thread)].isStarted = true;
                runThread(thread);
            } catch (const RunEnded&) {
            }
            threads_[at(thread)].isFinished = true;
            schedule();
        }
    }
    void switchTo(int next) {
        Fiber& from = fibers_[at(std::exchange(current_, next))];
        from.switchTo(fibers_[at(next)]);
    }

    // Decides who goes on, and returns when that is the thread that calls, or when the run ends.
    void schedule() {
        const int from = current_;
        int to = HOME;
        for (Move move{}; to == HOME && !isEnding_ && pick(move);) {
            trace_ += "SLHxtu"[move.kind * 2 + move.thread];
            preemptionsLeft_ -= move.isPreemption ? 1 : 0;
            Thread& moved = threads_[at(move.thread)];
            if (move.kind == Move::TIME_OUT) {
                moved.wait->isTimeUp = true; // and who goes on is still open
            } else {
                signalsLeft_ -= move.kind == Move::SIGNAL ? 1 : 0;
                moved.isSignalled = move.kind == Move::SIGNAL;
                to = lastRun_ = move.thread;
            }
        }
        if (to != from) {
            switchTo(to);
        }
    }
    // The next move of the path that is replayed, or the first one of a new state. False when the run ends.
    bool pick(Move& move) {
        findMoves();
        if (!canRun(SHELL) && !canRun(DELIVERY)) {
            const bool haveAllEnded = threads_[SHELL].isFinished && threads_[DELIVERY].isFinished;
            const std::string wrong = haveAllEnded ? whatIsLeft() : whatIsStuck();
            if (haveAllEnded || !wrong.empty() || moves_.empty()) {
                end(haveAllEnded || !wrong.empty() ? wrong : "deadlock");
                return false;
            }
        }
        std::size_t taken = 0;
        if (moves_.size() > 1) {
            if (depth_ == path_.size()) {
                if (!visited_.insert(state()).second) {
                    end("");
                    return false;
                }
                path_.push_back({0, moves_.size()});
            }
            taken = path_[depth_++].taken;
        }
        move = moves_[taken];
        return true;
    }
    bool canRun(int thread) const {
        const Thread& self = threads_[at(thread)];
        const bool isReady = self.wait == nullptr || self.wait->count == nullptr || *self.wait->count > 0;
        return !self.isFinished && (isReady || self.wait->isTimeUp);
    }
    // What may come next, without a preemption first.
    void findMoves() {
        moves_.clear();
        const auto add = [this](Move::Kind kind, int thread, bool isPreemption) {
            if (!isPreemption || preemptionsLeft_ > 0) {
                moves_.push_back({kind, thread, isPreemption});
            }
        };
        for (const int thread : {lastRun_, 1 - lastRun_}) {
            if (canRun(thread)) {
                add(Move::RUN, thread, thread != lastRun_ && canRun(lastRun_));
            }
        }
        const Thread& shell = threads_[SHELL];
        if (signalsLeft_ > 0 && shell.isStarted && !shell.isFinished && !shell.isInHandler) {
            add(Move::SIGNAL, SHELL, false);
        }
        for (const int thread : {SHELL, DELIVERY}) {
            if (const Thread& self = threads_[at(thread)];
                !self.isFinished && !canRun(thread) && self.wait->hasTimer) {
                add(Move::TIME_OUT, thread, canRun(SHELL) || canRun(DELIVERY));
            }
        }
    }
    std::uint64_t state() const {
        std::uint64_t hash = mix(shared(), static_cast<std::uint64_t>(signalsLeft_));
        if (preemptions_ != UNBOUNDED) {
            hash = mix(hash, static_cast<std::uint64_t>(preemptionsLeft_ * THREADS + lastRun_));
        }
        for (const Thread& self : threads_) {
            const unsigned flags = (self.isStarted ? 1U : 0U) | (self.isFinished ? 2U : 0U) |
                                   (self.wait != nullptr && self.wait->isTimeUp ? 4U : 0U) |
                                   (self.isInHandler ? 8U : 0U);
            hash = mix(mix(hash, self.history), flags);
        }
        return hash;
    }
    void end(const std::string& violation) {
        isEnding_ = true;
        if (report_.violation.empty() && !violation.empty()) {
            report_.violation = violation + " after " + trace_;
        }
    }

    const int signals_;     // at most so many in a run
    const int preemptions_; // at most so many switches from a thread that could go on
    int signalsLeft_ = 0, preemptionsLeft_ = 0, lastRun_ = SHELL, current_ = HOME;
    bool isEnding_ = false;
    std::array<Thread, THREADS> threads_{};
    std::array<Fiber, THREADS + 1> fibers_{Fiber([this] { runFiber(SHELL); }),
                                           Fiber([this] { runFiber(DELIVERY); }), Fiber()};
    std::vector<Choice> path_{};
    std::size_t depth_ = 0;
    std::vector<Move> moves_{};
    std::string trace_{};
    std::unordered_set<std::uint64_t> visited_{};
    Report report_{};
};

} // namespace explorer
