// Resource check: the library does not survive running out of threads (it ends the process) or of descriptors
// (it starts, and hears nothing). So both are tried out first.
#pragma once

#include <future>

namespace zul {

// A trial of what a participant needs, on a thread of its own: what needs neither descriptors nor threads can
// be done meanwhile.
class ResourceCheck {
public:
    ResourceCheck();

    // Waits for the end of the trial. Whether a participant can have the file descriptors and threads it
    // needs at this moment; false with a log line under `context` that says what to raise. To be called once.
    bool passes(const char* context);

private:
    enum class Shortage { NONE, DESCRIPTORS, THREADS };
    static Shortage tryOut();

    std::future<Shortage> shortage_;
};

} // namespace zul
