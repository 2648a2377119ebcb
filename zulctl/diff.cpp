// diff: what runs against a file.
#include "plan/compare/compare.h"
#include "zulctl/apply.h"
#include "zulctl/one_router.h"

namespace zul::ctl {

int diff(const Arguments& arguments, Session& session, Output& output) {
    const LocalDocument wanted(arguments.words.front());
    OneRouter router(arguments, session, output.progress(), false);
    const plan::XmlDocument running =
        parseDocument(router.get(), "the document of " + router.name(), EXIT_REFUSED);
    const std::string configuration =
        configurationToCompare(arguments, router.name(), running.get(), wanted.document.get());
    const auto differences = plan::compare(running.get(), wanted.document.get(), configuration);
    for (const plan::Difference& each : differences) {
        output.print(each);
    }
    if (differences.empty()) {
        output.say(router.name() + " runs what " + arguments.words.front() + " says");
    }
    return differences.empty() ? EXIT_DONE : EXIT_REFUSED;
}

} // namespace zul::ctl
