// zulctl: signals, arguments, command, exit. A signal that asks for an end counts from the first line of main
// to the last: while nothing has been sent it ends the program at once, then it ends the wait, and a second
// one does not wait.
#include "middleware/dds/process.h"
#include "product/product_info.h"
#include "zulctl/arguments.h"
#include "zulctl/commands.h"

#include <csignal>
#include <cstdio>
#include <exception>
#include <unistd.h>

namespace {

std::atomic<zul::fleet::Wakeup*> g_wakeup{nullptr};

void onSignal(int /*signalNumber*/) {
    zul::fleet::Wakeup* wakeup = g_wakeup.load();
    if (wakeup == nullptr || wakeup->isInterrupted()) {
        _exit(zul::ctl::EXIT_INTERRUPTED);
    }
    wakeup->interrupt();
}

void handleSignals() {
    struct sigaction action {};
    sigemptyset(&action.sa_mask);
    action.sa_handler = onSignal;
    for (const int signalNumber : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before {};
        sigaction(signalNumber, nullptr, &before);
        if (before.sa_handler != SIG_IGN) { // nohup stays as it is
            sigaction(signalNumber, &action, nullptr);
        }
    }
    action.sa_handler = SIG_IGN; // a reader that has gone shows as a write that fails
    sigaction(SIGPIPE, &action, nullptr);
}

int run(int argc, char** argv) {
    const zul::ctl::Parsed parsed = zul::ctl::parseArguments(argc, argv);
    if (!parsed.arguments) {
        return parsed.status;
    }
    ROUTER_setProductId(static_cast<std::int32_t>(parsed.arguments->settings.product));
    zul::fleet::Wakeup wakeup;
    g_wakeup.store(&wakeup);
    const int status = zul::ctl::runCommand(*parsed.arguments, wakeup);
    g_wakeup.store(nullptr);
    return status;
}

} // namespace

int main(int argc, char** argv) {
    handleSignals();
    ZULProcess_takeOver();
    int status = zul::ctl::EXIT_USAGE;
    try {
        status = run(argc, argv);
    } catch (const std::exception& failure) { // memory
        std::fprintf(stderr, "zulctl: %s\n", failure.what());
    }
    ZULProcess_exit(status);
}
