// The only way to know is to try: open and start as many as are needed, and end them all again.
#include "middleware/fastdds/resource_check.h"

#include "middleware/base/log.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <latch>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

namespace zul {

namespace {

// What a participant with one network interface uses, and a little more.
constexpr std::size_t DESCRIPTORS_NEEDED = 12;
constexpr std::size_t THREADS_NEEDED = 8;

constexpr ZULLogTemplate TOO_FEW_DESCRIPTORS_d{
    0x2001001, "a participant needs %d free file descriptors: raise the limit (ulimit -n)\n"};
constexpr ZULLogTemplate TOO_FEW_THREADS_d{
    0x2001002,
    "a participant needs %d more threads: raise the limit on processes (ulimit -u, or the service's)\n"};

bool hasDescriptors() {
    std::array<int, DESCRIPTORS_NEEDED> descriptors{};
    std::generate(descriptors.begin(), descriptors.end(),
                  [] { return open("/dev/null", O_RDONLY | O_CLOEXEC); });
    const bool hasAll = descriptors.back() >= 0;
    for (const int descriptor : descriptors) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    return hasAll;
}

bool hasThreads() {
    std::latch end{1}; // all of them exist at the same time
    std::vector<std::jthread> threads;
    threads.reserve(THREADS_NEEDED - 1);
    bool hasAll = true;
    try {
        while (threads.size() < THREADS_NEEDED - 1) { // this one is the last
            threads.emplace_back([&end] { end.wait(); });
        }
    } catch (const std::system_error&) {
        hasAll = false;
    }
    end.count_down();
    return hasAll;
}

} // namespace

ResourceCheck::Shortage ResourceCheck::tryOut() {
    return !hasDescriptors() ? Shortage::DESCRIPTORS : !hasThreads() ? Shortage::THREADS : Shortage::NONE;
}

ResourceCheck::ResourceCheck() {
    try {
        shortage_ = std::async(std::launch::async, tryOut);
    } catch (const std::system_error&) {
        std::promise<Shortage> known; // there is not even that thread
        known.set_value(Shortage::THREADS);
        shortage_ = known.get_future();
    }
}

bool ResourceCheck::passes(const char* context) {
    const Shortage shortage = shortage_.get();
    if (shortage == Shortage::DESCRIPTORS) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, TOO_FEW_DESCRIPTORS_d, DESCRIPTORS_NEEDED);
    } else if (shortage == Shortage::THREADS) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, TOO_FEW_THREADS_d, THREADS_NEEDED);
    }
    return shortage == Shortage::NONE;
}

} // namespace zul
