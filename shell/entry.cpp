// The order of the start-up matters: help before any option is read, signals blocked before the middleware
// starts its threads, handlers before the first wait.
#include "shell/entry.h"

#include "middleware/base/strings.h"
#include "product/product_info.h"
#include "shell/command_line.h"
#include "shell/instance.h"
#include "shell/log.h"
#include "shell/loop.h"
#include "shell/parameter_manager.h"
#include "shell/signals.h"

#include <algorithm>
#include <csignal>
#include <cstdio>

namespace {

constexpr int EXIT_OK = 0;
constexpr int EXIT_SIGNALS = 1;
constexpr int EXIT_START_UP = -1;

int failed(const char* what, int status) {
    shellError("main", ZUL_LOG_ANY_FAILURE_s, what);
    return status;
}

bool asksForHelp(const char* argument) {
    return ZULString_equalsIgnoreCase(argument, "-help") || ZULString_equalsIgnoreCase(argument, "-h");
}

} // namespace

int ROUTERShell_run(int productId, int argumentCount, char** arguments) {
    ROUTER_setProductId(productId);
    // oddity 38: before any option is looked at, also among option values
    if (std::any_of(arguments + std::min(argumentCount, 1), arguments + argumentCount, asksForHelp)) {
        ROUTERShellParameterManager_printHelp(ROUTER_getProductInfo()->shellProgramName);
        return EXIT_START_UP;
    }
    sigset_t all;
    sigset_t previous;
    // The middleware's threads inherit this mask, so signals reach this thread only.
    if (sigfillset(&all) != 0 || pthread_sigmask(SIG_SETMASK, &all, &previous) != 0) {
        return failed("signal handlers", EXIT_SIGNALS);
    }
    if (!ROUTERShell_installSignalHandlers()) {
        return failed("signal handlers", EXIT_START_UP);
    }
    ROUTERShellInstance* shell = &ROUTERShell_g_instance;
    if (!ROUTERShell_getCommandLineParameters(shell, std::max(argumentCount - 1, 0), arguments + 1)) {
        return failed("get command-line parameters", EXIT_START_UP);
    }
    if (!ROUTERShell_initialize(shell)) {
        return failed("initialize shell", EXIT_START_UP);
    }
    ROUTERLog_setBitmaps(ROUTER_SUBMODULE_REMOTE_CONFIG, 0); // oddity 8
    if (pthread_sigmask(SIG_SETMASK, &previous, nullptr) != 0) {
        return failed("signal handlers", EXIT_SIGNALS);
    }
    ROUTERShell_main(shell);
    {
        const zul::shell::WholeOutput output;
        std::printf("Stopping...\n");
    }
    ROUTERShell_finalize(shell); // whatever it says, the shell ends
    return EXIT_OK;
}
