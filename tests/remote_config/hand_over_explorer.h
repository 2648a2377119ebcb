// Runs a program of two threads and a signal handler through its interleavings, on one real thread: each
// operation on what they share is a scheduling point, at which the explorer decides who goes on. It is a
// depth-first search that replays the program from its start for every path, and gives a path up at a
// state that it has been in before.
//
// A state is what the threads share and what each has seen so far, as hashes. So the threads must depend on
// nothing else, and the search is complete, but for the bound on preemptions, if there is one.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace explorer {

// Thrown at a scheduling point to end a run early. The program lets it pass.
struct RunEnded {};

constexpr int SHELL = 0;    // the thread that signals interrupt; it goes on when the handler has ended
constexpr int DELIVERY = 1; // the other one
constexpr int THREADS = 2;
constexpr int UNBOUNDED = 1000000;

struct Program {
    std::function<void()> reset; // before every run
    std::function<void()> threads[THREADS];
    std::function<void()> handler;
    int signals = 0;                       // at most so many in a run
    int preemptions = UNBOUNDED;           // at most so many switches from a thread that could go on
    std::function<std::uint64_t()> shared; // everything that the threads share
    std::function<std::string()> stuck;    // no thread can go on but by a signal or a time-out: what is wrong
    std::function<std::string()> end;      // all have ended: what is wrong
};

struct Report {
    long runs = 0; // interleavings, those given up at a known state included
    long states = 0;
    std::string violation{}; // empty, or what was wrong first, and after which moves
};

inline std::uint64_t mix(std::uint64_t hash, std::uint64_t value) {
    hash = (hash ^ value) * 0x9E3779B97F4A7C15ULL;
    return hash ^ (hash >> 29);
}

class Explorer {
public:
    explicit Explorer(Program program);
    ~Explorer();
    Explorer(const Explorer&) = delete;
    Explorer& operator=(const Explorer&) = delete;
    Report explore();

    // For the program, on the thread that runs:
    // A scheduling point. Goes on when `*count` is above 0 (null: at any time) or, with a timer, when the
    // time is up, which the explorer decides; false then.
    bool step(const int* count = nullptr, bool hasTimer = false);
    // What the thread has seen, which its next steps depend on; or that they depend on this alone.
    void observe(std::uint64_t value);
    void forget(std::uint64_t position);
    [[noreturn]] void fail(const std::string& violation);
    int thread() const { return current_; }
    bool isInHandler() const;

private:
    struct Fiber;
    struct Choice {
        int taken, count;
    };
    struct Move {
        enum Kind { RUN, SIGNAL, TIME_OUT } kind;
        int thread;
    };
    struct Moves {
        std::array<Move, 2 * THREADS + 1> list;
        std::size_t count = 0;
        void add(Move move) { list[count++] = move; }
    };
    void run();
    void schedule();
    bool pick(Move& move);
    void end(const std::string& violation);
    bool canRun(int thread) const;
    Moves moves() const;
    std::uint64_t state() const;
    void switchTo(int fiber);
    void runThread(int thread);

    Program program_;
    std::vector<std::unique_ptr<Fiber>> fibers_; // the threads, and the explorer itself
    int current_ = THREADS;
    bool isEnding_ = false;
    int signalsLeft_ = 0, preemptionsLeft_ = 0, lastRun_ = SHELL;
    std::vector<Choice> path_;
    std::size_t depth_ = 0;
    std::string trace_;
    std::unordered_set<std::uint64_t> visited_;
    Report report_;
};

} // namespace explorer
