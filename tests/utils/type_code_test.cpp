// Type codes from types sections: the administration types written in XML against their own codes, and every
// construct against a written form of its code.
#include "admin_types/data_types.h"
#include "tests/middleware/captured_log.h"
#include "tests/utils/documents.h"
#include "utils/type_description.h"

#include <gtest/gtest.h>

namespace {

std::string replaceAll(std::string text, std::string_view from, std::string_view to) {
    for (std::size_t at = 0; (at = text.find(from, at)) != std::string::npos; at += to.size()) {
        text.replace(at, from.size(), to);
    }
    return text;
}

// One text for both modules; @ marks what differs.
constexpr const char* ADMINISTRATION_TYPES = R"(
<module name="ZUL"><module name="@MODULE"><module name="Administration">
  <const name="NAME_BOUND" type="uint32" value="0xFF"/>
  @TYPEDEF
  <struct name="XmlUrl">
    <member name="is_final" type="boolean"/>
    <member name="content" type="string" stringMaxLength="4096"/>
  </struct>
  <struct name="EntityDescription">
    <member name="name" @NAME/>
    <member name="xml_url" type="nonBasic" nonBasicTypeName="XmlUrl"/>
  </struct>
  <struct name="PeerUpdateDescription">
    <member name="domain_route_name" @NAME/>
    <member name="is_first_participant" type="boolean"/>
    <member name="peer_list" type="string" stringMaxLength="NAME_BOUND" sequenceMaxLength="16"/>
  </struct>
  <enum name="CommandKind">
    <enumerator name="@PREFIX_LOAD" value="1"/><enumerator name="@PREFIX_UNLOAD"/>
    <enumerator name="@PREFIX_INSERT"/><enumerator name="@PREFIX_UPDATE"/>
    <enumerator name="@PREFIX_PAUSE"/><enumerator name="@PREFIX_RESUME"/>
    <enumerator name="@PREFIX_ENABLE"/><enumerator name="@PREFIX_DISABLE"/>
    <enumerator name="@PREFIX_ANNOUNCE"/><enumerator name="@PREFIX_CREATE"/>
    <enumerator name="@PREFIX_DELETE"/><enumerator name="@PREFIX_SAVE"/>
    <enumerator name="@PREFIX_GET"/><enumerator name="@PREFIX_ADD_PEER" value="14"/>
  </enum>
  <enum name="CommandResponseKind">
    <enumerator name="@PREFIX_RESPONSE_OK"/><enumerator name="@PREFIX_RESPONSE_ANNOUNCEMENT"/>
    <enumerator name="@PREFIX_RESPONSE_ERROR"/><enumerator name="@PREFIX_RESPONSE_ENTITY_NOT_FOUND"/>
  </enum>
  <union name="Command" @MUTABLE>
    <discriminator type="nonBasic" nonBasicTypeName="CommandKind"/>
    <case>
      <caseDiscriminator value="@PREFIX_LOAD"/><caseDiscriminator value="3"/>
      <caseDiscriminator value="ZUL::@MODULE::Administration::@PREFIX_UPDATE"/><caseDiscriminator value="10"/>
      <member name="entity_desc" type="nonBasic" nonBasicTypeName="EntityDescription" id="1"/>
    </case>
    <case>
      <caseDiscriminator value="@PREFIX_ANNOUNCE"/><caseDiscriminator value="@PREFIX_UNLOAD"/>
      <caseDiscriminator value="@PREFIX_SAVE"/><caseDiscriminator value="@PREFIX_GET"/>
      <member name="dummy" type="int32"/>
    </case>
    <case>
      <caseDiscriminator value="5"/><caseDiscriminator value="6"/><caseDiscriminator value="7"/>
      <caseDiscriminator value="8"/><caseDiscriminator value="11"/>
      <member name="entity_name" @NAME/>
    </case>
    <case>
      <caseDiscriminator value="@PREFIX_ADD_PEER"/>
      <member name="peer_desc" type="nonBasic" nonBasicTypeName="::ZUL::@MODULE::Administration::PeerUpdateDescription"/>
    </case>
  </union>
</module></module></module>
<module name="ZUL"><module name="@MODULE"><module name="Administration">
  <struct name="CommandId" @FINAL>
    <member name="host" type="int32"/><member name="app" type="int32"/><member name="invocation" type="int32"/>
  </struct>
  <struct name="CommandRequest" @MUTABLE>
    <member name="id" type="nonBasic" nonBasicTypeName="CommandId"/>
    <member name="@TARGET" @NAME/>
    <member name="command" type="nonBasic" nonBasicTypeName="Administration::Command"/>
  </struct>
  <struct name="CommandResponse">
    <member name="id" type="nonBasic" nonBasicTypeName="CommandId"/>
    <member name="kind" type="nonBasic" nonBasicTypeName="CommandResponseKind"/>
    <member name="message" type="string" stringMaxLength="4096"/>
    <member name="is_final" type="boolean"/>
  </struct>
</module></module></module>)";

using Replacements = std::vector<std::pair<std::string_view, std::string_view>>;

std::string administrationTypes(const Replacements& replacements) {
    std::string text = typesDocument(ADMINISTRATION_TYPES);
    for (const auto& [from, to] : replacements) {
        text = replaceAll(text, from, to);
    }
    return text;
}

TEST(TypeCodes, AdministrationTypesFromXmlAreTheirOwn) {
    const Replacements routing = {
        {"@MODULE", "RoutingService"},
        {"@PREFIX", "ZUL_ROUTING_SERVICE_COMMAND"},
        {"@TYPEDEF", "<typedef name='EntityName' type='string' stringMaxLength='NAME_BOUND'/>"},
        {"@NAME", "type='nonBasic' nonBasicTypeName='EntityName'"},
        {"@TARGET", "target_router"},
        {"@MUTABLE", "extensibility='mutable'"},
        {"@FINAL", "extensibility='final'"},
    };
    const Replacements federation = {
        {"@MODULE", "FederationService"},
        {"@PREFIX", "ZUL_FEDERATION_SERVICE_COMMAND"},
        {"@TYPEDEF", ""},
        {"@NAME", "type='string' stringMaxLength='255'"},
        {"@TARGET", "target_service"},
        {"@MUTABLE", ""},
        {"@FINAL", "extensibility='appendable'"},
    };
    const DocumentPtr documents[] = {readText(administrationTypes(routing)),
                                     readText(administrationTypes(federation))};
    int compared = 0;
    const auto compare = [&](const DocumentPtr& document, const std::string& name, const DDS_TypeCode* own) {
        const DDS_TypeCode* read = ROUTERUtils_getTypeCodeFromXMLDom(document.get(), name.c_str());
        ASSERT_NE(read, nullptr) << name << ": " << document->error.line << " " << document->error.text;
        EXPECT_TRUE(DDS_TypeCode_equals(read, own)) << name;
        ++compared;
    };
#define COMPARE_ROUTING(Type) compare(documents[0], Type##_get_typecode()->name, Type##_get_typecode());
#define COMPARE_FEDERATION(Type) compare(documents[1], Type##_get_typecode()->name, Type##_get_typecode());
    ZUL_FOR_EACH_RECORD(COMPARE_ROUTING, ZUL_RoutingService_Administration_)
    ZUL_FOR_EACH_ENUMERATION(COMPARE_ROUTING, ZUL_RoutingService_Administration_)
    ZUL_FOR_EACH_RECORD(COMPARE_FEDERATION, ZUL_FederationService_Administration_)
    ZUL_FOR_EACH_ENUMERATION(COMPARE_FEDERATION, ZUL_FederationService_Administration_)
    EXPECT_EQ(compared, 18);
    EXPECT_FALSE(
        DDS_TypeCode_equals(ROUTERUtils_getTypeCodeFromXMLDom(
                                documents[0].get(), "::ZUL::RoutingService::Administration::Command"),
                            ZUL_FederationService_Administration_Command_get_typecode()));
}

// The code in one line: named types inside by their name only.
std::string describe(const DDS_TypeCode* code, bool isOuter = false) {
    static const char* const KINDS[] = {"null",      "short", "long",   "ushort",     "ulong",   "longlong",
                                        "ulonglong", "float", "double", "longdouble", "boolean", "char",
                                        "wchar",     "octet", "string", "wstring",    "seq",     "array",
                                        "alias",     "enum",  "struct", "union",      "value",   "sparse"};
    if (code == nullptr) {
        return "-";
    }
    if (!code->name.empty() && !isOuter) {
        return code->name;
    }
    std::string text = KINDS[code->kind];
    text += code->bound != 0 ? "(" + std::to_string(code->bound) + ")" : "";
    for (const std::uint32_t dimension : code->dimensions) {
        text += "[" + std::to_string(dimension) + "]";
    }
    text += code->content != nullptr ? "<" + describe(code->content) + ">" : "";
    if (code->name.empty()) {
        return text;
    }
    text += code->extensibility == DDS_FINAL_EXTENSIBILITY     ? " final"
            : code->extensibility == DDS_MUTABLE_EXTENSIBILITY ? " mutable"
                                                               : "";
    for (const DDS_TypeCodeMember& member : code->members) {
        text += " " + member.name + ":" + std::to_string(member.id);
        text += code->kind == DDS_TK_ENUM ? "=" + std::to_string(member.value) : ":" + describe(member.type);
        for (const std::int32_t label : member.labels) {
            text += "," + std::to_string(label);
        }
        text += std::string(member.isDefault ? ",default" : "") + (member.isKey ? "!" : "") +
                (member.isRequired ? "" : "?");
    }
    return text;
}

std::string member(const std::string& attributes) {
    return "<member name='m' " + attributes + "/>";
}
std::string structT(const std::string& members, const std::string& attributes = "") {
    return "<struct name='T' " + attributes + ">" + members + "</struct>";
}
std::string unionT(const std::string& discriminator, const std::string& labels) {
    std::string text = "<union name='T'><discriminator type='" + discriminator + "'/><case>";
    for (std::size_t start = 0, end; start < labels.size(); start = end + 1) {
        end = std::min(labels.find(' ', start), labels.size());
        text += "<caseDiscriminator value=\"" + labels.substr(start, end - start) + "\"/>";
    }
    return text + "<member name='m' type='byte'/></case></union>";
}

TEST(TypeCodes, EveryConstruct) {
    const std::string basics =
        "boolean byte int8 uint8 int16 uint16 int32 uint32 int64 uint64 float32 float64 "
        "float128 char8 char16 string wstring ";
    std::string all;
    for (std::size_t start = 0, end; start < basics.size(); start = end + 1) {
        end = basics.find(' ', start);
        const std::string word = basics.substr(start, end - start);
        all += "<member name='" + word + "' type='" + word + "'/>";
    }
    const std::string base = "<struct name='B'><member name='b' type='byte' id='6'/></struct>";
    const std::string limits =
        "<const name='N' type='int16' value='+3'/><const name='M' type='uint64' value='N'/>"
        "<const name='F' type='float64' value='1e3'/><const name='S' type='string' value=''/>";
    const std::string color =
        "<enum name='Color'><enumerator name='RED' value='-2'/><enumerator name='GREEN'/>"
        "<enumerator name='BLUE'/></enum>";
    const std::pair<std::string, const char*> rows[] = {
        {structT(all),
         "struct boolean:0:boolean byte:1:octet int8:2:octet uint8:3:octet int16:4:short uint16:5:ushort "
         "int32:6:long "
         "uint32:7:ulong int64:8:longlong uint64:9:ulonglong float32:10:float float64:11:double "
         "float128:12:longdouble char8:13:char char16:14:wchar string:15:string wstring:16:wstring"},
        {limits + structT(member(
                      "type='wstring' stringMaxLength='M' sequenceMaxLength='N' arrayDimensions='2, N,0x4'")),
         "struct m:0:array[2][3][4]<seq(3)<wstring(3)>>"},
        {structT(member("type='string' stringMaxLength='-1' sequenceMaxLength='-1'")),
         "struct m:0:seq<string>"},
        {base + structT(member("type='byte' key='true'") +
                            "<member name='o' type='byte' optional='true' id='70'/>" +
                            "<member name='p' type='byte'/>",
                        "baseType='B' extensibility='mutable' nested='true'"),
         "struct<B> mutable m:7:octet! o:70:octet? p:71:octet"},
        {base + structT("", "baseType='B' extensibility='final'"), "struct<B> final"},
        {"<valuetype name='V' modifier='abstract'/><typedef name='W' type='nonBasic' nonBasicTypeName='V'/>"
         "<valuetype name='T' baseType='W'>" +
             member("type='byte' visibility='private'") + "</valuetype>",
         "value<V> m:0:octet"},
        {"<sparse_valuetype name='T'>" + member("type='byte'") + "<member name='k' type='byte' key='true'/>" +
             "</sparse_valuetype>",
         "sparse mutable m:0:octet? k:1:octet!"},
        {color +
             "<const name='C' type='nonBasic' nonBasicTypeName='Color' value='BLUE'/>"
             "<union name='T'><discriminator type='nonBasic' nonBasicTypeName='Color'/>"
             "<case><caseDiscriminator value='C'/><caseDiscriminator value='-2'/>" +
             member("type='byte'") +
             "</case><case><caseDiscriminator value='default'/>"
             "<caseDiscriminator value='GREEN'/><member name='n' type='byte'/></case></union>",
         "union<Color> m:0:octet,0,-2? n:1:octet,-1,default?"},
        {color + "<enum name='T' extensibility='final'><enumerator name='X' value='BLUE'/></enum>",
         "enum final X:0=0?"},
        {unionT("uint32", "0 4294967295"), "union<ulong> m:0:octet,0,-1?"},
        {unionT("int64", "-2147483648 2147483647"), "union<longlong> m:0:octet,-2147483648,2147483647?"},
        {unionT("boolean", "true false"), "union<boolean> m:0:octet,1,0?"},
        {unionT("int8", "-128 127"), "union<octet> m:0:octet,-128,127?"},
        {unionT("char8", "a 'b' \xC3\xBF ' 5"), "union<char> m:0:octet,97,98,255,39,53?"},
        {unionT("char16", "'\xE2\x82\xAC'"), "union<wchar> m:0:octet,8364?"},
        {"<forward_dcl name='T' kind='struct'/><forward_dcl name='T' kind='struct'/>"
         "<typedef name='L' type='nonBasic' nonBasicTypeName='T' sequenceMaxLength='2'/>" +
             structT(member("type='nonBasic' nonBasicTypeName='L'")),
         "struct m:0:L"},
        {"<module name='A'><struct name='X'>" + member("type='byte'") +
             "</struct><module name='B'><struct name='X'>" + member("type='byte'") +
             "</struct></module></module><module name='A'><typedef name='Y' type='nonBasic' "
             "nonBasicTypeName='B::X'/></module>" +
             structT(member("type='nonBasic' nonBasicTypeName='A::Y'") +
                     "<member name='n' type='nonBasic' nonBasicTypeName='::A::X'/>"),
         "struct m:0:A::Y n:1:A::X"},
    };
    for (const auto& [definitions, expected] : rows) {
        const DocumentPtr document = readText(typesDocument(definitions));
        const DDS_TypeCode* code = ROUTERUtils_getTypeCodeFromXML(document.get(), "T", 0);
        ASSERT_NE(code, nullptr) << definitions << "\n" << document->error.text;
        EXPECT_EQ(describe(code, true), expected) << definitions;
    }
}

TEST(TypeCodes, RecursionEndsAndTheExampleDocumentReads) {
    const DocumentPtr document = readFile(ZUL_EXAMPLES "/federation_types.xml");
    const DDS_TypeCode* vessel = ROUTERUtils_getTypeCodeFromXMLDom(document.get(), "Traffic::Vessel");
    ASSERT_NE(vessel, nullptr) << document->error.text;
    EXPECT_EQ(vessel->members.back().type->content->content, vessel);
    const DocumentPtr again = readFile(ZUL_EXAMPLES "/federation_types.xml");
    EXPECT_TRUE(
        DDS_TypeCode_equals(vessel, ROUTERUtils_getTypeCodeFromXMLDom(again.get(), "Traffic::Vessel")));
}

} // namespace
