// Looks, asks every router that can be asked, then waits for all of them at once.
#include "fleet/asking.h"
#include "fleet/fleet.h"

#include <algorithm>
#include <tuple>

namespace zul::fleet {

namespace {

// The routers of one product in one domain.
void addRows(std::vector<RouterRow>& rows, Domain& domain, Product product) {
    std::map<std::string, std::vector<std::size_t>> namesakes;
    for (const Participant& participant : domain.discovery().participants()) {
        // One that hides its endpoints is listed under the product in its name.
        const bool isHidden = participant.mayBeRouter() && participant.endpoints.empty() &&
                              participant.name.starts_with(infoOf(product).productName);
        if (participant.isHere() && (participant.isRouter(product) || isHidden)) {
            namesakes[participant.routerName()].push_back(rows.size());
            rows.push_back({.name = participant.routerName(),
                            .domain = domain.id(),
                            .product = product,
                            .participant = participant.name,
                            .host = participant.host,
                            .guid = textOf(participant.prefix)});
        }
    }
    for (const auto& [name, indices] : namesakes) {
        for (const std::size_t index : indices) {
            rows[index].isDuplicate = indices.size() > 1 && !name.empty();
        }
    }
}

// When it is settled who is in them all.
Clock::time_point settled(const std::vector<Domain*>& domains, Clock::duration discovery,
                          Clock::time_point begin) {
    auto last = Clock::time_point::min();
    for (Domain* domain : domains) {
        for (const Product product : PRODUCTS) {
            const Picture picture = pictureOf(*domain, product);
            const auto isAwaited = [&](const Participant& participant) {
                return participant.isRouter(product) && !picture.isMatched(participant);
            };
            last = std::max(last, settled(*domain, picture, discovery, begin, isAwaited));
        }
    }
    return last;
}

// Whose answers came, of all domains and products: one participant may be there in several.
using Answering = std::set<std::tuple<std::int32_t, Product, std::string>>;

// A domain that is asked. No two requests in it have one number, so each response counts in one gathering.
struct Round {
    Domain* domain;
    std::map<Product, Gathering> gatherings;
};

void greet(Round& round, Product product, Clock::duration patience) {
    const Picture picture = pictureOf(*round.domain, product);
    std::map<std::string, std::vector<GuidPrefix>> named;
    for (const Participant& participant : picture.participants) {
        if (picture.isMatched(participant) && isOfOne(participant.routerName())) {
            named[participant.routerName()].push_back(participant.prefix);
        }
    }
    Gathering& gathering = round.gatherings.try_emplace(product, patience).first->second;
    for (const auto& [name, routers] : named) {
        std::int32_t invocation = 0;
        if (round.domain->send(product, GREETING, name, patience, invocation) == Sent::YES) {
            gathering.expect(invocation, name, routers, Clock::now());
        }
    }
}

void collect(Round& round, Answering& answering) {
    const Ends ends(*round.domain);
    const ResponseQueue::Batch batch = round.domain->takeResponses();
    for (auto& [product, gathering] : round.gatherings) {
        for (const Response& response : batch.responses) {
            gathering.add(response);
        }
        if (batch.isIncomplete) {
            gathering.spoil();
        }
        ends.loseWhoLeft(gathering);
        gathering.expire(ends.now);
        for (const Answer& answer : gathering.takeEnded()) {
            if (isAnswer(answer.status) && answer.isWhole && answer.writer) {
                answering.emplace(round.domain->id(), product, textOf(*answer.writer));
            }
        }
    }
}

} // namespace

std::vector<RouterRow> list(const std::vector<Domain*>& domains, Wakeup& wakeup, const Settings& settings) {
    const auto begin = Clock::now();
    while (!wakeup.isInterrupted()) {
        const auto deadline = settled(domains, settings.discovery, begin);
        if (Clock::now() >= deadline) {
            break;
        }
        wakeup.waitUntil(deadline);
    }
    std::vector<RouterRow> rows;
    std::vector<Round> rounds;
    for (Domain* domain : domains) {
        domain->discovery().takeGone(); // of before
        Round& round = rounds.emplace_back(Round{domain, {}});
        for (const Product product : PRODUCTS) {
            addRows(rows, *domain, product);
            greet(round, product, settings.timeout);
        }
    }
    Answering answering;
    for (bool isComplete = false; !isComplete && !wakeup.isInterrupted();) {
        isComplete = true;
        auto next = Clock::time_point::max();
        for (Round& round : rounds) {
            collect(round, answering);
            for (const auto& [product, gathering] : round.gatherings) {
                isComplete = isComplete && gathering.isComplete();
                next = std::min(next, gathering.deadline());
            }
        }
        if (!isComplete) {
            wakeup.waitUntil(next);
        }
    }
    for (RouterRow& row : rows) {
        row.answers = answering.contains({row.domain, row.product, row.guid});
    }
    std::ranges::stable_sort(rows, {}, [](const RouterRow& row) { return std::pair(row.domain, row.name); });
    return rows;
}

} // namespace zul::fleet
