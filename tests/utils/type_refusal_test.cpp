// Types sections that are wrong: each is refused, with its line and what to do.
#include "middleware/xml/type_reader.h"
#include "tests/middleware/captured_log.h"
#include "tests/utils/documents.h"
#include "utils/type_description.h"

#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

const std::string BYTE = "type='byte'/>";

std::string chain(int length, const char* sequence) {
    std::string text = "<struct name='S0'><member name='m' " + BYTE + "</struct>";
    for (int i = 1; i <= length; ++i) {
        text += "<struct name='S" + std::to_string(i) +
                "'><member name='m' type='nonBasic' nonBasicTypeName='S" + std::to_string(i - 1) + "'" +
                sequence + "/></struct>";
    }
    return text;
}
std::string unionOf(const std::string& cases, const std::string& discriminator = "type='int16'") {
    return "<union name='U'><discriminator " + discriminator + "/>" + cases + "</union>";
}
std::string caseOf(const std::string& label, const std::string& name) {
    return "\n<case><caseDiscriminator value='" + label + "'/><member name='" + name + "' " + BYTE +
           "</case>";
}

TEST(TypeRefusals, EachNamesItsLineAndReason) {
    const std::string color = "<enum name='Color'><enumerator name='RED'/></enum>";
    const std::string self = "<member name='m' type='nonBasic' nonBasicTypeName='B'/>";
    const struct {
        std::string definitions; // the first line is 2
        int line;
        const char* text;
    } rows[] = {
        {"\n<struct name='A'>\n<member name='m' type='nonBasic' nonBasicTypeName='X'/></struct>", 4,
         "unknown type 'X'"},
        {"<struct name='A'><member name='m' type='long'/></struct>", 2, "unknown type word 'long'"},
        {color + "\n" + color, 3, "'Color' is already defined in line 2"},
        {color + "\n<module name='Color'/>", 3, "already defined"},
        {color + "\n<const name='RED' type='byte' value='1'/>", 3, "'RED' is already defined"},
        {"<forward_dcl name='A' kind='union'/>\n<struct name='A'><member name='m' " + BYTE + "</struct>", 3,
         "already"},
        {"\n<forward_dcl name='A' kind='struct'/>", 3, "announced but never defined"},
        {"<forward_dcl name='B' kind='struct'/>\n<struct name='A'>" + self +
             "</struct>\n<struct name='B'>"
             "<member name='a' type='nonBasic' nonBasicTypeName='A' arrayDimensions='2'/></struct>",
         3, "'A' contains itself"},
        {"\n<struct name='B'>" + self + "</struct>", 3, "'B' contains itself"},
        {"<forward_dcl name='B' kind='struct'/><struct name='A' baseType='B'/>", 2, "must be defined before"},
        {"<struct name='A' baseType='A'/>", 2, "must be defined before"},
        {color + "<struct name='A' baseType='Color'/>", 2, "must be one itself"},
        {"<struct name='A'/>", 2, "needs a member"},
        {"<valuetype name='A' modifier='abstract'><member name='m' " + BYTE + "</valuetype>", 2,
         "no members"},
        {"<struct name='A'>\n<member name='m' " + BYTE + "\n<member name='m' " + BYTE + "</struct>", 4,
         "used twice"},
        {"<struct name='A'><member name='m' id='1' " + BYTE +
             "</struct><struct name='B' baseType='A'>\n"
             "<member name='n' id='1' " +
             BYTE + "</struct>",
         3, "used twice"},
        {"<struct name='A'><member name='m' id='268435456' " + BYTE + "</struct>", 2, "0 to 268435455"},
        {"<struct name='A'><member name='m' key='true' optional='true' " + BYTE + "</struct>", 2,
         "cannot be optional"},
        {"<struct name='A'><member name='m' optinal='true' " + BYTE + "</struct>", 2,
         "no attribute 'optinal'"},
        {"<struct name='A'><member name='m' key='yes' " + BYTE + "</struct>", 2, "one of: true false"},
        {"<struct name='A'><member name='2' " + BYTE + "</struct>", 2, "is no name"},
        {"<struct name='A'><member name='m'/></struct>", 2, "needs the attribute 'type'"},
        {"<struct name='A'>text<member name='m' " + BYTE + "</struct>", 2, "must not hold text"},
        {"<struct name='A'>\n<case/></struct>", 3, "<case> cannot stand in <struct>"},
        {"<typedef name='A' type='string' stringMaxLength='0'/>", 2, "must be a number from 1"},
        {"<typedef name='A' type='string' stringMaxLength='2147483648'/>", 2, "must be a number from 1"},
        {"<typedef name='A' type='byte' stringMaxLength='3'/>", 2, "string or wstring only"},
        {"<typedef name='A' type='byte' nonBasicTypeName='A'/>", 2, "only with it"},
        {"<typedef name='A' type='byte' sequenceMaxLength='LATER'/>", 2, "defined before it"},
        {"<typedef name='A' type='byte' arrayDimensions='3,'/>", 2, "must be a number"},
        {"<typedef name='A' type='byte' arrayDimensions='65536,65536'/>", 2, "more than 2147483647 elements"},
        {"<const name='A' type='uint8' value='256'/>", 2, "no value of the type"},
        {"<const name='A' type='float32' value='1.5x'/>", 2, "no value of the type"},
        {"<enum name='A'><enumerator name='x' value='2147483647'/>\n<enumerator name='y'/></enum>", 3,
         "32-bit"},
        {"<enum name='A'><enumerator name='x' value='1'/><enumerator name='y' value='1'/></enum>", 2,
         "used once"},
        {"<enum name='A'/>", 2, "needs an enumerator"},
        {unionOf(""), 2, "followed by at least one case"},
        {unionOf(caseOf("1", "a") + caseOf("0x1", "b")), 4, "'0x1' selects two cases"},
        {unionOf(caseOf("default", "a") + caseOf("default", "b")), 4, "one default"},
        {unionOf(caseOf("40000", "a")), 3, "no value of the discriminator"},
        {unionOf(caseOf("1", "a"), "type='float32'"), 2, "a discriminator is"},
        {unionOf("\n<case><member name='a' " + BYTE + "</case>"), 3, "followed by one member"},
        {color + unionOf(caseOf("4294967296", "a"), "type='nonBasic' nonBasicTypeName='Color'"), 3,
         "no value"},
        {unionOf(caseOf("2147483648", "a"), "type='int64'"), 3, "fits in 32 bits"},
        {chain(300, ""), 2, "levels inside each other"},
        {chain(300, " sequenceMaxLength='1'"), 2, "levels inside each other"},
        {"\n<include file='other.xml'/>", 3, "read from a file"},
    };
    for (const auto& row : rows) {
        const std::string text = typesDocument(row.definitions);
        ZULXMLError error;
        EXPECT_EQ(ZULXMLTypeReader_check(text.data(), text.size(), &error), ZUL_XML_TYPES_BAD_DEFINITION)
            << row.definitions;
        EXPECT_EQ(error.line, row.line) << row.definitions << "\n" << error.text;
        EXPECT_NE(error.text.find(row.text), std::string::npos) << row.definitions << "\n" << error.text;
    }
}

TEST(TypeRefusals, ReportsOfTheService) {
    CapturedLog log;
    const std::string context = "ERROR [ROUTERUtils_getTypeCodeFromXML] XML line ";
    const DocumentPtr document =
        readText(typesDocument("<struct name='A'><member name='m' " + BYTE + "</struct>\n<typedef name='T' " +
                               BYTE + "\n<struct name='B' baseType='X'/>"));
    for (const auto& [name, line] : {std::pair{"T", "3"}, {"Missing", "1"}, {"A::B", "1"}}) {
        EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(document.get(), name), nullptr);
        EXPECT_EQ(log.take(), context + line + ": This is not a type definition\n");
    }
    EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(document.get(), "A"), nullptr);
    EXPECT_EQ(log.take(),
              "ERROR [ZULXMLDocument_getTypeCode] XML line 4: unknown type 'X'; define it, or announce it "
              "with forward_dcl, before it is used\n" +
                  context + "4: Bad type definition\n");
    const DocumentPtr broken = readText("<dds>\n</types>");
    log.take();
    EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(broken.get(), "A"), nullptr);
    EXPECT_EQ(log.take(), context + "2: Error getting DOM\n");
}

// Files that include each other, one of them in a module, and one with a fault.
TEST(TypeRefusals, IncludedFiles) {
    CapturedLog log;
    const std::string folder = testing::TempDir() + "zul_include_" + std::to_string(::getpid());
    const auto path = [&folder](const char* name) {
        return folder + name;
    };
    const std::string other = folder.substr(folder.rfind('/') + 1);
    std::ofstream(path("_a.xml")) << typesDocument(
        "<module name='M'><include file='" + other +
        "_b.xml'/></module><typedef name='L' type='nonBasic' "
        "nonBasicTypeName='M::B'/><struct name='A'><member name='m' "
        "type='nonBasic' nonBasicTypeName='L'/></struct>");
    std::ofstream(path("_b.xml")) << typesDocument("<include file='" + other +
                                                   "_a.xml'/><struct name='B'>"
                                                   "<member name='m' " +
                                                   BYTE + "</struct>");
    std::ofstream(path("_c.xml")) << typesDocument("\n<include file='" + other + "_d.xml'/><enum name='E'/>");
    std::ofstream(path("_d.xml")) << "<dds>\n\n<types><bad/></types></dds>";
    const DocumentPtr good = readFile(path("_a.xml"));
    const DDS_TypeCode* code = ROUTERUtils_getTypeCodeFromXMLDom(good.get(), "A");
    ASSERT_NE(code, nullptr) << good->error.text;
    EXPECT_EQ(code->members[0].type->content->name, "M::B");
    const DocumentPtr bad = readFile(path("_c.xml"));
    EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(bad.get(), "E"), nullptr);
    EXPECT_EQ(bad->error.line, 3);
    EXPECT_EQ(bad->error.text, "in '" + other + "_d.xml', line 3: <bad> cannot stand in <types>");
    for (const char* name : {"_a.xml", "_b.xml", "_c.xml", "_d.xml"}) {
        EXPECT_EQ(::unlink(path(name).c_str()), 0);
    }
}

} // namespace
