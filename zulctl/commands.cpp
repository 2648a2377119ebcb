// Everything that can be refused is refused before a domain is joined, or, where it depends on the names that
// are found, before anything is sent.
#include "zulctl/commands.h"

#include "product/vocabulary.h"
#include "zulctl/apply.h"
#include "zulctl/check.h"
#include "zulctl/files.h"
#include "zulctl/output.h"
#include "zulctl/session.h"
#include "zulctl/shell.h"
#include "zulctl/tree.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <set>
#include <span>

namespace zul::ctl {

using fleet::Command;
using fleet::Domain;
using fleet::Fleet;
using fleet::Result;
using fleet::Status;

void refuseBadNames(const Command& command, const std::vector<std::string>& routers) {
    for (const std::string& router : routers) {
        // A pattern is no name yet, but what it goes with may be refused already.
        if (const char* reason = fleet::refusal(command, fleet::isPattern(router) ? "x" : router)) {
            throw Failure{EXIT_USAGE, reason};
        }
    }
}

std::vector<std::string> findRouters(Fleet& fleet, const Arguments& arguments) {
    std::vector<std::string> names = fleet.find(arguments.routers);
    if (names.empty()) {
        throw Failure{EXIT_NO_ANSWER, "no such router in domain " + std::to_string(arguments.domain)};
    }
    return names;
}

namespace {

std::string urlOf(const Source& source) {
    if (source.remoteFile) {
        return fleet::remoteFileUrl(*source.remoteFile);
    }
    if (source.xml) {
        return fleet::inlineUrl(*source.xml);
    }
    if (source.assignment) {
        std::string url = fleet::assignmentUrl(*source.assignment);
        if (url.empty()) {
            throw Failure{
                EXIT_USAGE,
                "--set takes an assignment such as domain_route.participant_1.domain_id=5, which \"" +
                    *source.assignment + "\" is not"};
        }
        return url;
    }
    std::string error;
    const auto text = readFile(*source.file, error);
    if (!text) {
        throw Failure{EXIT_USAGE, error};
    }
    return fleet::inlineUrl(*text);
}

// The words of create: what is created follows from the XML, the kind says whether it has a parent.
std::string parentOf(const std::vector<std::string>& words) {
    const auto* kind = std::ranges::find_if(product::ENTITY_KINDS, [&words](const product::EntityKind& each) {
        return each.isKeyword && each.tag == words.front();
    });
    if (kind == std::end(product::ENTITY_KINDS)) {
        throw Failure{EXIT_USAGE, "KIND is domain_route, session, topic_route or auto_route, not \"" +
                                      words.front() + "\""};
    }
    const bool hasParent = kind->level != product::EntityLevel::DOMAIN_ROUTE;
    if (words.size() != (hasParent ? 2U : 1U)) {
        throw Failure{EXIT_USAGE,
                      std::string(kind->tag) + (hasParent ? " needs a PARENT" : " has no PARENT")};
    }
    return hasParent ? words.back() : "";
}

Command commandOf(const Arguments& arguments) {
    const std::vector<std::string>& words = arguments.words;
    Command command{.kind = arguments.command->request};
    if (arguments.command->kind == CommandRow::Kind::DUPDATE) {
        command.kind = ZUL_ROUTING_SERVICE_COMMAND_UPDATE;
    }
    if (command.kind == ZUL_ROUTING_SERVICE_COMMAND_CREATE) {
        command.name = parentOf(words);
    } else if (!words.empty()) {
        command.name = words.front();
    }
    if (command.kind == ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER) {
        if (words[1] != "p1" && words[1] != "p2") {
            throw Failure{EXIT_USAGE, "which participant? Say p1 or p2, not \"" + words[1] + "\""};
        }
        command.isFirstParticipant = words[1] == "p1";
        command.peers.assign(words.begin() + 2, words.end());
    }
    if (arguments.command->hasSource) {
        command.url = urlOf(arguments.source);
    }
    return command;
}

int request(const Arguments& arguments, Session& session, Output& output) {
    const Command command = commandOf(arguments);
    refuseBadNames(command, arguments.routers);
    Domain& domain = session.domain(arguments.domain, arguments.settings.product);
    Fleet fleet(domain, session.wakeup(), arguments.settings);
    fleet.onProgress(output.progress().callback());
    const std::vector<std::string> names = findRouters(fleet, arguments);
    refuseBadNames(command, names);
    const bool hasPlace = arguments.output && arguments.output->find(ROUTER_PLACE) != std::string::npos;
    if (arguments.output && !hasPlace && names.size() > 1) {
        throw Failure{EXIT_USAGE,
                      std::string("several routers, one file: put ") + ROUTER_PLACE + " into its name"};
    }
    Outcome outcome;
    std::set<std::string> written;
    fleet.ask(names, command, [&](Result&& result) {
        outcome.add(result.status);
        if (arguments.output && result.status == Status::OK) {
            std::string path = pathFor(*arguments.output, result.router);
            if (!written.insert(path).second) {
                path += "." + result.guid; // of another router with this name
            }
            std::string error;
            if (!writeFile(path, result.message, error)) {
                outcome.add(EXIT_USAGE);
            }
            result.message = error.empty() ? "written to " + path : error;
            result.status = error.empty() ? Status::OK : Status::ERROR;
        }
        if (command.kind == ZUL_ROUTING_SERVICE_COMMAND_GET && !arguments.output) {
            output.printText(result, names.size() > 1);
        } else {
            output.print(result);
        }
    });
    return outcome.status();
}

// What was stopped is started again, also after interrupts and without memory; those answers are not awaited
// for long.
int dupdate(const Arguments& arguments, Session& session, Output& output) {
    fleet::Wakeup& wakeup = session.wakeup();
    const Command update = commandOf(arguments);
    const Command disable{.kind = ZUL_ROUTING_SERVICE_COMMAND_DISABLE, .name = update.name};
    const Command enable{.kind = ZUL_ROUTING_SERVICE_COMMAND_ENABLE, .name = update.name};
    refuseBadNames(update, arguments.routers);
    Domain& domain = session.domain(arguments.domain, arguments.settings.product);
    Fleet fleet(domain, wakeup, arguments.settings);
    fleet.onProgress(output.progress().callback());
    const std::vector<std::string> names = findRouters(fleet, arguments);
    refuseBadNames(update, names);
    Outcome outcome;
    std::set<std::string> stopped; // for certain or perhaps
    std::set<std::string> failed;
    std::set<std::string> unheard(names.begin(), names.end());
    std::set<std::string> unsent = unheard;
    const auto show = [&](const Result& result) {
        outcome.add(result.status);
        output.print(result, true);
    };
    const auto noteStopped = [&](const Result& result) {
        if (result.status == Status::OK ||
            (result.wasSent && (result.status == Status::INTERRUPTED || result.status == Status::NO_ANSWER ||
                                !result.isWhole))) {
            stopped.insert(result.router);
        }
        unheard.erase(result.router);
        if (result.status != Status::OK) {
            failed.insert(result.router);
        }
        show(result);
    };
    std::exception_ptr thrown; // memory
    try {
        fleet.ask(names, disable, noteStopped, &unsent);
        std::vector<std::string> next;
        std::ranges::set_difference(stopped, failed, std::back_inserter(next));
        fleet.ask(next, update, show);
    } catch (...) {
        thrown = std::current_exception();
        std::erase_if(unheard, [&unsent](const std::string& name) { return unsent.contains(name); });
        stopped.merge(unheard);
    }
    bool isInterrupted = false;
    fleet::Settings settings = arguments.settings;
    const auto noteStarted = [&](const Result& result) {
        if (wakeup.isInterrupted() && !result.wasSent && result.status == Status::INTERRUPTED) {
            stopped.insert(result.router);
        } else {
            stopped.erase(result.router);
            show(result);
        }
    };
    while (!stopped.empty()) {
        if (wakeup.takeInterrupt()) {
            isInterrupted = true;
            settings.timeout = std::min<fleet::Clock::duration>(settings.timeout, std::chrono::seconds(1));
        }
        const std::size_t before = stopped.size();
        try {
            const std::vector<std::string> next(stopped.begin(), stopped.end());
            Fleet(domain, wakeup, settings).ask(next, enable, noteStarted, &stopped);
        } catch (...) { // go on with the others
            thrown = std::current_exception();
            if (stopped.size() == before) {
                stopped.erase(stopped.begin());
            }
        }
    }
    if (isInterrupted) {
        wakeup.interrupt();
    }
    if (thrown) {
        std::rethrow_exception(thrown);
    }
    return outcome.status();
}

// A participant takes threads and descriptors.
constexpr std::size_t DOMAINS_AT_ONCE = 16;

int listRouters(const Arguments& arguments, Session& session, Output& output) {
    fleet::Wakeup& wakeup = session.wakeup();
    std::vector<std::int32_t> ids = arguments.domains;
    if (ids.empty()) {
        ids.push_back(arguments.domain);
    }
    for (std::size_t first = 0; first < ids.size() && !wakeup.isInterrupted(); first += DOMAINS_AT_ONCE) {
        std::vector<std::unique_ptr<Domain>> joined;
        std::vector<Domain*> domains;
        for (std::size_t i = first; i < std::min(ids.size(), first + DOMAINS_AT_ONCE); ++i) {
            Domain* known = session.known(ids[i]);
            domains.push_back(
                known != nullptr ? known : joined.emplace_back(join(ids[i], fleet::PRODUCTS, wakeup)).get());
        }
        output.print(fleet::list(domains, wakeup, arguments.settings), first == 0);
    }
    return EXIT_DONE;
}

bool mayBeElsewhere(fleet::CauseKind kind) {
    using enum fleet::CauseKind;
    return kind == NOBODY || kind == NO_SUCH_NAME || kind == GONE || kind == UNKNOWN;
}

int explain(const Arguments& arguments, Session& session, Output& output) {
    fleet::Wakeup& wakeup = session.wakeup();
    const std::string& router = arguments.routers.front();
    refuseBadNames({.kind = ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE}, arguments.routers);
    Domain& domain = session.domain(arguments.domain, arguments.settings.product);
    Fleet fleet(domain, wakeup, arguments.settings);
    std::span<const std::int32_t> elsewhere = arguments.domains;
    fleet::Cause cause;
    do {
        const auto batch = elsewhere.first(std::min(elsewhere.size(), DOMAINS_AT_ONCE));
        elsewhere = elsewhere.subspan(batch.size());
        std::vector<std::unique_ptr<Domain>> joined;
        std::vector<Domain*> others;
        for (const std::int32_t id : batch) {
            if (id != arguments.domain) {
                others.push_back(
                    joined.emplace_back(join(id, {&arguments.settings.product, 1}, wakeup)).get());
            }
        }
        cause = fleet.why(router, others);
    } while (!elsewhere.empty() && !wakeup.isInterrupted() && mayBeElsewhere(cause.kind));
    if (wakeup.isInterrupted()) {
        return EXIT_INTERRUPTED;
    }
    output.print(router, cause);
    return cause.kind == fleet::CauseKind::ANSWERS ? EXIT_DONE : EXIT_NO_ANSWER;
}

} // namespace

int runCommand(const Arguments& arguments, fleet::Wakeup& wakeup) {
    if (arguments.command->kind == CommandRow::Kind::SHELL) {
        return runShell(arguments, wakeup);
    }
    Session session(wakeup);
    return runCommand(arguments, session);
}

int runCommand(const Arguments& arguments, Session& session) {
    fleet::Wakeup& wakeup = session.wakeup();
    Output output(arguments.isJson);
    int status = EXIT_DONE;
    try {
        switch (arguments.command->kind) {
        case CommandRow::Kind::LIST:
            status = listRouters(arguments, session, output);
            break;
        case CommandRow::Kind::WHY:
            status = explain(arguments, session, output);
            break;
        case CommandRow::Kind::REQUEST:
            status = request(arguments, session, output);
            break;
        case CommandRow::Kind::DUPDATE:
            status = dupdate(arguments, session, output);
            break;
        case CommandRow::Kind::TREE:
            status = showTrees(arguments, session, output);
            break;
        case CommandRow::Kind::DIFF:
            refuseBadNames({.kind = ZUL_ROUTING_SERVICE_COMMAND_GET}, arguments.routers);
            status = diff(arguments, session, output);
            break;
        case CommandRow::Kind::APPLY:
        case CommandRow::Kind::RESTORE:
            refuseBadNames({.kind = ZUL_ROUTING_SERVICE_COMMAND_GET}, arguments.routers);
            status = apply(arguments, session, output);
            break;
        case CommandRow::Kind::CHECK:
            status = checkFiles(arguments, session.wakeup(), output);
            break;
        case CommandRow::Kind::SHELL:
            throw Failure{EXIT_USAGE, "this is the shell"};
        }
    } catch (const Failure& failure) {
        if (!wakeup.isInterrupted() && !failure.message.empty()) {
            output.progress().clear();
            std::fprintf(stderr, "zulctl: %s\n", oneLine(failure.message).c_str());
        }
        status = failure.status;
    }
    return wakeup.isInterrupted()                      ? EXIT_INTERRUPTED
           : status == EXIT_DONE && output.hasFailed() ? EXIT_USAGE
                                                       : status;
}

} // namespace zul::ctl
