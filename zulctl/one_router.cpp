// A second router of the name may show up at any time, so all that have it are counted before each command,
// and the one that answers is compared with the one that answered first.
#include "zulctl/one_router.h"

#include "fleet/asking.h"
#include "plan/compare/compare.h"
#include "plan/document/text.h"
#include "zulctl/files.h"

#include <algorithm>

namespace zul::ctl {

using fleet::Result;
using fleet::Status;

namespace {

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string text;
    for (const std::string& word : words) {
        text.append(text.empty() ? "" : between).append(word);
    }
    return text;
}

Failure severalOfOneName(const std::string& name, const std::vector<std::string>& guids) {
    return {EXIT_NO_ANSWER, "several routers are called " + name + ": " + joined(guids, ", ") +
                                "; a command would go to each, so stop or rename the others"};
}

} // namespace

OneRouter::OneRouter(const Arguments& arguments, Session& session, ProgressLine& progress, bool isSure)
    : name_(arguments.routers.front()),
      domain_(session.domain(arguments.domain, arguments.settings.product)),
      settings_(arguments.settings),
      fleet_(domain_, session.wakeup(), settings_) {
    fleet_.onProgress(progress.callback());
    std::vector<std::string> words{name_};
    if (isSure) {
        words.emplace_back("*");
    }
    fleet_.find(words);
    refuseSecond();
}

void OneRouter::refuseSecond() {
    std::vector<std::string> guids;
    for (const fleet::Participant& participant : domain_.discovery().participants()) {
        const bool isOfProduct = participant.isRouter(settings_.product) ||
                                 (participant.mayBeRouter() && participant.endpoints.empty());
        if (participant.isHere() && isOfProduct && participant.routerName() == name_) {
            guids.push_back(fleet::textOf(participant.prefix));
        }
    }
    if (guids.size() > 1) {
        throw severalOfOneName(name_, guids);
    }
}

Result OneRouter::send(const fleet::Command& command) {
    refuseSecond();
    std::vector<Result> results;
    fleet_.ask({name_}, command, [&results](Result&& result) { results.push_back(std::move(result)); });
    std::vector<std::string> guids;
    guids.reserve(results.size());
    for (const Result& result : results) {
        guids.push_back(result.guid);
    }
    if (results.size() > 1) {
        throw severalOfOneName(name_, guids);
    }
    Result& result = results.front();
    if (guid_.empty()) {
        guid_ = result.guid;
    } else if (!result.guid.empty() && result.guid != guid_) {
        throw Failure{EXIT_NO_ANSWER,
                      "another router is now called " + name_ + ": " + result.guid + ", and was " + guid_};
    }
    return std::move(result);
}

std::string OneRouter::get() {
    Result result = send({.kind = ZUL_ROUTING_SERVICE_COMMAND_GET});
    if (result.status != Status::OK) {
        Outcome outcome;
        outcome.add(result.status);
        throw Failure{outcome.status(), name_ + ": get: " + result.message};
    }
    refuseSecond();
    return std::move(result.message);
}

plan::XmlDocument parseDocument(const std::string& text, const std::string& what, int status) {
    try {
        return plan::parseXml(text, {});
    } catch (const plan::Refusal& refusal) {
        throw Failure{status, what + ": " + refusal.why};
    }
}

LocalDocument::LocalDocument(const std::string& path) {
    std::string error;
    auto read = readFile(path, error);
    if (!read) {
        throw Failure{EXIT_USAGE, error};
    }
    text = std::move(*read);
    document = parseDocument(text, path, EXIT_USAGE);
}

std::string configurationToCompare(const Arguments& arguments, const std::string& router,
                                   const xmlDoc* running, const xmlDoc* wanted) {
    const std::vector<std::string> there = plan::configurationsOf(running);
    std::string name = arguments.configuration.value_or(there.empty() ? "" : there.front());
    if (std::ranges::find(there, name) == there.end()) {
        throw Failure{EXIT_USAGE, router + " has no configuration named " + name + "; its document holds " +
                                      (there.empty() ? "none" : joined(there, ", "))};
    }
    if (!arguments.configuration && there.size() > 1) {
        throw Failure{EXIT_USAGE, "the document of " + router + " holds the configurations " +
                                      joined(there, ", ") +
                                      " and does not say which one runs; name it with --configuration"};
    }
    const std::vector<std::string> given = plan::configurationsOf(wanted);
    if (std::ranges::find(given, name) == given.end()) {
        throw Failure{EXIT_USAGE, arguments.words.front() + " holds no configuration named " + name +
                                      ", which " + router + " runs; it holds " +
                                      (given.empty() ? "none" : joined(given, ", "))};
    }
    return name;
}

} // namespace zul::ctl
