// Type codes from types sections: every construct against its code as text.
#include "tests/middleware/type_code_text.h"
#include "tests/utils/documents.h"
#include "utils/type_description.h"

#include <gtest/gtest.h>

namespace {

// clang-format off
TEST(TypeCodes, AConstructThatIsReadOtherwise) {
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
             structOf(member("type='wstring' stringMaxLength='M' sequenceMaxLength='N' arrayDimensions='2, N,0x1F'")),
         "struct m:0:array[2][3][31]<seq(3)<wstring(3)>>"},
        {structOf(member("type='string' stringMaxLength='-1' sequenceMaxLength='-1'")), "struct m:0:seq<string>"},
        {structOf(member("type='string' stringMaxLength='-1' sequenceMaxLength='9'")), "struct m:0:seq(9)<string>"},
        {base + structOf(member(BYTE + " key='true'") + member(BYTE + " optional='true' id='70'", "o") + member(BYTE, "p"),
                         "T", "baseType='B' extensibility='mutable' nested='true'"),
         "struct<B> mutable m:7:octet! o:70:octet? p:71:octet"},
        {base + structOf("", "T", "baseType='B' extensibility='final'"), "struct<B> final"},
        {"<valuetype name='V' modifier='abstract'/><typedef name='W' " + named("V") + "/>"
         "<valuetype name='T' baseType='W'>" + member(BYTE + " visibility='private'") + "</valuetype>",
         "value<V> m:0:octet"},
        {"<sparse_valuetype name='T'>" + member(BYTE) + member(BYTE + " key='true'", "k") + "</sparse_valuetype>",
         "sparse mutable m:0:octet? k:1:octet!"},
        {color + "<const name='C' value='BLUE' " + named("Color") + "/>" +
             unionOf(named("Color"), caseOf("C -2") + caseOf("default GREEN", member(BYTE, "n"))),
         "union<Color> m:0:octet,0,-2? n:1:octet,-1,default?"},
        {color + "<enum name='T' extensibility='final'><enumerator name='X' value='BLUE'/></enum>", "enum final X:0=0?"},
        {unionOf("type='uint32'", caseOf("0 4294967295")), "union<ulong> m:0:octet,0,-1?"},
        {unionOf("type='int64'", caseOf("-2147483648 2147483647")), "union<longlong> m:0:octet,-2147483648,2147483647?"},
        {unionOf("type='boolean'", caseOf("true false")), "union<boolean> m:0:octet,1,0?"},
        {unionOf("type='int8'", caseOf("-128 127")), "union<octet> m:0:octet,-128,127?"},
        {unionOf("type='int8'", caseOf("-128 126")), "union<octet> m:0:octet,-128,126?"},
        {unionOf("type='char8'", caseOf("a 'b' \xC3\xBF ' 5")), "union<char> m:0:octet,97,98,255,39,53?"},
        {unionOf("type='char16'", caseOf("'\xE2\x82\xAC'")), "union<wchar> m:0:octet,8364?"},
        {"<forward_dcl name='T' kind='struct'/><forward_dcl name='T' kind='struct'/>"
         "<typedef name='L' sequenceMaxLength='2' " + named("T") + "/>" + structOf(member(named("L"))),
         "struct m:0:L"},
        {"<typedef name='K' type='byte'/><module name='A'>" + structOf(member(BYTE), "X") +
             "<module name='B'>" + structOf(member(named("K")), "X") + "</module></module>"
             "<module name='A'><typedef name='Y' " + named("B::X") + "/></module>" +
             structOf(member(named("A::Y")) + member(named("::A::X"), "n")),
         "struct m:0:A::Y n:1:A::X"},
    };
    for (const auto& [definitions, expected] : rows) {
        const DocumentPtr document = readText(typesDocument(definitions));
        const DDS_TypeCode* code = ROUTERUtils_getTypeCodeFromXML(document.get(), "T", 0);
        ASSERT_NE(code, nullptr) << definitions << "\n" << document->error.text;
        EXPECT_EQ(describe(code, true), expected) << definitions;
        EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(document.get(), "::T"), code) << definitions;
    }
}
// clang-format on

} // namespace
