// Type codes from types sections: the administration types written in XML against their own codes, and every
// construct against a written form of its code.
#include "admin_types/data_types.h"
#include "tests/middleware/captured_log.h"
#include "tests/utils/documents.h"
#include "utils/type_description.h"

#include <gtest/gtest.h>

namespace {

// Names and labels in every form, over two openings of the module.
DocumentPtr readAdministrationTypes(bool isFederation) {
    const std::string service = isFederation ? "FederationService" : "RoutingService";
    const std::string prefix =
        isFederation ? "ZUL_FEDERATION_SERVICE_COMMAND_" : "ZUL_ROUTING_SERVICE_COMMAND_";
    const std::string scope = "ZUL::" + service + "::Administration::";
    const std::string open =
        "<module name='ZUL'><module name='" + service + "'><module name='Administration'>";
    const std::string close = "</module></module></module>";
    const std::string isMutable = isFederation ? "" : "extensibility='mutable'";
    const std::string alias =
        isFederation ? "" : "<typedef name='EntityName' type='string' stringMaxLength='NAME_BOUND'/>";
    const std::string name = isFederation ? "type='string' stringMaxLength='255'" : named("EntityName");
    const std::string text = "type='string' stringMaxLength='4096'", boolean = "type='boolean'";
    const auto enumOf = [&prefix](const std::string& typeName, const std::string& first,
                                  const std::string& words) {
        std::string list = forEach(words, "<enumerator name='" + prefix + "*'/>");
        list.insert(list.find('/'), " value='" + first + "'"); // the others follow it
        return "<enum name='" + typeName + "'>" + list + "</enum>";
    };
    return readText(typesDocument(
        open + "<const name='NAME_BOUND' type='uint32' value='0xFF'/>" + alias +
        structOf(member(boolean, "is_final") + member(text, "content"), "XmlUrl") +
        structOf(member(name, "name") + member(named("XmlUrl"), "xml_url"), "EntityDescription") +
        structOf(member(name, "domain_route_name") + member(boolean, "is_first_participant") +
                     member("type='string' stringMaxLength='NAME_BOUND' sequenceMaxLength='16'", "peer_list"),
                 "PeerUpdateDescription") +
        enumOf("CommandKind", "1",
               "LOAD UNLOAD INSERT UPDATE PAUSE RESUME ENABLE DISABLE ANNOUNCE CREATE "
               "DELETE SAVE GET ADD_PEER") +
        enumOf("CommandResponseKind", "0",
               "RESPONSE_OK RESPONSE_ANNOUNCEMENT RESPONSE_ERROR RESPONSE_ENTITY_NOT_FOUND") +
        unionOf(named("CommandKind"),
                caseOf(prefix + "LOAD 3 " + scope + prefix + "UPDATE 10",
                       member(named("EntityDescription") + " id='1'", "entity_desc")) +
                    caseOf(prefix + "ANNOUNCE " + prefix + "UNLOAD 12 13", member("type='int32'", "dummy")) +
                    caseOf("5 6 7 8 11", member(name, "entity_name")) +
                    caseOf("14", member(named("::" + scope + "PeerUpdateDescription"), "peer_desc")),
                "name='Command' " + isMutable) +
        close + open +
        structOf(forEach("host app invocation", "<member name='*' type='int32'/>"), "CommandId",
                 isFederation ? "extensibility='appendable'" : "extensibility='final'") +
        structOf(member(named("CommandId"), "id") +
                     member(name, isFederation ? "target_service" : "target_router") +
                     member(named("Administration::Command"), "command"),
                 "CommandRequest", isMutable) +
        structOf(member(named("CommandId"), "id") + member(named("CommandResponseKind"), "kind") +
                     member(text, "message") + member(boolean, "is_final"),
                 "CommandResponse") +
        close));
}

TEST(TypeCodes, AdministrationTypesFromXmlAreTheirOwn) {
    DocumentPtr document = readAdministrationTypes(false);
    int compared = 0;
    const auto compare = [&](const DDS_TypeCode* own) {
        const DDS_TypeCode* read = ROUTERUtils_getTypeCodeFromXMLDom(document.get(), own->name.c_str());
        ASSERT_NE(read, nullptr) << own->name << ": " << document->error.line << " " << document->error.text;
        EXPECT_TRUE(DDS_TypeCode_equals(read, own)) << own->name;
        ++compared;
    };
#define ZUL_TEMPLATE "tests/utils/compare_type_code.inc"
#include "admin_types/family/routing_types.inc"
    EXPECT_FALSE(DDS_TypeCode_equals(
        ROUTERUtils_getTypeCodeFromXMLDom(document.get(), "::ZUL::RoutingService::Administration::Command"),
        ZUL_FederationService_Administration_Command_get_typecode()));
    document = readAdministrationTypes(true);
#include "admin_types/family/federation_types.inc"
#undef ZUL_TEMPLATE
    EXPECT_EQ(compared, 18);
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

TEST(TypeCodes, EveryConstruct) {
    const std::string basics = "boolean byte int8 uint8 int16 uint16 int32 uint32 int64 uint64 float32 "
                               "float64 float128 char8 char16 string wstring";
    const std::string base = structOf("<member name='b' type='byte' id='6'/>", "B");
    const std::string color =
        "<enum name='Color'><enumerator name='RED' value='-2'/><enumerator name='GREEN'/>"
        "<enumerator name='BLUE'/></enum>";
    const std::pair<std::string, const char*> rows[] = {
        {structOf(forEach(basics, "<member name='*' type='*'/>")),
         "struct boolean:0:boolean byte:1:octet int8:2:octet uint8:3:octet int16:4:short uint16:5:ushort "
         "int32:6:long uint32:7:ulong int64:8:longlong uint64:9:ulonglong float32:10:float float64:11:double "
         "float128:12:longdouble char8:13:char char16:14:wchar string:15:string wstring:16:wstring"},
        {"<const name='N' type='int16' value='+3'/><const name='M' type='uint64' value='N'/>"
         "<const name='F' type='float64' value='1e3'/><const name='S' type='string' value=''/>" +
             structOf(member(
                 "type='wstring' stringMaxLength='M' sequenceMaxLength='N' arrayDimensions='2, N,0x4'")),
         "struct m:0:array[2][3][4]<seq(3)<wstring(3)>>"},
        {structOf(member("type='string' stringMaxLength='-1' sequenceMaxLength='-1'")),
         "struct m:0:seq<string>"},
        {base + structOf(member(BYTE + " key='true'") + member(BYTE + " optional='true' id='70'", "o") +
                             member(BYTE, "p"),
                         "T", "baseType='B' extensibility='mutable' nested='true'"),
         "struct<B> mutable m:7:octet! o:70:octet? p:71:octet"},
        {base + structOf("", "T", "baseType='B' extensibility='final'"), "struct<B> final"},
        {"<valuetype name='V' modifier='abstract'/><typedef name='W' " + named("V") +
             "/><valuetype name='T' baseType='W'>" + member(BYTE + " visibility='private'") + "</valuetype>",
         "value<V> m:0:octet"},
        {"<sparse_valuetype name='T'>" + member(BYTE) + member(BYTE + " key='true'", "k") +
             "</sparse_valuetype>",
         "sparse mutable m:0:octet? k:1:octet!"},
        {color + "<const name='C' value='BLUE' " + named("Color") + "/>" +
             unionOf(named("Color"), caseOf("C -2") + caseOf("default GREEN", member(BYTE, "n"))),
         "union<Color> m:0:octet,0,-2? n:1:octet,-1,default?"},
        {color + "<enum name='T' extensibility='final'><enumerator name='X' value='BLUE'/></enum>",
         "enum final X:0=0?"},
        {unionOf("type='uint32'", caseOf("0 4294967295")), "union<ulong> m:0:octet,0,-1?"},
        {unionOf("type='int64'", caseOf("-2147483648 2147483647")),
         "union<longlong> m:0:octet,-2147483648,2147483647?"},
        {unionOf("type='boolean'", caseOf("true false")), "union<boolean> m:0:octet,1,0?"},
        {unionOf("type='int8'", caseOf("-128 127")), "union<octet> m:0:octet,-128,127?"},
        {unionOf("type='char8'", caseOf("a 'b' \xC3\xBF ' 5")), "union<char> m:0:octet,97,98,255,39,53?"},
        {unionOf("type='char16'", caseOf("'\xE2\x82\xAC'")), "union<wchar> m:0:octet,8364?"},
        {"<forward_dcl name='T' kind='struct'/><forward_dcl name='T' kind='struct'/>"
         "<typedef name='L' sequenceMaxLength='2' " +
             named("T") + "/>" + structOf(member(named("L"))),
         "struct m:0:L"},
        {"<module name='A'>" + structOf(member(BYTE), "X") + "<module name='B'>" +
             structOf(member(BYTE), "X") + "</module></module><module name='A'><typedef name='Y' " +
             named("B::X") + "/></module>" + structOf(member(named("A::Y")) + member(named("::A::X"), "n")),
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
