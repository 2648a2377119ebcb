// What counts as a difference between two documents, and what does not, in both directions.
#include "plan/check/check.h"
#include "plan/compare/compare.h"
#include "plan/document/xml.h"

#include <gtest/gtest.h>

namespace {

using namespace zul::plan;

std::string service(const std::string& parts) {
    return "<routing_service name='S'>" + parts + "</routing_service>";
}
std::string route(const std::string& parts, const std::string& name = "D", const std::string& domain = "0") {
    return "<domain_route name='" + name + "'><participant_1><domain_id>" + domain +
           "</domain_id></participant_1><participant_2><domain_id>1</domain_id></participant_2>" + parts +
           "</domain_route>";
}
// The content of a session, a route's input or a profile, in all that has to be around it.
std::string session(const std::string& parts) {
    return service(route("<session name='s'>" + parts + "</session>"));
}
std::string input(const std::string& attributes, const std::string& parts = {},
                  const std::string& output = "/>") {
    return session("<topic_route name='T'><input" + attributes + ">" + parts + "</input><output" + output +
                   "</topic_route>");
}
std::string profile(const std::string& parts) {
    return "<qos_library name='Q'><qos_profile name='P'>" + parts + "</qos_profile></qos_library>" +
           service("");
}
std::string types(const std::string& parts) {
    return "<types>" + parts + "</types>" + service("");
}
std::string properties(const std::string& items) {
    return "<property><value>" + items + "</value></property>";
}
std::string pair(const std::string& name, const std::string& value, const std::string& more = {}) {
    return "<element>" + more + "<name>" + name + "</name><value>" + value + "</value></element>";
}

std::string differences(const std::string& running, const std::string& wanted) {
    const XmlDocument from = parseXml("<dds>" + running + "</dds>", {});
    const XmlDocument to = parseXml("<dds>" + wanted + "</dds>", {});
    std::string text;
    for (const Difference& each : compare(from.get(), to.get(), "S")) {
        text.append(text.empty() ? "" : "; ").append(nameOf(each.change)).append(" " + each.path);
        text.append(": " + each.from + " -> " + each.to);
    }
    return text;
}

// clang-format off
TEST(Compare, TwoWaysToSayTheSameThatCountAsDifferent) {
    const std::string T = "T</topic_name>";
    const struct { std::string one, other; } rows[] = {
        {service(route("")), "<!-- x --> <routing_service\n name='S'> " + route("<!-- y -->\n") + "</routing_service>"},
        {service(route("", "A") + route("", "B")), service(route("", "B") + route("", "A"))},
        {service("<administration><domain_id>1</domain_id><save_path>x</save_path></administration>"),
         service("<administration><save_path> x\n</save_path><enabled>true</enabled><domain_id>9</domain_id><domain_id>+1</domain_id></administration>")},
        {session(""), session("<property><value/></property><thread_settings/><subscriber_qos/><documentation/>")},
        {session("<thread_settings><mask>stdio | REALTIME_PRIORITY</mask></thread_settings>"),
         session("<thread_settings><mask>REALTIME_PRIORITY|STDIO</mask><stack_size></stack_size></thread_settings>")},
        {session(properties(pair("a", "1") + pair("b", "2"))),
         session(properties(pair("b", "0") + pair("b", "2", "<propagate>false</propagate>") + pair("a", " 1 ")))},
        {session("<publisher_qos><partition><name><element>x</element><element>y</element></name></partition></publisher_qos>"),
         session("<publisher_qos name='made up'><partition><name><element>y</element><element>x</element><element>y</element></name></partition></publisher_qos>")},
        {session(""), session("<publisher_qos><partition><name><element/></name></partition></publisher_qos>")},
        {service("<monitoring/>"), service("<monitoring><sampling_period><sec>1</sec></sampling_period></monitoring>")},
        {service(route("", "D", "0x1F") + "<administration/>"), service(route("", "D", "31") + "<administration><domain_id>31</domain_id></administration>")},
        {input(""), input(" participant='1'", "<allow_topic_name>*</allow_topic_name>", " participant='2'/>")},
        {input(" participant='2'"), input(" participant='2'", "", " participant='1'><creation_mode>IMMEDIATE</creation_mode></output>")},
        {input("", "<topic_name>" + T), input("", "", "><topic_name>" + T + "</output>")},
        {input("", "<deny_topic_name>a,[b,c],d</deny_topic_name>"), input("", "<deny_topic_name>d,a,[b,c],a</deny_topic_name>")},
        {profile("<datawriter_qos><deadline><period><sec>0</sec><nanosec>250000000</nanosec></period></deadline><resource_limits><max_samples>-1</max_samples></resource_limits></datawriter_qos>"),
         profile("<datawriter_qos><resource_limits><max_samples>LENGTH_UNLIMITED</max_samples></resource_limits><deadline><period><nanosec>250000000</nanosec></period></deadline></datawriter_qos>")},
        {profile("<datawriter_qos topic_filter='a*'/><datawriter_qos/>"), profile("<datawriter_qos topic_filter='a*'/><datawriter_qos/><datawriter_qos topic_filter='b'/>")},
        {profile("<datareader_qos topic_filter='*'/>"), profile("<datareader_qos/>")},
        {types("<struct name='A'><member name='x' type='int32'/></struct>"),
         types("<struct extensibility='extensible' nested='false' name='A'><member type='int32' stringMaxLength='-1' name='x' key='false'/></struct>")},
        {types("<enum name='E'><enumerator name='a'/></enum><module name='M'/>"), types("<enum name='E'><enumerator name='a'/></enum>") + "<types><module name='M'/></types>"},
        {service(""), service("") + "<routing_service name='T'><domain_route name='E'><participant_1><domain_id>0</domain_id></participant_1><participant_2><domain_id>0</domain_id></participant_2></domain_route></routing_service>"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(differences(row.one, row.other), "") << row.one << "\n" << row.other;
        EXPECT_EQ(differences(row.other, row.one), "");
    }
}

TEST(Compare, ADifferenceThatIsMissedOrNotNamed) {
    const struct { std::string running, wanted, said; } rows[] = {
        {service(route("", "A")), service("<domain_route enabled='false'" + route("", "A").substr(13)), "changed A/enabled: true -> false"},
        {session(""), service(route("<polling_session name='s'><polling_period/></polling_session>")), "removed D::s: session -> ; added D::s:  -> polling_session"},
        {service(""), service("<administration/>"), "added /administration:  -> "},
        {session(properties(pair("a", "1") + pair("b", "2"))), session(properties(pair("b", "3", "<propagate>true</propagate>"))),
         "removed D::s/property[a]: 1 -> ; changed D::s/property[b]: 2 -> 3; changed D::s/property[b].propagate: false -> true"},
        {session("<subscriber_qos name='x'><partition><name><element>y</element></name></partition></subscriber_qos>"),
         session("<subscriber_qos name='z' base_name='Q::P'/>"),
         "changed D::s/subscriber_qos.name: x -> z; removed D::s/subscriber_qos.partition[y]: y -> ; added D::s/subscriber_qos.base_name:  -> Q::P"},
        {profile("<publisher_qos base_name='Q::P'/>"), profile("<publisher_qos base_name='Q::P'><partition><name/></partition></publisher_qos>"),
         "added /qos_library[Q].qos_profile[P].publisher_qos.partition[]:  -> "},
        {input(" participant='2'"), input(""), "changed D::s::T/input.participant: 2 -> 1; changed D::s::T/output.participant: 1 -> 2"},
        {input(""), input("", "<content_filter><expression>x</expression><parameter>1</parameter><parameter/></content_filter>"),
         "added D::s::T/input.content_filter.expression:  -> x; added D::s::T/input.content_filter.parameter[0]:  -> 1; added D::s::T/input.content_filter.parameter[1]:  -> "},
        {profile("<datawriter_qos topic_filter='a*'/><datawriter_qos topic_filter='b'/>"), profile("<datawriter_qos topic_filter='b'/><datawriter_qos topic_filter='a*'/>"),
         "changed /qos_library[Q].qos_profile[P]: in the order a*, b -> in the order b, a*"},
        {profile(""), profile("<datawriter_qos><history><depth>3</depth></history><deadline><period/></deadline></datawriter_qos>"),
         "added /qos_library[Q].qos_profile[P].datawriter_qos[*].history.depth:  -> 3; added /qos_library[Q].qos_profile[P].datawriter_qos[*].deadline.period:  -> 0 s"},
        {profile("<datawriter_qos><deadline><period><nanosec>150000000</nanosec></period></deadline></datawriter_qos>"),
         profile("<datawriter_qos><deadline><period><nanosec>1500000000</nanosec></period></deadline></datawriter_qos>"),
         "changed /qos_library[Q].qos_profile[P].datawriter_qos[*].deadline.period: 0.15 s -> 0.1500000000 s"},
        {types("<struct name='A'><member name='x' type='int32'/><member name='y' type='int32'/></struct>"),
         types("<struct name='A'><member name='y' type='int32'/><member name='x' type='int64'/></struct>"),
         "changed /types.struct[A].member[x].type: int32 -> int64; changed /types.struct[A]: in the order x, y -> in the order y, x"},
        {types("<module name='M'/><module name='M'><module name='N'/></module>"), types("<module name='M'><module name='N'/></module><module name='M'/>"),
         "added /types.module[M].module[N]:  -> ; removed /types.module[M (2)].module[N]:  -> "},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(differences(row.running, row.wanted), row.said);
        EXPECT_NE(differences(row.wanted, row.running), "");
    }
}
// clang-format on

} // namespace
