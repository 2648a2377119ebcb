// zul-practice-router: options, start, the wait for a signal, and the end of everything in reverse order.
// Exit status: 0 after a signal, --help or --version; 1 when the router cannot start; 2 for a bad
// command line.
#include "middleware/base/version.h"
#include "middleware/dds/process.h"
#include "plan/document/entity.h"
#include "practice_router/actions/save_file.h"
#include "practice_router/actions/xml_url.h"
#include "practice_router/endpoints/options.h"
#include "practice_router/endpoints/worker.h"
#include "product/product_info.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

namespace {

using namespace zul::plan;
using namespace zul::practice;

constexpr const char* PROGRAM = "zul-practice-router";
constexpr int EXIT_CANNOT_START = 1;
constexpr int EXIT_BAD_USAGE = 2;

int fail(int status, const std::string& what) {
    std::fprintf(stderr, "%s: %s\n", PROGRAM, what.c_str());
    return status;
}

void loadStartDocument(Router& router, const std::string& file) {
    const Answer answer = router.configuration().loadFirst(
        file.empty() ? *ROUTER_getProductInfo()->builtinDefaultConfiguration : readFile(file));
    if (answer.kind != ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK) {
        throw Refusal{(file.empty() ? "the builtin default configuration" : file) + ": " + answer.text};
    }
}

// The absolute path of a directory; empty when there is none at `path`.
std::string directoryAt(const std::string& path) {
    std::error_code failure;
    const std::filesystem::path whole = std::filesystem::canonical(path, failure);
    return !failure && std::filesystem::is_directory(whole, failure) ? whole.string() : "";
}

// Every thread, also those of the middleware, inherits the mask: signals are for the main thread's wait only.
sigset_t blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, nullptr);
    sigset_t ending;
    sigemptyset(&ending);
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&ending, signalNumber);
    }
    return ending;
}

// One router with all that is its own. Closing the queue ends the thread, then the parts go in reverse order.
struct Instance {
    RequestQueue queue;
    Router router;
    Endpoints endpoints;
    Worker worker;
    std::jthread thread;

    Instance(const std::string& name, const std::string& saveDirectory, const Options& options)
        : router(name, saveDirectory, options.countsOnly, queue.ending()),
          worker(router, queue, endpoints, options) {}
    ~Instance() { queue.close(); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
};
using Instances = std::vector<std::unique_ptr<Instance>>;

// Closes all queues at once, before the first thread is waited for: it may wait for another one's line.
struct Closing {
    const Instances& instances;

    ~Closing() {
        for (const auto& instance : instances) {
            instance->queue.close();
        }
    }
};

int run(const Options& options, const Instances& instances) {
    const sigset_t ending = blockSignals();
    const Closing closing{instances};
    for (const auto& instance : instances) {
        std::string error;
        if (!instance->endpoints.open(options.domain, instance->router.name(), options, instance->queue,
                                      error)) {
            return fail(EXIT_CANNOT_START, error);
        }
    }
    const std::string& first = instances.front()->router.name();
    const std::string last = instances.size() > 1 ? " to " + instances.back()->router.name() : "";
    std::printf("ready: %s%s in domain %d\n", first.c_str(), last.c_str(), static_cast<int>(options.domain));
    std::fflush(stdout);
    for (const auto& instance : instances) {
        instance->thread = std::jthread([&instance] { instance->worker.run(); });
    }
    int signalNumber = 0;
    sigwait(&ending, &signalNumber);
    return 0;
}

int start(int argc, char** argv) {
    Options options;
    std::string error;
    if (!options.parse({argv + std::min(argc, 1), argv + argc}, error)) {
        return fail(EXIT_BAD_USAGE, error);
    }
    if (options.showsHelp) {
        std::fputs(Options::help().c_str(), stdout);
        return 0;
    }
    if (options.showsVersion) {
        const ZULProductVersion version = ZULProductVersion_get();
        std::printf("%s %d.%d%c\n", PROGRAM, version.major, version.minor, version.release);
        return 0;
    }
    const std::string saveDirectory = directoryAt(options.saveDirectory);
    if (saveDirectory.empty()) {
        return fail(EXIT_BAD_USAGE,
                    "--save-dir " + options.saveDirectory + " is no directory; name an existing one");
    }
    const std::vector<std::string> names = options.names();
    if (names.back().size() > MAX_ENTITY_NAME || saveFileName(names.back()).empty()) {
        return fail(EXIT_BAD_USAGE, "--name is too long for the file that save writes; choose a shorter one");
    }
    ROUTER_setProductId(options.isFederation ? ROUTER_PRODUCT_FEDERATION_SERVICE
                                             : ROUTER_PRODUCT_ROUTING_SERVICE);
    Instances instances;
    for (const std::string& name : names) {
        const auto& instance =
            instances.emplace_back(std::make_unique<Instance>(name, saveDirectory, options));
        loadStartDocument(instance->router, options.configurationFile);
    }
    return run(options, instances);
}

} // namespace

int main(int argc, char** argv) {
    ZULProcess_takeOver();
    int status = EXIT_CANNOT_START;
    try {
        status = start(argc, argv);
    } catch (const Refusal& refusal) {
        fail(status, refusal.why);
    } catch (const std::bad_alloc&) {
        fail(status, "out of memory");
    } catch (const std::system_error& failure) {
        fail(status, std::string("a thread cannot start: ") + failure.what() +
                         "; raise the limit on processes (ulimit -u, or the service's)");
    }
    ZULProcess_exit(status);
}
