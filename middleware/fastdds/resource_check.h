// Resource check: the library does not survive running out of threads (it ends the process) or of descriptors
// (it starts, and hears nothing). So both are tried out first.
#pragma once

#include <latch>
#include <thread>
#include <vector>

namespace zul {

class ResourceCheck {
public:
    // Takes what a participant needs, all at once, and lets go of it again. Its threads end while the caller
    // goes on.
    ResourceCheck();

    // Waits for the end of those threads. Whether a participant can have the file descriptors and threads it
    // needs; false with a log line under `context` that says what to raise.
    bool passes(const char* context);

private:
    std::latch end_{1}; // of the threads
    std::vector<std::jthread> threads_;
    bool hasDescriptors_;
};

} // namespace zul
