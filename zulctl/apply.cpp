// apply and restore: plan, ask, back up, send, read back. What runs before anything is sent is kept as text;
// a way back is planned from what runs then to that text, so it does not matter how far the commands got.
#include "zulctl/apply.h"

#include "plan/check/check.h"
#include "plan/compare/planner.h"
#include "plan/document/text.h"
#include "zulctl/files.h"
#include "zulctl/one_router.h"
#include "zulctl/question.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <unistd.h>
#include <utility>

namespace zul::ctl {

using fleet::Result;
using fleet::Status;

namespace {

constexpr const char* NOT_A_TERMINAL = "standard input is no terminal, so nobody can be asked; give --yes to "
                                       "send the plan, or --dry-run to see it";

// A word as a POSIX shell reads it.
std::string asWord(const std::string& word) {
    constexpr const char* PLAIN = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789_-./";
    if (!word.empty() && word.find_first_not_of(PLAIN) == std::string::npos) {
        return word;
    }
    std::string quoted = "'";
    for (const char c : word) {
        quoted += c == '\'' ? "'\\''" : std::string(1, c);
    }
    return quoted + "'";
}

// The exception that is being handled. Between the first command and the last none may end the program:
// memory may run out anywhere, and what ran is put back all the same.
Failure caught() {
    try {
        throw;
    } catch (Failure& failure) {
        return std::move(failure);
    } catch (plan::Refusal& refusal) {
        return {EXIT_REFUSED, std::move(refusal.why)};
    } catch (const std::exception& exception) {
        return {EXIT_USAGE, wordsOf(exception)};
    }
}

class Apply {
public:
    Apply(const Arguments& arguments, Session& session, Output& output)
        : arguments_(arguments),
          session_(session),
          output_(output),
          isRestore_(arguments.command->kind == CommandRow::Kind::RESTORE),
          wanted_(arguments.words.front()) {
        checkWanted();
    }
    int run();

private:
    void checkWanted();
    plan::Plan makePlan();
    const char* refusal(const plan::Step& step) const {
        return fleet::refusal(commandOf(step), router_->name());
    }
    void refuseLongNames(const plan::Plan& plan) const;
    void ask(std::size_t commands);
    void backUp();
    bool sendAll(const plan::Plan& plan, Outcome& outcome);
    void putBack(const char* head, const std::string& reason, Outcome& outcome);
    std::string wayBack();
    std::string restoreCommand() const;
    std::vector<plan::Difference> readBack(const xmlDoc* expected);
    void end(const char* outcome, const std::string& message) {
        output_.resume();
        output_.print(ApplyEnd{router_->name(), outcome, message, backup_});
    }

    const Arguments& arguments_;
    Session& session_;
    Output& output_;
    bool isRestore_;
    LocalDocument wanted_;
    std::optional<OneRouter> router_;
    std::string before_; // what ran
    plan::XmlDocument running_;
    std::string configuration_;
    std::string backup_; // name of the file, once it is written
    std::string failure_;
};

// A backup is what a router said itself, and a router may know values that the check does not.
void Apply::checkWanted() {
    try {
        plan::checkDocument(wanted_.document.get(), {});
    } catch (const plan::Refusal& refusal) {
        const std::string what = arguments_.words.front() + ": " + refusal.why;
        if (!isRestore_) {
            throw Failure{EXIT_USAGE, what};
        }
        std::fprintf(stderr, "zulctl: %s; going on all the same, because the router may know it\n",
                     oneLine(what).c_str());
    }
}

// A backup may hold less than what runs, so going back to it may take a load.
plan::Plan Apply::makePlan() {
    try {
        std::string whyLoad;
        plan::Plan plan = isRestore_ ? plan::makeWayBack(running_.get(), wanted_.document.get(),
                                                         configuration_, wanted_.text, &whyLoad)
                                     : plan::makePlan(running_.get(), wanted_.document.get(), configuration_);
        if (!whyLoad.empty()) {
            output_.say(whyLoad);
        }
        return plan;
    } catch (const plan::Refusal& refusal) {
        throw Failure{EXIT_USAGE, router_->name() + ": " + refusal.why};
    }
}

void Apply::refuseLongNames(const plan::Plan& plan) const {
    for (const plan::Step& step : plan) {
        if (const char* reason = refusal(step)) {
            throw Failure{EXIT_USAGE, std::string(reason) + ": " + plan::shortened(step.entity)};
        }
    }
}

// While the operator thinks, others may change what runs.
void Apply::ask(std::size_t commands) {
    const std::string question = "Send " + std::to_string(commands) +
                                 (commands == 1 ? " command to " : " commands to ") + router_->name() +
                                 "? [y/N] ";
    output_.progress().clear();
    if (!isYes(oneLine(question), session_.wakeup())) {
        end("declined", "nothing was sent");
        throw Failure{EXIT_INTERRUPTED, ""};
    }
    if (router_->get() != before_) {
        throw Failure{EXIT_REFUSED,
                      router_->name() + " runs something else by now; nothing was sent, look again"};
    }
}

void Apply::backUp() {
    std::string error;
    std::string path = arguments_.backup.value_or(pathFor("{router}.backup.xml", router_->name()));
    bool isWritten = writeOnce(path, before_, error);
    for (int number = 2; !isWritten && error.empty() && !arguments_.backup; ++number) {
        path = pathFor("{router}.backup-" + std::to_string(number) + ".xml", router_->name());
        isWritten = writeOnce(path, before_, error);
    }
    if (!isWritten) {
        throw Failure{EXIT_USAGE,
                      (error.empty() ? path + " is there and holds something else; it is not overwritten, "
                                              "give --backup another name"
                                     : error) +
                          "; nothing was sent"};
    }
    backup_ = path;
    output_.say("what ran is kept in " + path);
}

// Shows each answer. False when one is not what it should be, with the words for it in failure_.
bool Apply::sendAll(const plan::Plan& plan, Outcome& outcome) {
    for (const plan::Step& step : plan) {
        try {
            const fleet::Command command = commandOf(step);
            const Result result = router_->send(command);
            outcome.add(result.status);
            output_.print(result, true);
            if (result.status == Status::OK) {
                continue;
            }
            failure_ = nameOf(command.kind) + " of " + (step.entity.empty() ? "the router" : step.entity) +
                       (result.status == Status::INTERRUPTED ? " was interrupted"
                        : result.status == Status::NO_ANSWER ? " was not answered"
                                                             : " was refused");
        } catch (...) {
            Failure failure = caught();
            outcome.add(failure.status);
            failure_ = std::move(failure.message);
        }
        return false;
    }
    return true;
}

std::vector<plan::Difference> Apply::readBack(const xmlDoc* expected) {
    const plan::XmlDocument now =
        parseDocument(router_->get(), "the document of " + router_->name(), EXIT_REFUSED);
    const auto there = plan::configurationsOf(now.get());
    return std::find(there.begin(), there.end(), configuration_) == there.end()
               ? std::vector{plan::Difference{"/", plan::Change::REMOVED, configuration_, ""}}
               : plan::compare(now.get(), expected, configuration_);
}

// Empty when what ran runs again, else why not.
std::string Apply::wayBack() {
    const plan::XmlDocument now =
        parseDocument(router_->get(), "the document of " + router_->name(), EXIT_REFUSED);
    const auto there = plan::configurationsOf(now.get());
    const plan::Plan load{{plan::Step::Kind::LOAD, configuration_, before_}};
    plan::Plan plan = std::find(there.begin(), there.end(), configuration_) == there.end()
                          ? load
                          : plan::makeWayBack(now.get(), running_.get(), configuration_, before_, nullptr);
    if (std::ranges::any_of(plan, [this](const plan::Step& step) { return refusal(step) != nullptr; })) {
        plan = load;
    }
    output_.print(router_->name(), plan, "put_back");
    Outcome ignored;
    if (!sendAll(plan, ignored)) {
        return failure_;
    }
    const auto left = readBack(running_.get());
    return left.empty() ? "" : "it differs in " + left.front().path;
}

std::string Apply::restoreCommand() const {
    return "zulctl -d " + std::to_string(arguments_.domain) +
           (arguments_.settings.product == fleet::Product::FEDERATION ? " --federation" : "") + " restore" +
           (arguments_.configuration ? " --configuration " + asWord(*arguments_.configuration) : "") +
           (router_->name().starts_with('-') || backup_.starts_with('-') ? " -- " : " ") +
           asWord(router_->name()) + " " + asWord(backup_);
}

// An interrupt that brought us here is taken back meanwhile, so that the way back can be waited for; a second
// one ends that, too. What it silenced stays silent until the end, or the way back would wait for a pipe that
// nobody reads. `reason` is not failure_, which the way back may overwrite.
void Apply::putBack(const char* head, const std::string& reason, Outcome& outcome) {
    const bool wasInterrupted = session_.wakeup().takeInterrupt();
    std::string why;
    std::string failure;
    try {
        why = head + reason;
        output_.say(router_->name() + ": " + why + "; putting back what ran");
        failure = wayBack();
    } catch (...) {
        Failure thrown = caught();
        failure = std::move(thrown.message);
        outcome.add(thrown.status == EXIT_INTERRUPTED ? EXIT_INTERRUPTED : EXIT_DONE);
    }
    if (failure.empty()) {
        end("put_back", why + "; what ran before runs again");
    } else {
        end("not_put_back",
            why + "; putting back failed: " + failure +
                "; what it runs now is not known. To bring back what ran: " + restoreCommand());
    }
    if (wasInterrupted) {
        session_.wakeup().interrupt();
    }
}

int Apply::run() {
    router_.emplace(arguments_, session_, output_.progress(), true);
    before_ = router_->get();
    running_ = parseDocument(before_, "the document of " + router_->name(), EXIT_REFUSED);
    configuration_ =
        configurationToCompare(arguments_, router_->name(), running_.get(), wanted_.document.get());
    const plan::Plan plan = makePlan();
    refuseLongNames(plan);
    if (plan.empty()) {
        end("unchanged", "runs what " + arguments_.words.front() + " says; nothing is to be sent");
        return EXIT_DONE;
    }
    output_.print(router_->name(), plan, isRestore_ ? "restore" : "apply");
    if (output_.hasFailed()) {
        throw Failure{EXIT_USAGE, "the plan cannot be shown; nothing was sent"};
    }
    if (arguments_.isDryRun) {
        end("planned", "nothing was sent");
        return EXIT_DONE;
    }
    try {
        if (!arguments_.isYes) {
            ask(plan.size());
        }
        backUp();
    } catch (const Failure& failure) {
        if (output_.isJson() && !failure.message.empty()) { // standard error tells people
            end("not_sent", failure.message);
        }
        throw;
    }
    Outcome outcome;
    if (!sendAll(plan, outcome)) {
        putBack("", std::exchange(failure_, {}), outcome);
        return outcome.status();
    }
    std::vector<plan::Difference> left;
    try {
        left = readBack(wanted_.document.get());
    } catch (...) {
        const Failure failure = caught();
        outcome.add(failure.status);
        putBack("reading back failed: ", failure.message, outcome);
        return outcome.status();
    }
    if (!left.empty()) {
        end("differs", "every command was done, and yet it differs from " + arguments_.words.front() +
                           " in " + left.front().path + "; to bring back what ran: " + restoreCommand());
        return EXIT_REFUSED;
    }
    end("applied", "runs what " + arguments_.words.front() + " says");
    return EXIT_DONE;
}

} // namespace

int apply(const Arguments& arguments, Session& session, Output& output) {
    if (!arguments.isYes && !arguments.isDryRun && isatty(STDIN_FILENO) == 0) {
        throw Failure{EXIT_USAGE, NOT_A_TERMINAL};
    }
    return Apply(arguments, session, output).run();
}

} // namespace zul::ctl
