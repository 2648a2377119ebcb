// Faults in configuration documents: each is told once, with its line and what was expected; and what is
// right is let pass, however unusual.
#include "plan/check/check.h"
#include "plan/document/text.h"
#include "product/product_info.h"
#include "tests/support/repeated.h"

#include <chrono>
#include <gtest/gtest.h>

namespace {

using namespace zul::plan;

// A document of the routing service: `head` on line 2, `participant` in the first participant on line 4,
// `routes` in the session on line 6, `more` at the end of the service on line 8.
struct Parts {
    std::string head{};
    std::string participant{};
    std::string routes{};
    std::string more{};
    std::string first{}; // in place of the first participant
    std::string second = "<participant_2><domain_id>1</domain_id></participant_2>";
};
std::string documentOf(const Parts& parts) {
    const std::string first = parts.first.empty() ? "<participant_1>" + parts.participant +
                                                        "<domain_id>0</domain_id></participant_1>"
                                                  : parts.first;
    return "<dds>\n" + parts.head + "\n<routing_service name='S'><domain_route name='D'>\n" + first + "\n" +
           parts.second + "<session name='s'>\n" + parts.routes + "\n</session></domain_route>\n" +
           parts.more + "</routing_service></dds>";
}
std::string route(const std::string& ends, const std::string& tag = "topic_route") {
    return "<" + tag + " name='R'>" + ends + "</" + tag + ">";
}
const std::string INPUT = "<input><topic_name>t</topic_name></input>";
const std::string LIBRARIES =
    "<adapter_library name='A'><adapter_plugin name='F'><library_file>f.so</library_file>"
    "<factory_function>f</factory_function></adapter_plugin></adapter_library>"
    "<transformation_library name='T'><transformation_plugin name='P'><library_file>p</library_file>"
    "<factory_function>p</factory_function></transformation_plugin></transformation_library>";
std::string profile(const std::string& content, const std::string& attributes = "") {
    return "<qos_library name='L'><qos_profile name='P' " + attributes + ">" + content +
           "</qos_profile></qos_library>";
}
std::string reader(const std::string& policies) {
    return profile("<datareader_qos>" + policies + "</datareader_qos>");
}
std::string admin(const std::string& content) {
    return "<administration>" + content + "</administration>";
}
std::string types(const std::string& content) {
    return "<types>" + content + "</types>";
}
std::string seconds(const std::string& tag, const std::string& value) {
    return "<" + tag + "><sec>" + value + "</sec></" + tag + ">";
}

std::string inWords(const std::vector<Finding>& findings) {
    std::string text;
    for (const Finding& finding : findings) {
        text += std::to_string(finding.line) + ": " + finding.message + "\n";
    }
    return text;
}

std::string typedefs(int count, const std::string& attributes, const std::string& first = "type='byte'") {
    std::string text = "<typedef name='T0' " + first + "/>";
    for (int i = 1; i <= count; ++i) {
        text += "<typedef name='T" + std::to_string(i) + "' type='nonBasic' nonBasicTypeName='T" +
                std::to_string(i - 1) + "' " + attributes + "/>";
    }
    return text;
}

// clang-format off
TEST(Check, AFaultThatPassesOrIsToldTwice) {
    const std::string connection = "<connection_1 plugin_name='A::F'/>";
    const struct {
        Parts parts;
        int line;
        const char* message;
    } rows[] = {
        // Numbers and their ranges
        {{.participant = "<participant_qos><discovery>" + seconds("lease_duration", "-1") + "</discovery></participant_qos>"}, 4,
         "the sec of lease_duration is \"-1\"; expected an integer from 0 to 2147483647 or DURATION_INFINITE_SEC"},
        {{.head = reader("<latency_budget><duration><nanosec>1000000000</nanosec></duration></latency_budget>")}, 2,
         "the nanosec of duration is \"1000000000\"; expected an integer from 0 to 999999999 or DURATION_INFINITE_NSEC"},
        {{.head = reader("<history><depth>0x</depth></history>")}, 2, "the depth of history is \"0x\"; expected an integer from 1 to 2147483647"},
        {{.head = reader("<resource_limits><max_samples>LENGTH_UNLIMITEDE</max_samples></resource_limits>")}, 2,
         "the max_samples of resource_limits is \"LENGTH_UNLIMITEDE\"; expected an integer from 1 to 2147483647 or LENGTH_UNLIMITED"},
        {{.head = profile("<topic_qos><transport_priority><value>2147483648</value></transport_priority></topic_qos>")}, 2,
         "the value of transport_priority is \"2147483648\"; expected an integer of 32 bits"},
        {{.routes = "<thread_settings><priority>+-5</priority></thread_settings>"}, 6,
         "the priority of thread_settings is \"+-5\"; expected an integer of 32 bits"},
        {{.routes = "<thread_settings><priority/></thread_settings>"}, 6, "the priority of thread_settings is \"\"; expected an integer of 32 bits"},
        {{.routes = "<thread_settings><priority>5" + std::string(5000, ' ') + "x</priority></thread_settings>"}, 6, "is \"5 ...\"; expected an integer"},
        // Words that an element may hold
        {{.head = reader("<reliability><kind>reliable</kind></reliability>")}, 2,
         "the kind of reliability is \"reliable\"; expected BEST_EFFORT_RELIABILITY_QOS or RELIABLE_RELIABILITY_QOS"},
        {{.more = admin("<datareader_qos><reliability><kind>BEST_EFFORT_RELIABILITY_QOS</kind></reliability></datareader_qos>")}, 8,
         "the kind of reliability is \"BEST_EFFORT_RELIABILITY_QOS\"; expected RELIABLE_RELIABILITY_QOS"},
        {{.routes = route("<forward_dispose>True</forward_dispose>" + INPUT + "<output/>")}, 6,
         "the forward_dispose of topic_route \"R\" is \"True\"; expected true or false"},
        {{.routes = "<thread_settings><mask>STDIO|X</mask></thread_settings>"}, 6, "the mask of thread_settings is \"STDIO|X\"; expected "
         "MASK_DEFAULT, FLOATING_POINT, STDIO, REALTIME_PRIORITY or PRIORITY_ENFORCE, with | between them"},
        {{.routes = "<thread_settings><mask>ST DIO</mask></thread_settings>"}, 6, "the mask of thread_settings is \"ST DIO\"; expected MASK_DEFAULT, "},
        {{.routes = "<thread_settings><mask>STDIO|MASK_DEFAULT</mask></thread_settings>"}, 6, "the mask of thread_settings is \"STDIO|MASK_DEFAULT\"; expected "},
        {{.head = reader("<user_data><value><!-- -->a<!-- --> <!-- -->b*</value></user_data>")}, 2, "the value of user_data is \"a b*\"; expected base64"},
        {{.head = reader("<user_data><value><element>a</element></value></user_data>")}, 2, "the value of user_data is not made up as it should be; "
         "expected a text, and no elements"},
        {{.participant = "<participant_qos><participant_name><name>" + std::string(255, 'n') + "</name></participant_name></participant_qos>"}, 4,
         "; expected at most 254 characters"},
        {{.head = "<adapter_library name='A'><adapter_plugin name='F'><library_file> </library_file><factory_function>f</factory_function>"
                  "</adapter_plugin></adapter_library>"}, 2, "the library_file of adapter_plugin \"F\" is \"\"; expected a text"},
        // Properties and lists
        {{.more = "<property><value>x</value></property>"}, 8, "the value of property is not made up as it should be; expected elements called element"},
        {{.more = "<property><value><element><name>a</name></element></value></property>"}, 8,
         "the element of value is not made up as it should be; expected one name, one value and at most one propagate"},
        {{.more = "<property><value><element><name>a</name><value/><propagate>true</propagate><propagate>true</propagate></element></value></property>"}, 8,
         "the element of value is not made up as it should be"},
        {{.more = "<property><value><element><name>a</name><value><element/></value></element></value></property>"}, 8,
         "the value of element is not made up as it should be; expected a text, and no elements"},
        {{.more = "<property><value><element><name>a</name><value/><propagate>1</propagate></element></value></property>"}, 8,
         "the propagate of element is \"1\"; expected true or false"},
        // Names and references
        {{.head = "<qos_library name='L::M'/>"}, 2, "the attribute name of qos_library \"L::M\" is \"L::M\"; expected 1 to 254 letters, digits"},
        {{.head = LIBRARIES + profile("") + "\n<qos_library name='T'/><qos_library name='L'/>"}, 3, "the name \"L\" of this qos_library is taken by an element beside it"},
        {{.head = "<qos_library name='L'><qos_profile name='P'/>\n<qos_profile name='P'/></qos_library>"}, 3, "the name \"P\" of this qos_profile is taken by an element beside it"},
        {{.head = profile("", "base_name='L::Q'")}, 2, "the attribute base_name of qos_profile \"P\" is \"L::Q\"; expected the path Library::Profile"},
        {{.head = profile(""), .participant = "<participant_qos base_name='P'/>"}, 4, "of participant_qos is \"P\"; expected the path Library::Profile"},
        {{.first = connection}, 4, "the attribute plugin_name of connection_1 is \"A::F\"; expected the path Library::Plugin of an adapter_plugin"},
        {{.head = LIBRARIES, .routes = route(INPUT + "<transformation plugin_name='A::F'/><output/>")}, 6, "of a transformation_plugin"},
        {{.head = types("<const name='C' type='int32' value='1'/>"), .participant = "<register_type name='r' type_ref='C'/>"}, 4,
         "the attribute type_ref of register_type \"r\" is \"C\"; expected the path Module::Type of a type in the document"},
        // Circles, through other profiles and through their elements
        {{.head = profile("<topic_qos base_name='M::Q'/>", "base_name='L::P'") + "<qos_library name='M'><qos_profile name='Q'/></qos_library>"}, 2,
         "of qos_profile \"P\" leads back to it"},
        {{.head = "<qos_library name='L'><qos_profile name='A' base_name='L::B'/>\n<qos_profile name='B' base_name='L::A'/></qos_library>"}, 3,
         "the base_name \"L::A\" of qos_profile \"B\" leads back to it; expected a profile without a circle"},
        {{.head = "<qos_library name='L'><qos_profile name='A'><topic_qos base_name='L::B'/></qos_profile>\n"
                  "<qos_profile name='B' base_name='L::A'/></qos_library>"}, 3, "leads back to it"},
        // Two values
        {{.head = reader("<resource_limits><max_samples>5</max_samples><max_samples_per_instance>6</max_samples_per_instance></resource_limits>")}, 2,
         "the max_samples_per_instance in resource_limits is above the max_samples; expected at most as much"},
        {{.head = reader("<history><depth>9</depth></history><resource_limits><max_samples_per_instance>8</max_samples_per_instance></resource_limits>")},
         2, "the depth of history in datareader_qos is above the max_samples_per_instance of resource_limits"},
        {{.head = reader("<deadline>" + seconds("period", "1") + "</deadline><time_based_filter>" + seconds("minimum_separation", "2") +
                         "</time_based_filter>")}, 2, "the minimum_separation of time_based_filter in datareader_qos is above the period of deadline"},
        {{.participant = "<participant_qos><discovery>" + seconds("announcement_period", "10") + seconds("lease_duration", "29") +
                         "</discovery></participant_qos>"}, 4, "3 times the announcement_period in discovery is above the lease_duration"},
        {{.more = "<monitoring>" + seconds("sampling_period", "DURATION_INFINITE_SEC") + seconds("status_publication_period", "9") + "</monitoring>"}, 8,
         "the sampling_period in monitoring is above the status_publication_period"},
        {{.more = "<monitoring>" + seconds("status_publication_period", "0") + "</monitoring>"}, 8, "the sampling_period (1 s by default) in monitoring is above"},
        {{.more = "<monitoring>" + seconds("sampling_period", "6") + "</monitoring>"}, 8, "is above the status_publication_period (5 s by default);"},
        {{.more = admin("<save_on_update>true</save_on_update><save_path> </save_path>")}, 8, "save_on_update is true and the administration has no save_path"},
        // Routes and their ends
        {{.routes = route("<input participant='2'><topic_name>t</topic_name></input>\n<output participant='2'/>")}, 7,
         "both ends of topic_route \"R\" are on side 2; expected the output on side 1"},
        {{.routes = route(INPUT + "<output participant='1'/>")}, 6, "both ends of topic_route \"R\" are on side 1"},
        {{.routes = route("<input/><output/>")}, 6, "topic_route \"R\" names no topic; expected a topic_name in its input or its output"},
        {{.routes = route("<input/><output/>", "auto_route")}, 6, "auto_route \"R\" has no end at an adapter's connection; expected one, or a topic_route"},
        {{.head = LIBRARIES, .routes = route(INPUT + "<output/>"), .first = connection}, 6, "topic_route \"R\" has an end at an adapter's connection"},
        {{.head = LIBRARIES, .routes = route("<input participant='1'/><output/>", "route"), .first = connection}, 6,
         "the input of route \"R\" is at participant 1; expected connection 1, which is what the domain_route has"},
        {{.head = LIBRARIES, .routes = route("<input participant='1' connection='1'/><output/>", "route"), .first = connection}, 6,
         "the input of route \"R\" has a participant and a connection; expected one of them"},
        {{.routes = route("<input><topic_name>t</topic_name><content_filter><expression>x</expression>" +
                          repeated("<parameter/>", 101) + "</content_filter></input><output/>")}, 6,
         "this is parameter 101 of the content_filter; expected at most 100"},
        // Types: what is made of a wrong type is not told, nor what the definition has told
        {{.head = types("<struct name='A'><member name='m' type='nonBasic' nonBasicTypeName='X'/></struct>"
                        "<struct name='B'><member name='m' type='nonBasic' nonBasicTypeName='A'/></struct>"),
          .participant = "<register_type name='r' type_ref='B'/>"}, 2, "unknown type 'X'; define it, or announce it"},
        {{.head = types("<const name='C' type='int8' value='300'/>"
                        "<typedef name='D' type='string' stringMaxLength='C'/><const name='E' type='int32' value='C'/>")}, 2, "'300' is no value of"},
        {{.head = types("<struct name='A' x=''><member name='m' type='byte'/></struct><typedef name='T' type='nonBasic' nonBasicTypeName='A'/>")}, 2,
         "struct \"A\" has no attribute x"},
        {{.head = types("<forward_dcl name='A' kind='struct'/><typedef name='T' type='nonBasic' nonBasicTypeName='A'/>")}, 2, "announced but never defined"},
        {{.head = types(typedefs(300, ""))}, 2, "types stand more than 256 levels inside each other"},
        {{.head = types("<forward_dcl name='S' kind='struct'/>" + typedefs(300, "sequenceMaxLength='1'", "type='nonBasic' nonBasicTypeName='S'") +
                        "<struct name='S'><member name='m' type='nonBasic' nonBasicTypeName='T300'/></struct>")}, 2, "more than 256 levels"},
        {{.head = types("<const name='C' type='byte' value='1'> </const>")}, 2, "const \"C\" has content; expected none"},
        {{.head = types("<module name='" + std::string(255, 'm') + "'/>")}, 2, "expected 1 to 254 letters"},
    };
    for (const auto& row : rows) {
        const std::string xml = documentOf(row.parts);
        const std::vector<Finding> findings = findFaults(xml, "", {});
        ASSERT_EQ(findings.size(), 1U) << xml << "\n" << inWords(findings) << row.message;
        EXPECT_EQ(findings.front().line, row.line) << xml;
        EXPECT_NE(findings.front().message.find(row.message), std::string::npos) << findings.front().message << "\n" << row.message;
    }
}

TEST(Check, AnUnusualDocumentThatIsRefused) {
    const Parts rows[] = {
        {.head = profile(""), .participant = "<participant_qos base_name='L::P'/>"},
        {.head = "<qos_library name='L'><qos_profile name='A'><topic_qos topic_filter='x' base_name='L::A'/></qos_profile></qos_library>"},
        {.head = reader("<history><kind> KEEP_ALL_HISTORY_QOS\n</kind><depth>9</depth></history><resource_limits><max_samples>+5</max_samples>"
                        "<max_instances>-1</max_instances><max_samples_per_instance>5</max_samples_per_instance></resource_limits>")},
        {.head = "<qos_library name='M'><qos_profile name='Q'/></qos_library>" + profile("<topic_qos base_name='M::Q'><history><depth>9</depth></history>"
                 "<resource_limits><max_samples>LENGTH_UNLIMITED</max_samples><max_samples_per_instance>5</max_samples_per_instance></resource_limits></topic_qos>")},
        {.head = reader("<history><depth>9</depth></history><resource_limits><max_samples>5</max_samples></resource_limits><resource_limits/>")},
        {.head = reader("<deadline><period><nanosec>DURATION_INFINITE_NSEC</nanosec><sec>DURATION_INFINITE_SEC</sec></period></deadline>"
                        "<time_based_filter>" + seconds("minimum_separation", "0x7fffffff") + "</time_based_filter><user_data><value>YW\nJj=</value></user_data>")},
        {.head = types("<struct name='A'><member name='m' type='byte'/></struct>"), .participant = "<register_type name='x::y' type_ref='::A'/>"},
        {.head = types("<include file='other.xml'/>"), .participant = "<register_type name='r' type_ref='Other'/>"},
        {.routes = "<thread_settings><mask>stdio | Floating_Point</mask><priority>-5</priority></thread_settings>" +
                   route("<input participant='2'/><output><topic_name>t</topic_name></output>")},
        {.head = LIBRARIES, .routes = route("<input/><output connection='2'/>", "route"),
         .first = "<connection_1 plugin_name='A::F'/>", .second = "<connection_2 plugin_name='A::F'/>"},
        {.more = "<property><value/></property><property><value><element><value>1</value><name/></element></value></property>"},
    };
    for (const Parts& parts : rows) {
        const std::string xml = documentOf(parts);
        EXPECT_EQ(inWords(findFaults(xml, "", {})), "") << xml;
    }
}

TEST(Check, AFaultThatHidesAnotherOrComesOutOfOrder) {
    const std::string xml = documentOf({.head = "<outlet/>" + types("<enum name='E'>\n<enumerator name='A'/><enumerator name='B' value='0'/><enumerator name='C'/></enum>"
                                                                    "<typedef/><struct name='S'><member name='m' type='nonBasic'/>"
                                                                    "<member name='n' type='byte' id='x'/></struct>"),
                                        .participant = "<x/><y/><domain_id>233</domain_id>",
                                        .routes = "text" + route("<output><creation_mode/></output><input/>")});
    EXPECT_EQ(inWords(findFaults(xml, "", {})),
              "2: outlet cannot stand here in dds; expected types, qos_library, adapter_library, routing_service, transformation_library or nothing more\n"
              "3: typedef lacks an attribute; expected name\n"
              "3: typedef lacks an attribute; expected type\n"
              "3: the value of this enumerator must be a 32-bit integer or a const, used once in the enum\n"
              "3: the id of a member must be a number from 0 to 268435455\n"
              "3: nonBasicTypeName goes with type=\"nonBasic\", and only with it\n"
              "5: x cannot stand here in participant_1; expected participant_qos, register_type, property or domain_id\n"
              "5: y cannot stand here in participant_1; expected participant_qos, register_type, property or domain_id\n"
              "5: the domain_id of participant_1 is \"233\"; expected an integer from 0 to 232\n"
              "6: session \"s\" holds text; expected publisher_qos, subscriber_qos, thread_settings, property, reporting, documentation, topic_route, "
              "auto_topic_route, route, auto_route or nothing more\n"
              "7: output cannot stand here in topic_route \"R\"; expected publish_with_original_info, keep_source_timestamp, forward_dispose, "
              "forward_unregister, reporting, property, documentation or input\n"
              "7: topic_route \"R\" names no topic; expected a topic_name in its input or its output\n"
              "7: the creation_mode of output is \"\"; expected IMMEDIATE, ON_WRITER, ON_READER, ON_EITHER or ON_BOTH\n");
}
// clang-format on

// With the square of their number in any step, each of these would take minutes.
TEST(Check, AHostileDocumentThatTakesLongOrCrashes) {
    constexpr int MANY = 100000;
    std::string circle;
    const auto unionOf = [](const std::string& name, const std::string& cases) {
        return "<union name='" + name + "'><discriminator type='nonBasic' nonBasicTypeName='E'/>" + cases +
               "</union>";
    };
    const std::string label = "<case><caseDiscriminator value='0'/><member name='m' type='byte'/></case>";
    for (int i = 0; i < MANY; ++i) {
        const std::string number = std::to_string(i);
        circle +=
            "<qos_profile name='p" + number + "' base_name='L::p" + std::to_string((i + 1) % MANY) + "'/>";
    }
    const std::pair<std::string, std::size_t> rows[] = {
        {documentOf({.head = "<qos_library name='L'>" + circle + "</qos_library>"}), 1},
        {documentOf({.head = repeated("<x/>", MANY) + "<y/>"}), MANY + 1},
        {documentOf(
             {.routes = repeated("<topic_route name='r#'>" + INPUT + "<output/></topic_route>", MANY / 2)}),
         0},
        {documentOf({.head = types("<enum name='E'><enumerator name='A'/></enum>" +
                                   unionOf("U", repeated(label, MANY / 2)))}),
         MANY / 2 - 1},
        {documentOf({.head = types("<enum name='E'>" + repeated("<enumerator name='e#'/>", MANY / 4) +
                                   "</enum>" + repeated(unionOf("U#", label), MANY / 8))}),
         0},
        {documentOf({.participant = "<participant_qos><discovery>" +
                                    seconds("announcement_period", "2147483646</sec><sec>2147483646") +
                                    seconds("lease_duration", "1") + "</discovery></participant_qos>"}),
         2}, // the second one, and three times as much is more than 64 bits hold
    };
    for (const auto& [xml, count] : rows) {
        const auto begin = std::chrono::steady_clock::now();
        const std::vector<Finding> findings = findFaults(xml, "", {});
        EXPECT_EQ(findings.size(), count);
        std::string answer; // of a router
        try {
            readDocument(xml, {});
        } catch (const Refusal& refusal) {
            answer = refusal.why + "\n";
        }
        EXPECT_EQ(answer, findings.empty() ? "" : "line " + inWords({findings.front()}));
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
    }
    std::stop_source ending;
    const XmlDocument document = parseXml(rows[2].first, {});
    ending.request_stop();
    EXPECT_THROW(findFaults(document.get(), "", ending.get_token()), Refusal);
}

} // namespace
