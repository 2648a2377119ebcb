// Plans: which commands, in which order; and a thousand pairs of documents, each plan carried out by the
// practice router's own configuration, with a refusal at every step.
#include "plan/check/check.h"
#include "plan/compare/planner.h"
#include "plan/document/text.h"
#include "practice_router/actions/configuration.h"

#include <functional>
#include <gtest/gtest.h>
#include <random>

namespace {

using namespace zul::plan;
using zul::practice::Answer;
using zul::practice::Configuration;
using zul::practice::StateChange;
using Kind = Step::Kind;

XmlDocument parse(const std::string& text) {
    return parseXml(text, {});
}

Answer carryOut(const Step& step, Configuration& router) {
    switch (step.kind) {
    case Kind::UPDATE:
        return router.update(step.entity, step.xml);
    case Kind::CREATE:
        return router.create(step.entity, step.xml);
    case Kind::REMOVE:
        return router.remove(step.entity);
    case Kind::ENABLE:
        return router.changeState(StateChange::ENABLE, step.entity);
    case Kind::DISABLE:
        return router.changeState(StateChange::DISABLE, step.entity);
    case Kind::LOAD:
        break;
    }
    return router.load(step.xml, step.entity);
}
bool isDone(const Answer& answer) {
    return answer.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
}
std::size_t countDifferences(const std::string& running, const std::string& wanted) {
    return compare(parse(running).get(), parse(wanted).get(), "S").size();
}

std::string inWords(const Plan& plan) {
    constexpr const char* NAMES[] = {"update", "create", "delete", "enable", "disable", "load"};
    std::string text;
    for (const Step& step : plan) {
        text.append(text.empty() ? "" : "; ").append(NAMES[static_cast<std::size_t>(step.kind)]);
        text.append(" " + step.entity + (step.xml.empty() ? "" : " " + step.xml));
    }
    return text;
}

std::string document(const std::string& routes, const std::string& before = {}) {
    return "<dds>" + before + "<routing_service name='S'>" + routes + "</routing_service></dds>";
}
std::string route(const std::string& name, const std::string& domain, const std::string& parts,
                  const std::string& attributes = {}) {
    return "<domain_route name='" + name + "'" + attributes + "><participant_1><domain_id>" + domain +
           "</domain_id></participant_1><participant_2><domain_id>1</domain_id></participant_2>" + parts +
           "</domain_route>";
}
std::string topics(const std::string& name, const std::string& parts = {},
                   const std::string& attributes = {}) {
    return "<auto_topic_route name=\"" + name + "\"" + attributes + "><input" +
           (parts.empty() ? "/>" : ">" + parts + "</input>") + "<output/></auto_topic_route>";
}
std::string session(const std::string& parts, const std::string& attributes = {}) {
    return "<session name='s'" + attributes + ">" + parts + "</session>";
}

// clang-format off
TEST(Planner, CommandsThatAreNotNeededOrInAnOrderThatDoesNotWork) {
    const std::string OFF = " enabled='false'";
    const std::string PROPERTY = "<property><value><element><name>a</name><value>1</value><propagate>true</propagate></element></value></property>";
    const std::string REPORT = "<reporting><sampling_period><sec>0</sec><nanosec>50</nanosec></sampling_period></reporting>";
    const std::string PARTITION = "<publisher_qos><partition><name><element>x</element></name></partition></publisher_qos>";
    const std::string RELIABLE = "<datareader_qos><reliability><kind>RELIABLE_RELIABILITY_QOS</kind></reliability></datareader_qos>";
    const struct { std::string running, wanted, plan; } rows[] = {
        {document(route("D", "0", "")), document(route("D", "0", "")), ""},
        {document(route("D", "0", "")), document(route("D", "0x7", "")),
         "disable D; update D <domain_route><participant_1><domain_id>7</domain_id></participant_1></domain_route>; enable D"},
        {document(route("D", "0", "", OFF)), document(route("D", "7", "", OFF)),
         "update D <domain_route><participant_1><domain_id>7</domain_id></participant_1></domain_route>"},
        {document(route("D", "0", session(topics("T")))), document(route("D", "7", session(topics("T", RELIABLE, OFF)))),
         "disable D; update D <domain_route><participant_1><domain_id>7</domain_id></participant_1></domain_route>; disable D::s::T; "
         "update D::s::T <auto_topic_route><input><datareader_qos><reliability><kind>RELIABLE_RELIABILITY_QOS</kind></reliability></datareader_qos></input></auto_topic_route>; enable D"},
        {document(route("A", "0", "") + route("D", "0", session(topics("T"), OFF), OFF)), document(route("D", "0", session(topics("U")))),
         "delete A; delete D::s::T; create D::s " + topics("U") + "; enable D; enable D::s"},
        {document(route("D", "0", session(topics("T"), OFF))), document(route("D", "0", session(topics("T")), OFF)),
         "disable D; update D::s <session enabled=\"true\"></session>"},
        {document(route("D", "0", session(topics("T")))), document(route("D", "0", session(topics("T") + PROPERTY + PARTITION + "<reporting><sampling_period><nanosec>50</nanosec></sampling_period></reporting>"))),
         "update D::s <session>" + PROPERTY + PARTITION + REPORT + "</session>"},
        {document(route("D", "0", session(topics("T") + PROPERTY + PARTITION))), document(route("D", "0", session(topics("T") + PROPERTY + REPORT))),
         "delete D::s; create D <session name=\"s\">" + topics("T") + PROPERTY + REPORT + "</session>"},
        {document(route("D", "0", "<session name='s'/>")), document(route("D", "0", "<polling_session name='s'><polling_period/></polling_session>")),
         "delete D::s; create D <polling_session name=\"s\"><polling_period/></polling_session>"},
        {document(""), document("<administration><domain_id>3</domain_id></administration>", "<qos_library name='Q'/>"),
         "update  <dds><qos_library name=\"Q\"></qos_library><routing_service name=\"S\"><administration><domain_id>3</domain_id></administration></routing_service></dds>"},
        // The first route gives its domain to the administration; it comes to be another one.
        {document(route("A", "5", "") + route("B", "6", "") + "<administration/>"), document(route("B", "6", "") + "<administration><domain_id>5</domain_id></administration>"),
         "delete A; update  <routing_service><administration><domain_id>5</domain_id></administration></routing_service>"},
        {document(route("D", "0", "")) .insert(5, "<routing_service name='T'/>"), document(route("D", "2", "", OFF)),
         "disable S::D; update S::D <domain_route><participant_1><domain_id>2</domain_id></participant_1></domain_route>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(inWords(makePlan(parse(row.running).get(), parse(row.wanted).get(), "S")), row.plan);
    }
}

TEST(Planner, WhatNoCommandCanDoIsNotNamed) {
    const struct { std::string running, wanted, reason; } rows[] = {
        {document("<monitoring/>"), document(""), "/monitoring; an update only adds"},
        {document("", "<qos_library name='Q'/><types><enum name='E'><enumerator name='a'/></enum></types>"), document(""),
         "wanted of /qos_library[Q], /types.enum[E].enumerator[a]; an update"},
        {document(""), document("<x/>"), "what is wanted: line 1"},
    };
    for (const auto& row : rows) {
        const XmlDocument running = parse(row.running);
        const XmlDocument wanted = parseXml(row.wanted, {});
        try {
            ADD_FAILURE() << inWords(makePlan(running.get(), wanted.get(), "S"));
        } catch (const Refusal& refusal) {
            EXPECT_NE(refusal.why.find(row.reason), std::string::npos) << refusal.why;
        }
    }
    std::string why;
    EXPECT_EQ(inWords(makeWayBack(parse(rows[0].running).get(), parse(rows[0].wanted).get(), "S", "X", &why)), "load S X");
    EXPECT_NE(why, "");
}
// clang-format on

// Documents with everything that entities have. Those of one seed are alike: an entity that does not vary is
// the same in each.
class Generator {
public:
    explicit Generator(unsigned seed) : seed_(seed) {}

    // Of two sections that no command takes away, the second is in later ones only.
    std::string document(unsigned variation) {
        variation_ = variation;
        varies_.seed(seed_ * 7 + variation);
        random_.seed(seed_ % 8 == 0 ? seed_ + variation : seed_);
        std::string text = "<dds>" + maybe(3, "<types>" + some(3, &Generator::type) + "</types>") +
                           "<qos_library name=\"Q\">" + profile("a") + profile("b") + "</qos_library>" +
                           plugins("adapter") + plugins("transformation") +
                           (variation != 0 && seed_ % 4 == 1 ? "<qos_library name=\"R\"/>" : "") +
                           "<routing_service name=\"S\">" + maybe(4, administration()) + maybe(2, property());
        return text + some(4, &Generator::domainRoute) + "</routing_service></dds>";
    }

private:
    std::size_t below(std::size_t end) { return random_() % end; }
    // An entity and what is inside is made of the seed and its path, and varies in one of three.
    std::string entity(const std::string& name, const std::function<std::string()>& make) {
        const std::string path = path_;
        const std::mt19937 random = random_;
        path_ += "::" + name;
        const unsigned variant = variation_ != 0 && varies_() % 3 == 0 ? variation_ : 0;
        random_.seed(static_cast<unsigned>(std::hash<std::string>()(path_)) + seed_ * 31 + variant);
        std::string text = make();
        path_ = path;
        random_ = random;
        return text;
    }
    static std::string plugins(const std::string& kind) {
        std::string text = "<" + kind + "_library name=\"L\">";
        for (const char* name : {"0", "1"}) {
            text.append("<" + kind + "_plugin name=\"").append(name);
            text += "\"><library_file>l.so</library_file><factory_function>f</factory_function></" + kind +
                    "_plugin>";
        }
        return text + "</" + kind + "_library>";
    }
    std::string number(std::size_t end) { return std::to_string(below(end)); }
    std::string maybe(std::size_t oneIn, const std::string& text) { return below(oneIn) == 0 ? text : ""; }
    // At most so many, each with another name.
    std::string some(std::size_t most, std::string (Generator::*make)(const std::string& name)) {
        std::string text;
        const std::size_t first = below(most);
        for (std::size_t i = 0, count = below(most + 1); i < count; ++i) {
            text += (this->*make)(std::string(1, static_cast<char>('a' + (first + i) % (most + 1))));
        }
        return text;
    }
    static std::string element(const std::string& tag, const std::string& content) {
        return "<" + tag + ">" + content + "</" + tag + ">";
    }
    std::string enabled() {
        return below(3) == 0 ? " enabled=\"" + std::string(below(2) ? "true\"" : "false\"") : "";
    }
    std::string type(const std::string& name) {
        return "<struct name=\"" + name + "\"><member name=\"x\" type=\"" + (below(2) ? "int32" : "string") +
               "\"/></struct>";
    }
    std::string pair(const std::string& name) {
        return element("element", element("name", name) + element("value", number(2)) +
                                      maybe(4, element("propagate", below(2) ? "true" : "false")));
    }
    std::string property() { return element("property", element("value", some(3, &Generator::pair))); }
    std::string text(const std::string& name) { return element("element", name); }
    std::string qos(const std::string& tag, const std::string& base = {}) {
        const char* kind = below(2) ? "KEEP_LAST_HISTORY_QOS" : "KEEP_ALL_HISTORY_QOS";
        return "<" + tag + maybe(4, base) + ">" +
               maybe(2, element("history", maybe(2, element("depth", "1" + number(3))) +
                                               maybe(2, element("kind", kind)))) +
               maybe(2, element("deadline", element("period", maybe(2, element("sec", number(2))) +
                                                                  maybe(2, element("nanosec", number(2)))))) +
               maybe(4, property()) + "</" + tag + ">";
    }
    std::string profile(const std::string& name) {
        return "<qos_profile name=\"" + name + "\">" + maybe(2, qos("datawriter_qos")) +
               maybe(2, qos("datareader_qos")) + "</qos_profile>";
    }
    std::string administration() {
        return element("administration", maybe(2, element("domain_id", number(3))));
    }
    std::string participant(const std::string& side) {
        const std::string peers = element(
            "participant_qos", element("discovery", element("initial_peers", some(3, &Generator::text))));
        return element("participant_" + side,
                       maybe(3, peers) + element("domain_id", number(3)) + maybe(4, property()));
    }
    std::string connection(const std::string& side) {
        return "<connection_" + side + " plugin_name=\"L::" + number(2) + "\">" + maybe(2, property()) +
               "</connection_" + side + ">";
    }
    std::string domainRoute(const std::string& name) {
        return entity(name, [&] { return domainRouteText(name); });
    }
    std::string domainRouteText(const std::string& name) {
        hasAdapter_ = below(5) == 0;
        return "<domain_route name=\"" + name + "\"" + enabled() + ">" + maybe(3, property()) +
               (hasAdapter_ ? connection("1") : participant("1")) +
               maybe(4, element("documentation", number(2))) + participant("2") +
               some(3, &Generator::session) + "</domain_route>";
    }
    std::string session(const std::string& name) {
        return entity(name, [&] { return sessionText(name); });
    }
    std::string sessionText(const std::string& name) {
        const std::string tag = below(4) == 0 ? "polling_session" : "session";
        return "<" + tag + " name=\"" + name + "\"" + enabled() + ">" + maybe(4, property()) +
               maybe(4, element("publisher_qos",
                                element("partition", element("name", some(2, &Generator::text))))) +
               maybe(4, element("thread_settings", element("mask", below(2) ? "STDIO" : "MASK_DEFAULT") +
                                                       maybe(2, element("priority", number(2))))) +
               (tag == "session" ? "" : element("polling_period", maybe(2, element("sec", number(2))))) +
               some(3, &Generator::route) + "</" + tag + ">";
    }
    std::string end(const std::string& tag, bool isAuto) {
        const bool isInput = tag == "input";
        const bool isAdapter = isInput && hasAdapter_;
        const std::string name =
            (isAuto ? "allow_" : "") + std::string(isAdapter ? "stream_name" : "topic_name");
        const std::string base =
            " base_name=\"Q::" + std::string(1, static_cast<char>('a' + below(2))) + "\"";
        return "<" + tag + ">" + maybe(3, element("creation_mode", below(2) ? "IMMEDIATE" : "ON_BOTH")) +
               (isInput && !isAuto ? element(name, number(2)) : maybe(3, element(name, number(2)))) +
               maybe(3, isAdapter ? property() : qos(isInput ? "datareader_qos" : "datawriter_qos", base)) +
               (!isInput || isAdapter
                    ? ""
                    : maybe(4, element("content_filter", element("expression", "x = " + number(2)) +
                                                             some(2, &Generator::parameter)))) +
               "</" + tag + ">";
    }
    std::string parameter(const std::string& name) { return element("parameter", name); }
    std::string route(const std::string& name) {
        return entity(name, [&] { return routeText(name); });
    }
    std::string routeText(const std::string& name) {
        constexpr const char* TAGS[] = {"topic_route", "auto_topic_route", "route", "auto_route"};
        const bool isAuto = below(2) == 0;
        const std::size_t kind = (hasAdapter_ ? 2U : 0U) + (isAuto ? 1U : 0U);
        return std::string("<") + TAGS[kind] + " name=\"" + name + "\"" + enabled() + ">" +
               maybe(4, element("forward_dispose", below(2) ? "true" : "false")) + end("input", isAuto) +
               (!isAuto ? maybe(4, "<transformation plugin_name=\"L::" + number(2) + "\"/>") : "") +
               end("output", isAuto) + maybe(4, property()) + "</" + TAGS[kind] + ">";
    }
    const unsigned seed_;
    unsigned variation_ = 0;
    std::mt19937 random_;
    std::mt19937 varies_;
    std::string path_;
    bool hasAdapter_ = false; // the domain route that is under way
};

// Puts back as the program does, from whatever runs now.
void expectWayBack(Configuration& router, const std::string& before) {
    for (const Step& step :
         makeWayBack(parse(router.text()).get(), parse(before).get(), "S", before, nullptr)) {
        ASSERT_TRUE(isDone(carryOut(step, router))) << inWords({step});
    }
    ASSERT_EQ(countDifferences(router.text(), before), 0U);
}

TEST(Planner, APlanThatEndsElsewhereOrCannotBeTakenBack) {
    constexpr unsigned PAIRS = 1000;
    constexpr unsigned REFUSED_PAIRS = 150; // with a refusal at each step
    std::size_t planned = 0;
    std::size_t byLoad = 0;
    for (unsigned seed = 0; seed < PAIRS; ++seed) {
        Generator generator(seed);
        const std::string before = generator.document(0);
        const std::string wanted = generator.document(1);
        Configuration router;
        ASSERT_TRUE(isDone(router.load(before, "S"))) << before;
        Plan plan;
        std::string whyLoad;
        ASSERT_NO_THROW(plan = makeWayBack(parse(before).get(), parse(wanted).get(), "S", wanted, &whyLoad))
            << seed;
        planned += plan.size();
        byLoad += whyLoad.empty() ? 0 : 1;
        for (const Step& step : plan) {
            const Answer answer = carryOut(step, router);
            ASSERT_TRUE(isDone(answer)) << seed << ": " << answer.text << "\n"
                                        << inWords(plan) << "\n"
                                        << router.text();
        }
        ASSERT_EQ(countDifferences(router.text(), wanted), 0U) << seed;
        ASSERT_EQ(inWords(makePlan(parse(router.text()).get(), parse(wanted).get(), "S")), "") << seed;
        for (std::size_t refused = 0; refused < plan.size() && seed < REFUSED_PAIRS; ++refused) {
            Configuration refusing;
            refusing.load(before, "S");
            for (std::size_t i = 0; i < refused; ++i) {
                carryOut(plan[i], refusing);
            }
            expectWayBack(refusing, before);
        }
    }
    EXPECT_GT(planned, PAIRS * 4);
    EXPECT_LT(byLoad, PAIRS / 8);
}

} // namespace
