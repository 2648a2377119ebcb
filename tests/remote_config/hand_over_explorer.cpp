// Fibers, the depth-first search over lists of choices, and the set of known states.
#include "tests/remote_config/hand_over_explorer.h"

#include <ucontext.h>
#include <utility>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#elif defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

namespace explorer {

struct Explorer::Fiber {
    ucontext_t context{};
    std::vector<char> stack;
    // The thread that runs on it, in this run.
    bool isStarted = false, isFinished = false, isInHandler = false, isSignalled = false;
    const int* count = nullptr; // waits for this, if not null
    bool hasTimer = false, isTimeUp = false;
    std::uint64_t history = 0;
    void* sanitizer = nullptr; // the sanitizer's own record of the stack
#if defined(__SANITIZE_ADDRESS__)
    const void* bottom = nullptr;
    std::size_t size = 0;
#endif
};

// The sanitizers must know which stack is in use.
void Explorer::switchTo(int to) {
    Fiber& from = *fibers_[static_cast<std::size_t>(current_)];
    Fiber& next = *fibers_[static_cast<std::size_t>(to)];
    current_ = to;
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_start_switch_fiber(&from.sanitizer, next.bottom, next.size);
#elif defined(__SANITIZE_THREAD__)
    __tsan_switch_to_fiber(next.sanitizer, 0);
#endif
    swapcontext(&from.context, &next.context);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_finish_switch_fiber(from.sanitizer, nullptr, nullptr);
#endif
}

// Alone, because `getcontext` may return twice in the eyes of the compiler, which then warns of
// every variable.
static void prepare(ucontext_t& context) {
    getcontext(&context);
}

Explorer::Explorer(Program program) : program_(std::move(program)) {
    for (int i = 0; i <= THREADS; ++i) {
        fibers_.push_back(std::make_unique<Fiber>());
        Fiber& fiber = *fibers_.back();
        if (i == THREADS) {
#if defined(__SANITIZE_THREAD__)
            fiber.sanitizer = __tsan_get_current_fiber();
#endif
            break;
        }
        fiber.stack.resize(256 * 1024);
        prepare(fiber.context);
        fiber.context.uc_stack.ss_sp = fiber.stack.data();
        fiber.context.uc_stack.ss_size = fiber.stack.size();
#if defined(__SANITIZE_ADDRESS__)
        fiber.bottom = fiber.stack.data();
        fiber.size = fiber.stack.size();
#elif defined(__SANITIZE_THREAD__)
        fiber.sanitizer = __tsan_create_fiber(0);
#endif
        // An entry takes ints only: the pointer goes in two halves.
        const auto self = reinterpret_cast<std::uintptr_t>(this);
        const auto entry = [](unsigned low, unsigned high, int thread) {
            auto* explorer = reinterpret_cast<Explorer*>((std::uintptr_t{high} << 32) | low);
#if defined(__SANITIZE_ADDRESS__)
            Fiber& home = *explorer->fibers_.back();
            __sanitizer_finish_switch_fiber(nullptr, &home.bottom, &home.size);
#endif
            explorer->runThread(thread);
        };
        makecontext(&fiber.context, reinterpret_cast<void (*)()>(+entry), 3, static_cast<unsigned>(self),
                    static_cast<unsigned>(self >> 32), i);
    }
}

Explorer::~Explorer() {
#if defined(__SANITIZE_THREAD__)
    for (int i = 0; i < THREADS; ++i) {
        __tsan_destroy_fiber(fibers_[static_cast<std::size_t>(i)]->sanitizer);
    }
#endif
}

// The same fiber serves every run.
void Explorer::runThread(int thread) {
    for (Fiber& self = *fibers_[static_cast<std::size_t>(thread)];;) {
        try {
            self.isStarted = true;
            program_.threads[thread]();
        } catch (const RunEnded&) {
        }
        self.isFinished = true;
        if (isEnding_) {
            switchTo(THREADS);
        } else {
            schedule();
        }
    }
}

bool Explorer::isInHandler() const {
    return fibers_[SHELL]->isInHandler && current_ == SHELL;
}
void Explorer::observe(std::uint64_t value) {
    std::uint64_t& history = fibers_[static_cast<std::size_t>(current_)]->history;
    history = mix(history, value + 1);
}
void Explorer::forget(std::uint64_t position) {
    fibers_[static_cast<std::size_t>(current_)]->history = mix(0x51A7E, position);
}

void Explorer::end(const std::string& violation) {
    isEnding_ = true;
    if (report_.violation.empty() && !violation.empty()) {
        report_.violation = violation + " after " + trace_;
    }
}
void Explorer::fail(const std::string& violation) {
    end(violation);
    throw RunEnded{};
}

bool Explorer::step(const int* count, bool hasTimer) {
    Fiber& self = *fibers_[static_cast<std::size_t>(current_)];
    self.count = count;
    self.hasTimer = hasTimer;
    self.isTimeUp = false;
    for (;;) {
        schedule();
        if (isEnding_) {
            throw RunEnded{};
        }
        if (!std::exchange(self.isSignalled, false)) {
            break;
        }
        const bool isTimeUp = self.isTimeUp;
        self.isInHandler = true;
        observe(isTimeUp ? 2 : 3);
        program_.handler();
        self.isInHandler = false;
        self.count = count;
        self.hasTimer = hasTimer;
        self.isTimeUp = isTimeUp;
    }
    self.count = nullptr;
    observe(self.isTimeUp ? 1 : 0);
    return !self.isTimeUp;
}

bool Explorer::canRun(int thread) const {
    const Fiber& fiber = *fibers_[static_cast<std::size_t>(thread)];
    return !fiber.isFinished && (fiber.count == nullptr || *fiber.count > 0 || fiber.isTimeUp);
}

// What may come next, without a preemption first.
Explorer::Moves Explorer::moves() const {
    Moves found;
    const bool lastCanRun = canRun(lastRun_);
    const bool anyCanRun = canRun(SHELL) || canRun(DELIVERY);
    for (const int thread : {lastRun_, 1 - lastRun_}) {
        if (canRun(thread) && (thread == lastRun_ || !lastCanRun || preemptionsLeft_ > 0)) {
            found.add({Move::RUN, thread});
        }
    }
    const Fiber& shell = *fibers_[SHELL];
    if (signalsLeft_ > 0 && shell.isStarted && !shell.isFinished && !shell.isInHandler) {
        found.add({Move::SIGNAL, SHELL});
    }
    for (int thread = 0; thread < THREADS; ++thread) {
        const Fiber& fiber = *fibers_[static_cast<std::size_t>(thread)];
        if (!canRun(thread) && !fiber.isFinished && fiber.hasTimer && (!anyCanRun || preemptionsLeft_ > 0)) {
            found.add({Move::TIME_OUT, thread});
        }
    }
    return found;
}

std::uint64_t Explorer::state() const {
    std::uint64_t hash = mix(program_.shared(), static_cast<std::uint64_t>(signalsLeft_));
    if (program_.preemptions != UNBOUNDED) {
        hash = mix(mix(hash, static_cast<std::uint64_t>(preemptionsLeft_)),
                   static_cast<std::uint64_t>(lastRun_));
    }
    for (int thread = 0; thread < THREADS; ++thread) {
        const Fiber& fiber = *fibers_[static_cast<std::size_t>(thread)];
        const unsigned flags = (fiber.isStarted ? 1U : 0U) | (fiber.isFinished ? 2U : 0U) |
                               (fiber.isTimeUp ? 4U : 0U) | (fiber.isInHandler ? 8U : 0U);
        hash = mix(mix(hash, fiber.history), flags);
    }
    return hash;
}

// The next move of the path that is replayed, or the first one of a new state. False when the run ends.
bool Explorer::pick(Move& move) {
    const Moves possible = moves();
    if (!canRun(SHELL) && !canRun(DELIVERY)) {
        const bool allFinished = fibers_[SHELL]->isFinished && fibers_[DELIVERY]->isFinished;
        const std::string wrong = allFinished ? program_.end() : program_.stuck();
        if (allFinished || !wrong.empty() || possible.count == 0) {
            end(allFinished || !wrong.empty() ? wrong : "deadlock");
            return false;
        }
    }
    std::size_t taken = 0;
    if (possible.count > 1) {
        if (depth_ == path_.size()) {
            if (!visited_.insert(state()).second) {
                end("");
                return false;
            }
            path_.push_back({0, static_cast<int>(possible.count)});
        }
        taken = static_cast<std::size_t>(path_[depth_++].taken);
    }
    move = possible.list[taken];
    return true;
}

// Decides who goes on, and returns when that is the thread that calls, or when the run ends.
void Explorer::schedule() {
    const int from = current_;
    Move move{Move::TIME_OUT, 0};
    while (move.kind == Move::TIME_OUT) {
        if (!pick(move)) {
            break;
        }
        const bool isPreemption = move.kind == Move::TIME_OUT
                                      ? canRun(SHELL) || canRun(DELIVERY)
                                      : move.kind == Move::RUN && move.thread != lastRun_ && canRun(lastRun_);
        preemptionsLeft_ -= isPreemption ? 1 : 0;
        trace_ += "SLHxtu"[move.kind * 2 + move.thread];
        fibers_[static_cast<std::size_t>(move.thread)]->isTimeUp |= move.kind == Move::TIME_OUT;
    }
    if (!isEnding_) {
        lastRun_ = move.thread;
        signalsLeft_ -= move.kind == Move::SIGNAL ? 1 : 0;
        fibers_[static_cast<std::size_t>(move.thread)]->isSignalled = move.kind == Move::SIGNAL;
    }
    const int to = isEnding_ ? THREADS : move.thread;
    if (to != from) {
        switchTo(to);
    }
}

void Explorer::run() {
    program_.reset();
    for (int thread = 0; thread < THREADS; ++thread) {
        Fiber& fiber = *fibers_[static_cast<std::size_t>(thread)];
        fiber.isStarted = fiber.isFinished = fiber.isInHandler = fiber.isSignalled = false;
        fiber.count = nullptr;
        fiber.hasTimer = fiber.isTimeUp = false;
        fiber.history = 0;
    }
    signalsLeft_ = program_.signals;
    preemptionsLeft_ = program_.preemptions;
    lastRun_ = SHELL;
    isEnding_ = false;
    depth_ = 0;
    trace_.clear();
    schedule();
    for (int thread = 0; thread < THREADS; ++thread) {
        const Fiber& fiber = *fibers_[static_cast<std::size_t>(thread)];
        if (fiber.isStarted && !fiber.isFinished) {
            switchTo(thread); // unwinds
        }
    }
}

Report Explorer::explore() {
    do {
        run();
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

} // namespace explorer
