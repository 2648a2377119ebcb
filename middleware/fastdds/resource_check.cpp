// The only way to know is to try: open and start as many as are needed, and end them all again.
#include "middleware/fastdds/resource_check.h"

#include "middleware/base/log.h"

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>

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
    descriptors.front() = open("/", O_PATH | O_CLOEXEC); // there is one even where there is no /dev
    std::generate(descriptors.begin() + 1, descriptors.end(),
                  [&descriptors] { return fcntl(descriptors.front(), F_DUPFD_CLOEXEC, 0); });
    const bool hasAll = descriptors.back() >= 0;
    for (const int descriptor : descriptors) {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    return hasAll;
}

} // namespace

ResourceCheck::ResourceCheck() : hasDescriptors_(hasDescriptors()) {
    threads_.reserve(THREADS_NEEDED);
    try {
        while (threads_.size() < THREADS_NEEDED) {
            threads_.emplace_back([this] { end_.wait(); });
        }
    } catch (const std::system_error&) { // these are all that it may start
    } catch (...) {                      // no memory: those that have started must end
        end_.count_down();
        throw;
    }
    end_.count_down();
}

bool ResourceCheck::passes(const char* context) {
    const bool hasThreads = threads_.size() == THREADS_NEEDED;
    threads_.clear();
    if (!hasDescriptors_) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, TOO_FEW_DESCRIPTORS_d, DESCRIPTORS_NEEDED);
    } else if (!hasThreads) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, TOO_FEW_THREADS_d, THREADS_NEEDED);
    }
    return hasDescriptors_ && hasThreads;
}

} // namespace zul
