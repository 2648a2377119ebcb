// A file that cannot be read is told on standard error, and the others are still checked. One that can be
// read and is no XML has a finding.
#include "zulctl/check.h"

#include "plan/check/check.h"
#include "zulctl/files.h"

#include <cstdio>

namespace zul::ctl {

namespace {

constexpr const char* STANDARD_INPUT = "-";

} // namespace

int checkFiles(const Arguments& arguments, fleet::Wakeup& wakeup, Output& output) {
    Outcome outcome;
    for (const std::string& file : arguments.words) {
        const bool isInput = file == STANDARD_INPUT;
        std::string error;
        const auto text = isInput ? readStandardInput(error) : readFile(file, error);
        if (wakeup.isInterrupted()) {
            return EXIT_INTERRUPTED;
        }
        if (!text) {
            std::fprintf(stderr, "zulctl: %s\n", oneLine(error).c_str());
            outcome.add(EXIT_USAGE);
            continue;
        }
        for (const plan::Finding& finding : plan::findFaults(*text, isInput ? "" : file, {})) {
            outcome.add(EXIT_REFUSED);
            output.print(file, finding);
        }
    }
    return outcome.status();
}

} // namespace zul::ctl
