// zul-practice-router: options, start, the wait for a signal, and the end of everything in reverse order.
// Exit status: 0 after a signal, --help or --version; 1 when the router cannot start; 2 for a bad
// command line.
#include "middleware/base/version.h"
#include "middleware/dds/process.h"
#include "practice_router/actions/save_file.h"
#include "practice_router/actions/xml_url.h"
#include "practice_router/endpoints/options.h"
#include "practice_router/endpoints/worker.h"
#include "product/product_info.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <new>
#include <thread>

namespace {

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

// The whole path of an existing directory; empty when it is none.
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

int run(const Options& options, Router& router, RequestQueue& queue) {
    const sigset_t ending = blockSignals();
    Endpoints endpoints;
    std::string error;
    if (!endpoints.open(options.domain, options.name, queue, error)) {
        queue.close();
        return fail(EXIT_CANNOT_START, error);
    }
    std::printf("ready: %s in domain %d\n", options.name.c_str(), static_cast<int>(options.domain));
    std::fflush(stdout);
    Worker worker(router, queue, endpoints, options);
    std::thread thread([&] { worker.run(); });
    int signalNumber = 0;
    sigwait(&ending, &signalNumber);
    queue.close();
    thread.join();
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
    if (saveFileName(options.name).empty()) {
        return fail(EXIT_BAD_USAGE, "--name is too long for the file that save writes; choose a shorter one");
    }
    ROUTER_setProductId(options.isFederation ? ROUTER_PRODUCT_FEDERATION_SERVICE
                                             : ROUTER_PRODUCT_ROUTING_SERVICE);
    RequestQueue queue;
    Router router(options.name, saveDirectory, options.countsOnly, queue.ending());
    loadStartDocument(router, options.configurationFile);
    return run(options, router, queue);
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
    }
    ZULProcess_exit(status);
}
