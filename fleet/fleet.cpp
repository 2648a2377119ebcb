// Requests go out one router after another, because an upload must not be mixed with another request of its
// sender; answers are awaited from all at once.
#include "fleet/fleet.h"

#include "fleet/asking.h"

#include <algorithm>
#include <numeric>

namespace zul::fleet {

namespace {

// Our DDS library's vendor: its reliable readers ask for what was written before they had matched the writer.
// Other libraries' do not, so a match on this side does not tell that a request will be heard.
constexpr std::uint16_t PATIENT_VENDOR = 0x010F;
// Routers that answer at once. More of them with long answers overrun what a socket holds, and repairing that
// takes longer than waiting does: 50 answers of 4 MB took 32 s without this bound, and take 4 s with it. A
// router that has not been heard from for PATIENCE does not hold up the next.
constexpr std::size_t ANSWERING_AT_ONCE = 8;
constexpr auto PATIENCE = std::chrono::milliseconds(500);
constexpr auto GREETING_PERIOD = std::chrono::milliseconds(200);

// Whether a request to it will be heard.
bool isSure(const Picture& picture, const Participant& participant) {
    return picture.isMatched(participant) &&
           (participant.vendor == PATIENT_VENDOR || !participant.answersTo.empty());
}

std::chrono::milliseconds toMilliseconds(Clock::duration span) {
    return std::chrono::duration_cast<std::chrono::milliseconds>(span);
}

} // namespace

bool isPattern(const std::string& word) {
    return word.find_first_of("*?") != std::string::npos;
}

bool matches(const std::string& pattern, const std::string& name) {
    std::size_t at = 0;
    std::size_t star = std::string::npos; // of the last * that was passed, and where the name was then
    std::size_t retry = 0;
    for (std::size_t i = 0; i < name.size() || at < pattern.size();) {
        if (at < pattern.size() && pattern[at] == '*') {
            star = at++;
            retry = i;
        } else if (i < name.size() && at < pattern.size() && (pattern[at] == '?' || pattern[at] == name[i])) {
            ++at, ++i;
        } else if (star != std::string::npos && retry < name.size()) {
            at = star + 1;
            i = ++retry;
        } else {
            return false;
        }
    }
    return true;
}

Picture Fleet::picture() const {
    return pictureOf(domain_, settings_.product);
}

Fleet::Reach Fleet::reach(const Picture& picture, const std::string& name) const {
    Reach reach;
    bool areAllSure = true;
    for (const Participant& participant : picture.participants) {
        if (!participant.isHere() || !participant.mayBeRouter()) {
            continue;
        }
        const bool matched = picture.isMatched(participant);
        const std::string itsName = participant.routerName();
        if (itsName == name) {
            const bool sure = isSure(picture, participant);
            areAllSure = areAllSure && sure;
            reach.isUnsure = reach.isUnsure || (matched && !sure);
            if (matched) {
                reach.routers.push_back(participant.prefix);
            }
        }
        reach.isNameless = reach.isNameless || (matched && itsName.empty());
    }
    reach.isWhole = areAllSure && !reach.routers.empty();
    return reach;
}

// A greeting to the name that is looked for does no harm, and its answer tells two things: who has the name,
// and that both have matched. Greets again and again, because one that comes too early is lost. Returns when
// to do it next.
Clock::time_point Fleet::greet(const Picture& picture, const std::vector<std::string>& names) {
    std::vector<std::string> wanted;
    for (const std::string& name : names) {
        if (const Reach reached = reach(picture, name);
            !isPattern(name) && (reached.isUnsure || (reached.routers.empty() && reached.isNameless))) {
            wanted.push_back(name);
        }
    }
    if (wanted.empty()) {
        return Clock::time_point::max();
    }
    if (picture.now >= nextGreeting_) {
        for (const std::string& name : wanted) {
            std::int32_t invocation = 0;
            if (domain_.send(settings_.product, GREETING, name, {}, invocation) == Sent::YES) {
                greetings_[invocation] = name;
            }
        }
        nextGreeting_ = picture.now + GREETING_PERIOD;
    }
    return nextGreeting_;
}

void Fleet::noteGreetings() {
    for (const Response& response : domain_.takeResponses().responses) {
        if (const auto greeting = greetings_.find(response.invocation); greeting != greetings_.end()) {
            domain_.discovery().noteName(response.writer, greeting->second, &Participant::answersTo);
        }
    }
}

std::vector<std::string> Fleet::find(const std::vector<std::string>& words) {
    const auto begin = Clock::now();
    const bool hasPatterns = std::ranges::any_of(words, isPattern);
    const auto isMeant = [&words](const Participant& participant) {
        return std::ranges::any_of(words, [name = participant.routerName()](const std::string& word) {
            return matches(word, name);
        });
    };
    const auto isSeen = [](const Picture& now, const std::string& name) {
        return std::ranges::any_of(now.participants, [&name](const Participant& participant) {
            return participant.isHere() && participant.routerName() == name;
        });
    };
    for (;;) {
        noteGreetings();
        const Picture now = picture();
        const bool isDone = !hasPatterns && std::ranges::all_of(words, [&](const std::string& name) {
            return reach(now, name).isWhole;
        });
        const bool areSeen = std::ranges::all_of(
            words, [&](const std::string& word) { return isPattern(word) || isSeen(now, word); });
        const auto isAwaited = [&](const Participant& participant) {
            return isMeant(participant) && !isSure(now, participant);
        };
        const auto deadline = areSeen ? settled(domain_, now, settings_.discovery, begin, isAwaited)
                                      : begin + settings_.discovery;
        if (isDone || wakeup_.isInterrupted() || now.now >= deadline) {
            break;
        }
        wakeup_.waitUntil(std::min(deadline, greet(now, words)));
    }
    std::set<std::string> names;
    for (const std::string& word : words) {
        if (!isPattern(word)) {
            names.insert(word);
            continue;
        }
        for (const Participant& participant : picture().participants) {
            const std::string name = participant.routerName();
            const bool isOfProduct = participant.isRouter(settings_.product) ||
                                     (participant.mayBeRouter() && participant.endpoints.empty());
            if (participant.isHere() && isOfProduct && isOfOne(name) && matches(word, name)) {
                names.insert(name);
            }
        }
    }
    return {names.begin(), names.end()};
}

Result Fleet::toResult(Answer&& answer, const Command& command) const {
    Result result{.router = std::move(answer.router),
                  .command = command.kind,
                  .entity = command.name,
                  .status = answer.status,
                  .message = std::move(answer.message),
                  .parts = answer.parts,
                  .took = answer.took,
                  .guid = answer.writer ? textOf(*answer.writer) : "",
                  .wasSent = true,
                  .isWhole = answer.isWhole};
    if (result.status == Status::NO_ANSWER) {
        Picture now = picture();
        // Of two routers with one name, only the one that is silent says why.
        std::erase_if(now.participants, [&](const Participant& participant) {
            return answer.writer && participant.prefix != *answer.writer;
        });
        now.reply = Picture::Reply::NONE;
        now.waited = toMilliseconds(settings_.timeout);
        const Cause cause = findCause(now, result.router);
        const std::string parts =
            result.parts == 0 ? "" : " (after " + std::to_string(result.parts) + " parts)";
        result.message = std::string(nameOf(cause.kind)) + ": " + cause.text + parts;
    } else if (result.status == Status::INTERRUPTED) {
        result.message = "interrupted; what became of it is not known";
    }
    return result;
}

Result Fleet::unsent(const std::string& name, const Command& command) const {
    const Cause cause = findCause(picture(), name);
    return {.router = name,
            .command = command.kind,
            .entity = command.name,
            .status = Status::NO_ANSWER,
            .message = std::string(nameOf(cause.kind)) + ": " + cause.text + " (not sent)"};
}

void Fleet::drain(Gathering& gathering, const Command& command, const OnResult& onResult) {
    const ResponseQueue::Batch batch = domain_.takeResponses();
    if (batch.isIncomplete) {
        gathering.spoil();
    }
    for (const Response& response : batch.responses) {
        // What only announces a router is no answer, except to a greeting.
        if (response.kind != ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT ||
            command.kind == GREETING.kind) {
            const Answer* part = gathering.add(response);
            if (part != nullptr && onProgress_) {
                onProgress_({.router = part->router, .bytes = part->message.size(), .parts = part->parts});
            }
        }
    }
    for (Answer& answer : gathering.takeEnded()) {
        onResult(toResult(std::move(answer), command));
    }
}

void Fleet::gather(Gathering& gathering, const Command& command, Clock::time_point end,
                   const OnResult& onResult) {
    for (;;) {
        const Ends ends(domain_);
        drain(gathering, command, onResult);
        if (gathering.isComplete()) {
            return;
        }
        ends.loseWhoLeft(gathering);
        if (wakeup_.isInterrupted() || ends.now >= end) {
            gathering.interrupt();
        }
        gathering.expire(ends.now);
        if (!gathering.isComplete()) {
            wakeup_.waitUntil(std::min(end, gathering.deadline()));
        }
    }
}

void Fleet::awaitRoom(Gathering& gathering, const Command& command, Clock::time_point end,
                      const OnResult& onResult) {
    for (;;) {
        const Ends ends(domain_);
        drain(gathering, command, onResult);
        ends.loseWhoLeft(gathering);
        gathering.expire(ends.now);
        const auto room = gathering.whenFewerThan(ANSWERING_AT_ONCE, PATIENCE);
        if (room <= ends.now || ends.now >= end || wakeup_.isInterrupted()) {
            return;
        }
        wakeup_.waitUntil(std::min({room, end, gathering.deadline()}));
    }
}

void Fleet::ask(const std::vector<std::string>& names, const Command& command, const OnResult& onResult,
                std::set<std::string>* left) {
    const auto end = Clock::now() + settings_.longest;
    domain_.discovery().takeGone(); // from before: one that went and came back is here
    Gathering gathering(settings_.timeout);
    const auto endsWith = [&](const std::string& name, Status status, const char* message) {
        onResult({.router = name,
                  .command = command.kind,
                  .entity = command.name,
                  .status = status,
                  .message = message});
    };
    for (const std::string& name : names) {
        awaitRoom(gathering, command, end, onResult);
        if (wakeup_.isInterrupted() || Clock::now() >= end) {
            endsWith(name, Status::INTERRUPTED, "interrupted; nothing was sent");
            continue;
        }
        const Reach reached = reach(picture(), name);
        if (reached.routers.empty() && !reached.isNameless) {
            onResult(unsent(name, command));
            continue;
        }
        Domain::OnPiece onPiece;
        if (onProgress_) {
            onPiece = [this, &name](std::size_t sent, std::size_t total) {
                onProgress_({.router = name, .bytes = sent, .total = total});
            };
        }
        if (left != nullptr) {
            left->erase(name);
        }
        std::int32_t invocation = 0;
        switch (domain_.send(settings_.product, command, name, settings_.timeout, invocation, onPiece)) {
        case Sent::YES:
            gathering.expect(invocation, name, reached.routers, Clock::now());
            break;
        case Sent::INTERRUPTED:
            endsWith(name, Status::INTERRUPTED, "interrupted while it was sent");
            break;
        case Sent::NO_ROOM:
            endsWith(name, Status::NO_ANSWER,
                     "unknown: it could not be sent, because some router acknowledges nothing");
            break;
        case Sent::FAILED:
            endsWith(name, Status::NO_ANSWER, "unknown: it could not be sent");
            break;
        }
    }
    gather(gathering, command, end, onResult);
}

Cause Fleet::why(const std::string& name, const std::vector<Domain*>& others) {
    find({name, "*"}); // a silent router may have the name of one that answers
    Reach reached = reach(picture(), name);
    for (const Domain* other : others) { // which may have been joined later
        const auto deadline = other->joined() + settings_.discovery;
        while (!reached.isWhole && !wakeup_.isInterrupted() && Clock::now() < deadline) {
            wakeup_.waitUntil(deadline);
            reached = reach(picture(), name);
        }
    }
    std::optional<std::chrono::milliseconds> took;
    std::set<std::string> answering;
    bool isSilent = false; // not when its answer was lost, or the wait was interrupted
    if (!reached.routers.empty() || reached.isNameless) {
        ask({name}, GREETING, [&](const Result& result) {
            isSilent = isSilent || (result.wasSent && result.status == Status::NO_ANSWER);
            if (isAnswer(result.status) && result.isWhole) {
                took = result.took;
                answering.insert(result.guid);
            }
        });
    }
    Picture now = picture();
    const auto answers = [&answering](const Participant& participant) {
        return answering.contains(textOf(participant.prefix));
    };
    // Of routers with one name it is the silent one that is asked about.
    if (took && std::ranges::any_of(now.participants, [&](const Participant& participant) {
            return participant.routerName() == name && now.isMatched(participant) && !answers(participant);
        })) {
        std::erase_if(now.participants, answers);
        took.reset();
    }
    // Who answered to the name has it, whatever its participant is called.
    now.reply = took ? Picture::Reply::ANSWERED : isSilent ? Picture::Reply::NONE : Picture::Reply::NOT_ASKED;
    now.waited = took.value_or(toMilliseconds(settings_.timeout));
    for (Domain* other : others) {
        now.others.push_back(pictureOf(*other, settings_.product));
    }
    return findCause(now, name);
}

} // namespace zul::fleet
