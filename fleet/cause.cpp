// Causes are tried in the order in which they rule each other out: a router that is gone cannot be silent,
// one with another type is not one-way. They rest on what every DDS stack tells: topics, types, policies, and
// what is matched.
#include "fleet/cause.h"

#include <algorithm>
#include <numeric>
#include <optional>

namespace zul::fleet {

namespace {

using Candidates = std::vector<const Participant*>;

std::string seconds(Clock::duration span) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(span).count()) + " s";
}

std::string milliseconds(std::chrono::milliseconds span) {
    return std::to_string(span.count()) + " ms";
}

Candidates routersNamed(const Picture& picture, const std::string& name) {
    Candidates found;
    for (const Participant& participant : picture.participants) {
        if (participant.mayBeRouter() && participant.routerName() == name) {
            found.push_back(&participant);
        }
    }
    return found;
}

// One that shows nothing but a router's name: its administration may be off.
const Participant* bareOneNamed(const Picture& picture, const std::string& name) {
    const auto found = std::ranges::find_if(picture.participants, [&name](const Participant& participant) {
        return participant.endpoints.empty() && participant.routerName() == name;
    });
    return found != picture.participants.end() ? &*found : nullptr;
}

std::string describe(const Participant& participant) {
    return "participant \"" + participant.name + "\", " + textOf(participant.prefix) +
           (participant.host.empty() ? "" : ", on " + participant.host);
}

const char* topicOf(const Endpoint& endpoint) {
    const ROUTERProductInfo& info = infoOf(endpoint.product);
    return endpoint.topic == Topic::REQUEST ? info.administrationRequestTopicName
                                            : info.administrationResponseTopicName;
}
const char* typeOf(const Endpoint& endpoint) {
    const ROUTERProductInfo& info = infoOf(endpoint.product);
    return endpoint.topic == Topic::REQUEST ? info.administrationRequestTypeName
                                            : info.administrationResponseTypeName;
}
const char* roleOf(const Endpoint& endpoint) {
    return endpoint.isReader ? "request reader" : "response writer";
}

// Which policy keeps a router's endpoint from matching ours (OMG DDS 1.4, 2.2.3); empty when none of those
// that are known does, partitions apart. Ours are reliable and volatile, and have the defaults for the rest.
std::string incompatiblePolicy(const Endpoint& endpoint) {
    const DDS_EndpointBuiltinTopicData& qos = endpoint.qos;
    const bool limitsTime = qos.deadline.period.sec != DDS_DURATION_INFINITE.sec;
    const bool limitsLiveliness = qos.liveliness.lease_duration.sec != DDS_DURATION_INFINITE.sec;
    if (qos.has_xcdr1 == 0) {
        return endpoint.isReader
                   ? "DATA_REPRESENTATION: it does not read XCDR version 1, which zulctl writes"
                   : "DATA_REPRESENTATION: it does not write XCDR version 1, which zulctl reads";
    }
    if (qos.ownership.kind != DDS_SHARED_OWNERSHIP_QOS) {
        return "OWNERSHIP: its is EXCLUSIVE, that of zulctl SHARED";
    }
    if (!endpoint.isReader) { // what it offers must be at least what ours requests
        return qos.reliability.kind == DDS_BEST_EFFORT_RELIABILITY_QOS
                   ? "RELIABILITY: it offers BEST_EFFORT, zulctl requests RELIABLE"
                   : "";
    }
    return qos.durability.kind != DDS_VOLATILE_DURABILITY_QOS
               ? "DURABILITY: it requests more than VOLATILE, which zulctl offers"
           : limitsTime ? "DEADLINE: it requests one, zulctl offers none"
           : qos.liveliness.kind != DDS_AUTOMATIC_LIVELINESS_QOS || limitsLiveliness
               ? "LIVELINESS: it requests more than AUTOMATIC without end, which zulctl offers"
               : "";
}

// Which policy keeps a router's endpoint apart from ours. A profile file may put both into one partition.
std::string policyBetween(const Endpoint& endpoint) {
    const std::string policy = incompatiblePolicy(endpoint);
    return policy.empty() && endpoint.qos.has_partition != 0
               ? "PARTITION: it is in a partition; zulctl is in none, unless a profile file says so"
               : policy;
}

std::size_t distance(const std::string& left, const std::string& right) {
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < right.size(); ++j) {
            const std::size_t changed = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// Nobody of that name is here.
Cause nobodyNamed(const Picture& picture, const std::string& router) {
    for (const Picture& other : picture.others) {
        const Candidates found = routersNamed(other, router);
        if (const auto there = std::ranges::find_if(found, &Participant::isHere); there != found.end()) {
            const std::string domain = std::to_string(other.domain);
            std::string text = "router ";
            text.append(router).append(" is in domain ").append(domain).append(", not in domain ");
            text.append(std::to_string(picture.domain)).append(": use -d ").append(domain);
            return {CauseKind::OTHER_DOMAIN, text, {"domain " + domain + ": " + describe(**there)}};
        }
    }
    const std::string domain = "domain " + std::to_string(picture.domain);
    std::size_t here = 0;
    std::vector<std::string> names;
    for (const Participant& participant : picture.participants) {
        here += participant.isHere() ? 1 : 0;
        if (participant.isHere() && participant.mayBeRouter()) {
            names.push_back(participant.routerName());
        }
    }
    if (here == 0) {
        return {CauseKind::NOBODY, "nobody is in " + domain, {"no participant was discovered in " + domain}};
    }
    Cause cause{CauseKind::NO_SUCH_NAME, "", {std::to_string(here) + " participants are in " + domain}};
    std::string list;
    for (const std::string& name : nearestFirst(names, router)) {
        cause.evidence.push_back(name.empty() ? "a router that does not tell its name" : "router " + name);
        list += (list.empty() ? "" : ", ") + (name.empty() ? "(nameless)" : name);
    }
    cause.text = "no router in " + domain + " is called " + router + "; " +
                 (list.empty() ? "none is there" : "there are: " + list);
    return cause;
}

std::optional<Cause> endpointFault(const Picture& picture, const Participant& participant) {
    for (const Endpoint* endpoint :
         {participant.requestReader(picture.product), participant.responseWriter(picture.product)}) {
        if (endpoint == nullptr || picture.isMatched(*endpoint)) {
            continue;
        }
        if (endpoint->type != typeOf(*endpoint)) {
            return Cause{CauseKind::TYPE_MISMATCH,
                         std::string("its ") + roleOf(*endpoint) + " has another type than zulctl",
                         {describe(participant), std::string("topic ") + topicOf(*endpoint) +
                                                     ": its type is " + endpoint->type + ", that of zulctl " +
                                                     typeOf(*endpoint)}};
        }
        if (const std::string policy = policyBetween(*endpoint); !policy.empty()) {
            return Cause{CauseKind::INCOMPATIBLE_QOS,
                         std::string("the policies of its ") + roleOf(*endpoint) +
                             " do not fit those of zulctl: " + policy.substr(0, policy.find(':')),
                         {describe(participant), std::string("topic ") + topicOf(*endpoint) + ": " + policy}};
        }
    }
    return std::nullopt;
}

Cause causeOf(const Picture& picture, const Participant& participant) {
    const Endpoint* reader = participant.requestReader(picture.product);
    const Endpoint* writer = participant.responseWriter(picture.product);
    if (!participant.isHere()) {
        const bool left = participant.presence == Presence::LEFT;
        const std::string ago = seconds(picture.now - participant.since) + " ago";
        return {CauseKind::GONE,
                left ? "it left " + ago
                     : "nothing was heard of it for " + std::to_string(participant.lease.sec) +
                           " s; its lease ran out " + ago,
                {describe(participant)}};
    }
    if (participant.isSecured && participant.endpoints.empty()) {
        return {CauseKind::NOT_AUTHENTICATED,
                "it is secured and does not trust this participant: give zulctl credentials of its domain",
                {describe(participant), "it has an identity token", "none of its endpoints are seen"}};
    }
    const Product other = picture.product == Product::ROUTING ? Product::FEDERATION : Product::ROUTING;
    if (reader == nullptr && writer == nullptr && participant.isRouter(other)) {
        return {CauseKind::WRONG_PRODUCT,
                std::string("it is a ") + infoOf(other).serviceName + ": " +
                    (other == Product::FEDERATION ? "use --federation" : "leave out --federation"),
                {describe(participant)}};
    }
    if (std::optional<Cause> fault = endpointFault(picture, participant)) {
        return *fault;
    }
    const auto state = [&picture](const char* role, const Endpoint* endpoint) {
        return std::string(role) + (endpoint == nullptr            ? " is not seen"
                                    : picture.isMatched(*endpoint) ? " is matched"
                                                                   : " is seen, but not matched");
    };
    const bool reads = reader != nullptr && picture.isMatched(*reader);
    const bool writes = writer != nullptr && picture.isMatched(*writer);
    std::vector<std::string> evidence{describe(participant), state("its request reader", reader),
                                      state("its response writer", writer)};
    if (reads != writes) {
        return {CauseKind::ONE_WAY,
                reads ? "requests reach it, but its answers cannot reach zulctl"
                      : "its answers could reach zulctl, but requests do not reach it",
                evidence};
    }
    if (reads && picture.reply == Picture::Reply::ANSWERED) {
        evidence.push_back("it answered after " + milliseconds(picture.waited));
        return {CauseKind::ANSWERS, "it answers, after " + milliseconds(picture.waited), evidence};
    }
    if (reads && picture.reply == Picture::Reply::NONE) {
        evidence.push_back("no answer for " + milliseconds(picture.waited));
        return {CauseKind::SILENT,
                "it is there and matched, but did not answer within " + milliseconds(picture.waited),
                evidence};
    }
    return {CauseKind::UNKNOWN, "what keeps it from answering is not known", evidence};
}

} // namespace

bool Picture::isMatched(const Endpoint& endpoint) const {
    // The library's writers match readers of any representation.
    return matched.contains(endpoint.guid) && endpoint.qos.has_xcdr1 != 0;
}

bool Picture::isMatched(const Participant& participant) const {
    const auto has = [this](const Endpoint* endpoint) {
        return endpoint != nullptr && isMatched(*endpoint);
    };
    return participant.isHere() && has(participant.requestReader(product)) &&
           has(participant.responseWriter(product));
}

const char* nameOf(CauseKind kind) {
    static constexpr const char* NAMES[] = {
        "answers",          "nobody",  "other_domain", "no_such_name", "wrong_product",     "type_mismatch",
        "incompatible_qos", "one_way", "silent",       "gone",         "not_authenticated", "unknown"};
    return NAMES[static_cast<std::size_t>(kind)];
}

std::vector<std::string> nearestFirst(std::vector<std::string> names, const std::string& name) {
    std::ranges::stable_sort(names, {}, [&name](const std::string& each) { return distance(each, name); });
    return names;
}

Cause findCause(const Picture& picture, const std::string& router) {
    Candidates candidates = routersNamed(picture, router);
    if (candidates.empty()) {
        Cause cause = nobodyNamed(picture, router);
        const Participant* bare = bareOneNamed(picture, router);
        return bare != nullptr && cause.kind == CauseKind::NO_SUCH_NAME ? causeOf(picture, *bare) : cause;
    }
    // One that is here says more than one that has gone, one of the right product more than another.
    std::ranges::stable_sort(candidates, std::ranges::greater{}, [&picture](const Participant* each) {
        return 2 * each->isHere() + each->isRouter(picture.product);
    });
    Cause cause = causeOf(picture, *candidates.front());
    if (cause.kind == CauseKind::GONE) {
        // It may have come up elsewhere.
        Cause elsewhere = nobodyNamed(picture, router);
        if (elsewhere.kind == CauseKind::OTHER_DOMAIN) {
            return elsewhere;
        }
    }
    return cause;
}

} // namespace zul::fleet
