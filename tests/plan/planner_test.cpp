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
    const bool enables = step.kind == Kind::ENABLE;
    if (enables || step.kind == Kind::DISABLE) {
        return router.changeState(enables ? StateChange::ENABLE : StateChange::DISABLE, step.entity);
    }
    return step.kind == Kind::UPDATE   ? router.update(step.entity, step.xml)
           : step.kind == Kind::CREATE ? router.create(step.entity, step.xml)
           : step.kind == Kind::REMOVE ? router.remove(step.entity)
                                       : router.load(step.xml, step.entity);
}
bool isDone(const Answer& answer) {
    return answer.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
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

// Leaves the router with what is wanted.
void carryOut(const Plan& plan, Configuration& router, const std::string& wanted) {
    for (const Step& step : plan) {
        const Answer answer = carryOut(step, router);
        ASSERT_TRUE(isDone(answer)) << answer.text << "\n" << inWords(plan) << "\n" << router.text();
    }
    ASSERT_EQ(compare(parse(router.text()).get(), parse(wanted).get(), "S").size(), 0U);
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
    const std::string DEADLINE = "<datareader_qos><deadline><period><sec>1</sec><nanosec>0</nanosec></period></deadline></datareader_qos>";
    const auto profiled = [](const std::string& qos) { // T's reader starts from profile a, by way of c and b; U's does not
        return document(route("D", "0", session(topics("T", "<datareader_qos base_name='Q::c'/>") + topics("U", "<datareader_qos base_name='Q::d'/>"))),
                        "<qos_library name='Q'><qos_profile name='a'>" + qos + "</qos_profile><qos_profile name='b' base_name='Q::a'/>"
                        "<qos_profile name='c'><datareader_qos base_name='Q::b'/></qos_profile><qos_profile name='d'><datawriter_qos base_name='Q::b'/></qos_profile></qos_library>");
    };
    const auto changed = [](const std::string& qos) {
        return "update  <dds><qos_library name=\"Q\"><qos_profile name=\"a\">" + qos + "</qos_profile></qos_library></dds>";
    };
    const auto adapted = [](const std::string& second, const std::string& input, const std::string& output) {
        return document("<domain_route name='D'><connection_1 plugin_name='L::A'/>" + second + session("<route name='R'><input" + input +
                        "><stream_name>x</stream_name></input><output" + output + "><topic_name>t</topic_name></output></route>") + "</domain_route>",
                        "<adapter_library name='L'><adapter_plugin name='A'><library_file>f</library_file><factory_function>f</factory_function></adapter_plugin></adapter_library>");
    };
    const std::string ADAPTER = "<connection_2 plugin_name='L::A'/>", PARTICIPANT = "<participant_2><domain_id>1</domain_id></participant_2>";
    const struct { std::string running, wanted, plan; } rows[] = {
        {document(route("D", "0", "")), document(route("D", "0", "")), ""},
        {profiled(""), profiled(RELIABLE), changed(RELIABLE) + "; disable D::s::T; enable D::s::T"},
        {profiled(""), profiled(DEADLINE), changed(DEADLINE)},
        {document("", "<types><enum name='E'><enumerator name='a'/></enum></types>"), document("", "<types><enum name='E' extensibility='final'><enumerator name='a'/></enum></types>"),
         "update  <dds><types><enum name=\"E\" extensibility=\"final\"></enum></types></dds>"},
        {document(route("D", "0", "", OFF)), document(route("D", "7", "", OFF)),
         "update D <domain_route><participant_1><domain_id>7</domain_id></participant_1></domain_route>"},
        {document(route("D", "0", session(topics("T")))), document(route("D", "0x7", session(topics("T", RELIABLE, OFF)))),
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
        {document(route("D", "0", session(topics("T")))), document(route("D", "0", session("<property><value><element><name>a</name><value/><propagate>true</propagate></element></value></property>" + topics("T")))),
         "update D::s <session><property><value><element><name>a</name><value></value><propagate>true</propagate></element></value></property></session>"},
        {document(route("D", "0", session(PARTITION + topics("T")))), document(route("D", "0", session("<publisher_qos><partition><name><element>x</element><element/></name></partition></publisher_qos>" + topics("T")))),
         "update D::s <session><publisher_qos><partition><name><element></element></name></partition></publisher_qos></session>"},
        // A side is a participant or a connection, as the domain route has it.
        {adapted(ADAPTER, " connection='2'", " connection='1'"), adapted(ADAPTER, "", ""),
         "update D::s::R <route><input connection=\"1\"></input><output connection=\"2\"></output></route>"},
        {adapted(PARTICIPANT, " participant='2'", ""), adapted(PARTICIPANT, "", ""),
         "delete D::s::R; create D::s <route name=\"R\"><input><stream_name>x</stream_name></input><output><topic_name>t</topic_name></output></route>"},
        {document(""), document("<administration><domain_id>3</domain_id></administration>", "<qos_library name='Q'/>"),
         "update  <dds><qos_library name=\"Q\"></qos_library><routing_service name=\"S\"><administration><domain_id>3</domain_id></administration></routing_service></dds>"},
        // The first route gives its domain to the administration; it comes to be another one.
        {document(route("A", "5", "") + route("B", "6", "") + "<administration/>"), document(route("B", "6", "") + "<administration><domain_id>5</domain_id></administration>"),
         "delete A; update  <routing_service><administration><domain_id>5</domain_id></administration></routing_service>"},
        {document(route("D", "0", "") + "<monitoring/>"), document("<monitoring/>"), "delete D"},
        {document(route("D", "0", "")) .insert(5, "<routing_service name='T'/>"), document(route("D", "2", "", OFF)),
         "disable S::D; update S::D <domain_route><participant_1><domain_id>2</domain_id></participant_1></domain_route>"},
    };
    for (const auto& row : rows) {
        const Plan plan = makePlan(parse(row.running).get(), parse(row.wanted).get(), "S");
        EXPECT_EQ(inWords(plan), row.plan);
        Configuration router;
        ASSERT_TRUE(isDone(router.load(row.running, "S"))) << row.running;
        carryOut(plan, router, row.wanted);
    }
}

TEST(Planner, WhatNoCommandCanDoIsNotNamed) {
    const struct { std::string running, wanted, reason; } rows[] = {
        {document("<monitoring/>"), document(""), "/monitoring; an update only adds"},
        {document("", "<qos_library name='Q'/><types><enum name='E'><enumerator name='a'/></enum></types>"), document(""),
         "wanted of /qos_library[Q], /types.enum[E].enumerator[a]; an update"},
        {document(""), document("<x/>"), "what is wanted: line 1"},
        {document("", "<types><typedef name='T' type='string' stringMaxLength='5'/></types>"), document("", "<types><typedef name='T' type='int32'/></types>"),
         "after the commands: stringMaxLength goes with a string or wstring only; load the whole"},
        {document(route("D", "0", ""), "<types><enum name='E'><enumerator name='a' value='1'/></enum></types>"), document("", "<types><enum name='E'><enumerator name='b' value='1'/></enum></types>"),
         "wanted of /types.enum[E].enumerator[a].value; an update"},
        {document("<domain_route/>"), document(""), "the router's own document: line 1: domain_route has no name of its own"},
        {document(route("D", "0", "") + route("D", "1", "")), document(""), "has no name of its own"},
        {document(route("D::s", "0", "")), document(""), "has no name of its own"},
    };
    for (const auto& row : rows) {
        try {
            ADD_FAILURE() << inWords(makePlan(parse(row.running).get(), parse(row.wanted).get(), "S"));
        } catch (const Refusal& refusal) {
            EXPECT_NE(refusal.why.find(row.reason), std::string::npos) << refusal.why;
        }
    }
    std::string why;
    EXPECT_EQ(inWords(makeWayBack(parse(rows[0].running).get(), parse(rows[0].wanted).get(), "S", "X", &why)), "load S X");
    EXPECT_NE(why, "");
}
// clang-format on

// What generated documents are made of. {r} is a rule, {r?4} the same in one of four, {r*3} up to three with
// names of their own, {r/s} one of them, [a|b] one of the words, $ the name.
// clang-format off
const std::map<std::string, std::string> GRAMMAR{
    {"document", "<dds>{types?3}<qos_library name='Q'>{profile_a}{profile_b}</qos_library>{adapters}{transformations}{more}"
                 "<routing_service name='S'>{administration?4}{property?2}{entity_domain*4}</routing_service></dds>"},
    {"types", "<types>{struct*3}</types>"},
    {"struct", "<struct name='$'><member name='x' type='[int32|string]'/></struct>"},
    {"profile_a", "<qos_profile name='a'><datawriter_qos>{policies}</datawriter_qos></qos_profile>"},
    {"profile_b", "<qos_profile name='b'><datareader_qos>{policies}</datareader_qos></qos_profile>"},
    {"adapters", "<adapter_library name='L'><adapter_plugin name='0'>{plugin}</adapter_plugin><adapter_plugin name='1'>{plugin}</adapter_plugin></adapter_library>"},
    {"transformations", "<transformation_library name='L'><transformation_plugin name='0'>{plugin}</transformation_plugin></transformation_library>"},
    {"plugin", "<library_file>l.so</library_file><factory_function>f</factory_function>"},
    {"administration", "<administration>{domain_id?2}</administration>"},
    {"domain_id", "<domain_id>[0|1|2]</domain_id>"},
    {"property", "<property><value>{pair*3}</value></property>"},
    {"pair", "<element><name>$</name><value>[0|1]</value>{propagate?4}</element>"},
    {"propagate", "<propagate>[true|false]</propagate>"},
    {"policies", "{history?2}{deadline?2}{property?4}"},
    {"history", "<history>{depth?2}{kind?2}</history>"},
    {"depth", "<depth>[1|2|0x3]</depth>"},
    {"kind", "<kind>KEEP_[LAST|ALL]_HISTORY_QOS</kind>"},
    {"deadline", "<deadline><period>{sec?2}{nanosec?2}</period></deadline>"},
    {"sec", "<sec>[0|1]</sec>"},
    {"nanosec", "<nanosec>[0|50]</nanosec>"},
    {"base", " base_name='Q::[a|b]'"},
    {"enabled", " enabled='[true|false]'"},
    {"entity_domain", "{dds/dds/dds/adapter}"},
    {"dds", "<domain_route name='$'{enabled?3}>{property?3}<participant_1>{peers?3}{domain_id}{property?4}</participant_1>{note?4}"
            "<participant_2>{domain_id}{peers?3}</participant_2>{entity_session*3}</domain_route>"},
    {"adapter", "<domain_route name='$'{enabled?3}><connection_1 plugin_name='L::[0|1]'>{property?2}</connection_1>"
                "<participant_2>{domain_id}</participant_2><session name='s'>{entity_stream*2}</session></domain_route>"},
    {"peers", "<participant_qos><discovery><initial_peers>{text*3}</initial_peers></discovery></participant_qos>"},
    {"text", "<element>$</element>"},
    {"note", "<documentation>[0|1]</documentation>"},
    {"entity_session", "{plain/plain/polling}"},
    {"plain", "<session name='$'{enabled?3}>{settings}{entity_route*3}</session>"},
    {"polling", "<polling_session name='$'{enabled?3}>{settings}<polling_period>{sec?2}</polling_period>{entity_route*3}</polling_session>"},
    {"settings", "{property?4}{partition?4}{thread?4}"},
    {"partition", "<publisher_qos><partition><name>{text*2}</name></partition></publisher_qos>"},
    {"thread", "<thread_settings><mask>[STDIO|MASK_DEFAULT]</mask></thread_settings>"},
    {"entity_route", "{one/many}"},
    {"one", "<topic_route name='$'{enabled?3}>{dispose?4}<input>{mode?3}{topic}{reader?3}{filter?4}</input>{transformation?4}"
            "<output>{mode?3}{topic?3}{writer?3}</output>{property?4}</topic_route>"},
    {"many", "<auto_topic_route name='$'{enabled?3}><input>{pattern?3}{reader?3}</input><output>{pattern?3}{writer?3}</output></auto_topic_route>"},
    {"entity_stream", "<route name='$'{enabled?3}><input>{mode?3}<stream_name>[0|1]</stream_name>{property?3}</input><output>{topic}{writer?3}</output></route>"},
    {"dispose", "<forward_dispose>[true|false]</forward_dispose>"},
    {"mode", "<creation_mode>[IMMEDIATE|ON_BOTH]</creation_mode>"},
    {"topic", "<topic_name>[0|1]</topic_name>"},
    {"pattern", "<allow_topic_name>[*|a,b]</allow_topic_name>"},
    {"filter", "<content_filter><expression>x = [0|1]</expression>{parameter*2}</content_filter>"},
    {"parameter", "<parameter>$</parameter>"},
    {"transformation", "<transformation plugin_name='L::0'/>"},
    {"reader", "<datareader_qos{base?4}>{policies}</datareader_qos>"},
    {"writer", "<datawriter_qos{base?4}>{policies}</datawriter_qos>"},
};
// clang-format on

// Documents of one seed are alike: an entity is made of the seed and its path, and one in three varies.
class Generator {
public:
    explicit Generator(unsigned seed) : seed_(seed) {}

    // Later ones of some seeds have what no command takes away.
    std::string document(unsigned variation) {
        variation_ = variation;
        varies_.seed(seed_ * 7 + variation);
        random_.seed(seed_ % 8 == 0 ? seed_ + variation : seed_);
        return expand("document", "");
    }

private:
    std::size_t below(std::size_t end) { return random_() % end; }
    std::string oneOf(const std::string& words, char separator) {
        std::vector<std::string> each;
        std::istringstream stream(words);
        for (std::string word; std::getline(stream, word, separator);) {
            each.push_back(word);
        }
        return each[below(each.size())];
    }
    std::string expand(const std::string& rule, const std::string& name) {
        const auto around = std::pair(path_, random_);
        if (rule.starts_with("entity")) {
            path_ += "::" + name;
            const unsigned variant = variation_ != 0 && varies_() % 3 == 0 ? variation_ : 0;
            random_.seed(static_cast<unsigned>(std::hash<std::string>()(path_)) + seed_ * 31 + variant);
        }
        std::string text;
        const std::string& form = GRAMMAR.at(rule);
        for (std::size_t at = 0, next = 0; at < form.size(); at = next) {
            next = std::min(form.find_first_of("{[$", at), form.size());
            text += form.substr(at, next - at);
            if (next < form.size() && form[next] == '$') {
                text += name;
                ++next;
            } else if (next < form.size()) {
                const std::size_t end = form.find_first_of("}]", next);
                const std::string inside = form.substr(next + 1, end - next - 1);
                text += form[next] == '[' ? oneOf(inside, '|') : use(inside, name);
                next = end + 1;
            }
        }
        if (rule.starts_with("entity")) {
            std::tie(path_, random_) = around;
        }
        return text;
    }
    std::string use(const std::string& rule, const std::string& name) {
        if (rule == "more") {
            return variation_ != 0 && seed_ % 4 == 1 ? "<qos_library name='R'/>" : "";
        }
        const std::size_t mark = rule.find_first_of("?*");
        if (mark == std::string::npos) {
            return expand(oneOf(rule, '/'), name);
        }
        const std::string inner = rule.substr(0, mark);
        const std::size_t number = static_cast<std::size_t>(rule[mark + 1] - '0');
        if (rule[mark] == '?') {
            return below(number) == 0 ? expand(inner, name) : "";
        }
        std::string text;
        const std::size_t first = below(number);
        for (std::size_t i = 0, count = below(number + 1); i < count; ++i) {
            text += expand(inner, std::string(1, static_cast<char>('a' + (first + i) % (number + 1))));
        }
        return text;
    }

    const unsigned seed_;
    unsigned variation_ = 0;
    std::mt19937 random_;
    std::mt19937 varies_;
    std::string path_;
};

TEST(Planner, APlanThatEndsElsewhereOrCannotBeTakenBack) {
    constexpr unsigned PAIRS = 1000;
    constexpr unsigned REFUSED_PAIRS = 150; // with a refusal at each step
    std::size_t planned = 0;
    std::size_t byLoad = 0;
    for (unsigned seed = 0; seed < PAIRS && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Generator generator(seed);
        const std::string before = generator.document(0);
        const std::string wanted = generator.document(1);
        Configuration router;
        ASSERT_TRUE(isDone(router.load(before, "S"))) << before;
        std::string whyLoad;
        const Plan plan = makeWayBack(parse(before).get(), parse(wanted).get(), "S", wanted, &whyLoad);
        planned += plan.size();
        byLoad += whyLoad.empty() ? 0 : 1;
        carryOut(plan, router, wanted);
        ASSERT_EQ(inWords(makePlan(parse(router.text()).get(), parse(wanted).get(), "S")), "");
        for (std::size_t refused = 0; refused < plan.size() && seed < REFUSED_PAIRS; ++refused) {
            Configuration refusing;
            refusing.load(before, "S");
            for (std::size_t i = 0; i < refused; ++i) {
                carryOut(plan[i], refusing);
            }
            const XmlDocument running = parse(refusing.text());
            carryOut(makeWayBack(running.get(), parse(before).get(), "S", before, nullptr), refusing, before);
        }
    }
    EXPECT_GT(planned, PAIRS * 4);
    EXPECT_LT(byLoad, PAIRS / 8);
}

} // namespace
