// Causes from pictures that the practice routers do not give, and from those that show two at once. What
// they do give is asked of zulctl.
#include "fleet/cause.h"
#include "fleet/fleet.h"

#include <gtest/gtest.h>

namespace zul::fleet {
namespace {

using namespace std::chrono_literals;

// A router of the picture, with one letter for what is told of it: (h)ere, (l)eft, lease ran (o)ut; its
// endpoints (r)eader and (w)riter, capitals if matched; (t)ype other than ours; (b)est-effort; (d)urable;
// (p)artition; (f)ederation.
Participant router(std::uint8_t number, const std::string& name, const std::string& letters) {
    const auto has = [&letters](char letter) {
        return letters.find(letter) != std::string::npos;
    };
    const Product product = has('f') ? Product::FEDERATION : Product::ROUTING;
    Participant participant{.prefix = {number},
                            .name = std::string(infoOf(product).productName) + ": " + name};
    participant.lease = {20, 0};
    participant.presence = has('l') ? Presence::LEFT : has('o') ? Presence::LEASE_RAN_OUT : Presence::HERE;
    const auto add = [&](Topic topic, bool isReader, const char* type) {
        Endpoint endpoint{.guid = {number, isReader},
                          .product = product,
                          .topic = topic,
                          .isReader = isReader,
                          .type = type};
        endpoint.type += has('t') ? "Other" : "";
        auto& qos = endpoint.qos;
        qos.reliability.kind = has('b') ? DDS_BEST_EFFORT_RELIABILITY_QOS : DDS_RELIABLE_RELIABILITY_QOS;
        qos.durability.kind = has('d') ? DDS_TRANSIENT_LOCAL_DURABILITY_QOS : DDS_VOLATILE_DURABILITY_QOS;
        qos.deadline.period = qos.liveliness.lease_duration = DDS_DURATION_INFINITE;
        qos.has_partition = has('p');
        qos.has_xcdr1 = 1;
        participant.endpoints.push_back(endpoint);
    };
    if (has('r') || has('R')) {
        add(Topic::REQUEST, true, infoOf(product).administrationRequestTypeName);
    }
    if (has('w') || has('W')) {
        add(Topic::RESPONSE, false, infoOf(product).administrationResponseTypeName);
    }
    return participant;
}

Picture picture(const std::vector<std::pair<std::string, std::string>>& routers,
                Picture::Reply reply = Picture::Reply::NOT_ASKED) {
    Picture picture{.domain = 3, .now = Clock::time_point{} + 7s, .reply = reply, .waited = 15ms};
    for (const auto& [name, letters] : routers) {
        const auto number = static_cast<std::uint8_t>(picture.participants.size() + 1);
        picture.participants.push_back(router(number, name, letters));
        for (const auto& [letter, isReader] : {std::pair{'R', true}, {'W', false}}) {
            if (letters.find(letter) != std::string::npos) {
                picture.matched.insert({number, isReader});
            }
        }
    }
    return picture;
}

TEST(Cause, IsNamedWithItsEvidence) {
    Picture elsewhere = picture({{"r1", "h"}}); // here it has other tasks
    elsewhere.others = {picture({{"r1", "hRW"}})};
    elsewhere.others[0].domain = 9;
    Picture strangers = picture({});
    strangers.participants = {{.prefix = {1}, .name = "some program"}};
    const struct {
        const char* cause;
        Picture picture;
        const char* fact; // in the text or the evidence
    } rows[] = {
        {"other_domain", elsewhere, "use -d 9"},
        {"no_such_name", strangers, "none is there"},
        {"incompatible_qos", picture({{"r1", "hrWd"}}), "DURABILITY"},
        {"incompatible_qos", picture({{"r1", "hrwp"}}), "PARTITION"},
        {"one_way", picture({{"r1", "hrW"}}), "request reader is seen, but not matched"},
        {"gone", picture({{"r1", "orw"}}), "for 20 s; its lease ran out 7 s ago"},
        {"unknown", picture({{"r1", "hrw"}}), "request reader is seen, but not matched"},
        {"unknown", picture({{"x", "hRW"}, {"r1", "h"}}), "request reader is not seen"},
        // Two at once, or two of the name: what rules the other out, and who is here.
        {"gone", picture({{"r1", "lrwtb"}}), "it left"},
        {"type_mismatch", picture({{"r1", "hRwtb"}}), "CommandResponseOther"},
        {"silent", picture({{"r1", "lrw"}, {"r1", "hRW"}, {"r1", "hf"}}, Picture::Reply::NONE), "02000000."},
    };
    for (const auto& row : rows) {
        const Cause cause = findCause(row.picture, "r1");
        std::string told = cause.text;
        for (const std::string& fact : cause.evidence) {
            told += "\n" + fact;
        }
        EXPECT_STREQ(nameOf(cause.kind), row.cause) << told;
        EXPECT_NE(told.find(row.fact), std::string::npos) << told;
        EXPECT_FALSE(cause.evidence.empty());
    }
}

TEST(Cause, APatternMatchesWhatItSays) {
    const std::tuple<const char*, const char*, bool> rows[] = {
        {"*", "", true},     {"r?", "r1", true},         {"r?", "r", false},
        {"*1", "r11", true}, {"a*b*c", "aXbYbZc", true}, {"a*b", "ab1", false},
        {"r*", "R1", false}, {"??", "\xC3\xBC", true},   {"**x", "x", true},
        {"r1", "r12", false}};
    for (const auto& [pattern, name, isMatch] : rows) {
        EXPECT_EQ(matches(pattern, name), isMatch) << pattern << " " << name;
    }
}

} // namespace
} // namespace zul::fleet
