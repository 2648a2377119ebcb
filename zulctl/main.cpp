// zulctl: signals, arguments, command, exit.
#include "middleware/dds/process.h"
#include "product/product_info.h"
#include "zulctl/arguments.h"
#include "zulctl/commands.h"
#include "zulctl/session.h"
#include "zulctl/signals.h"

#include <cstdio>
#include <exception>

namespace {

// While there is one, signals end the wait; afterwards nobody keeps a pointer to what has gone.
class Interrupts {
public:
    explicit Interrupts(zul::fleet::Wakeup& wakeup) { zul::ctl::interruptOnSignals(&wakeup); }
    ~Interrupts() { zul::ctl::interruptOnSignals(nullptr); }
    Interrupts(const Interrupts&) = delete;
    Interrupts& operator=(const Interrupts&) = delete;
};

int run(int argc, char** argv) {
    const zul::ctl::Parsed parsed = zul::ctl::parseArguments(argc, argv);
    if (!parsed.arguments) {
        return parsed.status;
    }
    ROUTER_setProductId(static_cast<std::int32_t>(parsed.arguments->settings.product));
    zul::fleet::Wakeup wakeup;
    const Interrupts interrupts(wakeup);
    return zul::ctl::runCommand(*parsed.arguments, wakeup);
}

} // namespace

int main(int argc, char** argv) {
    zul::ctl::handleSignals();
    ZULProcess_takeOver();
    int status = zul::ctl::EXIT_USAGE;
    try {
        status = run(argc, argv);
    } catch (const std::exception& failure) { // memory
        std::fprintf(stderr, "zulctl: %s\n", zul::ctl::wordsOf(failure).c_str());
    }
    ZULProcess_exit(status);
}
