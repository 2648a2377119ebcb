// Types sections that are wrong: each is refused, with its line and what to do.
#include "middleware/xml/type_reader.h"
#include "tests/middleware/captured_log.h"
#include "tests/utils/documents.h"
#include "utils/type_description.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

std::string typedefOf(const std::string& attributes) {
    return "<typedef name='A' " + attributes + "/>";
}

// clang-format off
TEST(TypeRefusals, AFaultThatPassesOrIsToldOfAnotherLine) {
    const std::string color = "<enum name='Color'><enumerator name='RED'/></enum>";
    const std::string byteMember = member(BYTE), announceB = "<forward_dcl name='B' kind='struct'/>";
    const std::tuple<std::string, int, const char*> rows[] = { // the first line of the definitions is 2
        {structOf(member("type='long'")), 2, "unknown type word 'long'"},
        {color + "\n" + color, 3, "'Color' is already defined in line 2"},
        {color + "\n<module name='Color'/>", 3, "already defined"},
        {color + "\n<const name='RED' value='1' type='byte'/>", 3, "'RED' is already defined"},
        {"<forward_dcl name='T' kind='union'/>\n" + structOf(byteMember), 3, "already"},
        {announceB + "\n" + structOf(member(named("B"))) + "\n" + structOf(member(named("T") + " arrayDimensions='2'"), "B"),
         4, "'B' contains itself"},
        {structOf("", "T", "baseType='T'"), 2, "must be defined before"},
        {color + structOf("", "T", "baseType='Color'"), 2, "must be one itself"},
        {structOf(""), 2, "needs a member"},
        {"<valuetype name='A' modifier='abstract'>" + byteMember + "</valuetype>", 2, "no members"},
        {structOf(byteMember + "\n" + byteMember), 3, "used twice"},
        {structOf(member(BYTE + " id='1'"), "B") + structOf("\n" + member(BYTE + " id='1'", "n"), "T", "baseType='B'"),
         3, "used twice"},
        {structOf(member(BYTE + " id='268435456'")), 2, "0 to 268435455"},
        {structOf(member(BYTE + " key='true' optional='true'")), 2, "cannot be optional"},
        {structOf(member(BYTE + " optinal='true'")), 2, "no attribute 'optinal'"},
        {structOf(member(BYTE + " key='yes'")), 2, "one of: true false"},
        {structOf(member(BYTE, "2")), 2, "is no name"},
        {structOf(member("")), 2, "needs the attribute 'type'"},
        {structOf("text" + byteMember), 2, "must not hold text"},
        {structOf("\n<case/>"), 3, "<case> cannot stand in <struct>"},
        {typedefOf("type='string' stringMaxLength='0'"), 2, "must be a number from 1"},
        {typedefOf("type='string' stringMaxLength='2147483648'"), 2, "must be a number from 1"},
        {typedefOf("type='byte' stringMaxLength='3'"), 2, "string or wstring only"},
        {typedefOf("type='byte' arrayDimensions='3,'"), 2, "must be a number"},
        {typedefOf("type='byte' arrayDimensions='65536,65536'"), 2, "more than 2147483647 elements"},
        {typedefOf("type='byte' arrayDimensions='" + forEach(std::string(64, ' '), "1,") + "1'"), 2, "more than 64 dimensions"},
        {"<const name='A' type='float32' value='1.5x'/>", 2, "no value of the type"},
        {"<enum name='A'><enumerator name='x' value='2147483647'/>\n<enumerator name='y'/></enum>", 3, "32-bit"},
        {"<enum name='A'/>", 2, "needs an enumerator"},
        {unionOf("type='int16'", ""), 2, "followed by at least one case"},
        {unionOf("type='int16'", caseOf("1") + caseOf("0x1", member(BYTE, "b"))), 4, "'0x1' selects two cases"},
        {unionOf("type='int16'", caseOf("default") + caseOf("default", member(BYTE, "b"))), 4, "one default"},
        {unionOf("type='int16'", caseOf("40000")), 3, "no value of the discriminator"},
        {unionOf("type='float32'", caseOf("1")), 2, "a discriminator is"},
        {unionOf("type='int16'", caseOf("")), 3, "followed by one member"},
        {unionOf("type='int64'", caseOf("2147483648")), 3, "fits in 32 bits"},
        {"\n<include file='other.xml'/>", 3, "read from a file"},
    };
    for (const auto& [definitions, line, text] : rows) {
        const DocumentPtr document = readText(typesDocument(definitions));
        ZULXMLTypeSet types;
        ZULXMLError error;
        EXPECT_FALSE(zul::xml::TypeReader(types, error).read(*document)) << definitions;
        EXPECT_EQ(error.line, line) << definitions << "\n" << error.text;
        EXPECT_NE(error.text.find(text), std::string::npos) << definitions << "\n" << error.text;
    }
}
// clang-format on

// One line a failure; what is wrong with one type leaves the others alone, but for those that are made of it.
TEST(TypeRefusals, AFaultThatBlocksOtherTypesOrIsToldTwice) {
    CapturedLog log;
    const std::string context = "ERROR [ROUTERUtils_getTypeCodeFromXML] XML line ";
    const std::string isNoType = ": This is not a type definition\n", isBad = ": Bad type definition\n";
    std::string chain = structOf(member(BYTE), "S0"); // each but the first has a member of the one before it
    for (int i = 1; i <= 300; ++i) {
        chain += structOf(member(named("S" + std::to_string(i - 1))), "S" + std::to_string(i));
    }
    const DocumentPtr document = readText(typesDocument(
        structOf(member(BYTE)) + "<bad/>\n" + typedefOf(BYTE) + "\n" + structOf("", "B", "baseType='X'") +
        "\n" + structOf(member(named("B") + " sequenceMaxLength='2'"), "C") +
        "\n<forward_dcl name='D' kind='struct'/>\n" + structOf(member(named("D")), "E") +
        "\n<forward_dcl name='F' kind='struct'/>\n" +
        structOf(member(named("F") + " sequenceMaxLength='2'"), "G") + "\n" + structOf("", "F") +
        "\n<module name='T'/>\n" + structOf(member(named("T")), "H") + chain));
    for (const auto& [name, logged] : {std::pair{"A", context + "3" + isNoType},
                                       {"Missing", context + "1" + isNoType},
                                       {"T::B", context + "1" + isNoType},
                                       {"D", context + "6" + isNoType},
                                       {"B", context + "4" + isBad},
                                       {"C", context + "5" + isBad},
                                       {"E", context + "7" + isBad},
                                       {"G", context + "9" + isBad},
                                       {"F", context + "10" + isBad},
                                       {"S255", context + "12" + isBad},
                                       {"S254", std::string()},
                                       {"T", std::string()},
                                       {"H", std::string()}}) {
        EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(document.get(), name) == nullptr, !logged.empty())
            << name;
        EXPECT_EQ(log.take(), logged) << name;
    }
    const DocumentPtr broken = readText("<dds>\n</types>");
    log.take();
    EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(broken.get(), "A"), nullptr);
    EXPECT_EQ(log.take(), context + "2: Error getting DOM\n");
}

// Files that include each other, one of them in a module, with faults, and one that is not there.
TEST(TypeRefusals, AnIncludedFileThatIsReadTwiceOrToldOfWrongly) {
    CapturedLog log;
    const std::filesystem::path path = testing::TempDir() + "zul_include_" + std::to_string(::getpid());
    std::filesystem::create_directory(path);
    const char* const include = "<include file='*'/>";
    std::ofstream(path / "a.xml") << typesDocument("<module name='M'>" + forEach("b.xml", include) +
                                                   "</module>\n" + structOf(member(named("M::B")), "A") +
                                                   forEach("c.xml", include));
    std::ofstream(path / "b.xml") << typesDocument(forEach("a.xml", include) + structOf(member(BYTE), "B"));
    std::ofstream(path / "c.xml") << typesDocument("\n" + forEach("d.xml http://host/e.xml", include));
    std::ofstream(path / "d.xml") << typesDocument("<enum name='E'/>" + structOf(member(named("E")), "D"));
    std::string modules, ends, structs; // an included file multiplies the names of the modules around it
    for (int i = 0; i < 60; ++i) {
        modules += "<module name='" + std::string(255, 'm') + "'>";
        ends += "</module>";
    }
    for (int i = 0; i < 1200; ++i) {
        structs += structOf(member(BYTE), "S" + std::to_string(i));
    }
    std::ofstream(path / "s.xml") << typesDocument(structs);
    std::ofstream(path / "m.xml") << typesDocument(modules + forEach("s.xml", include) + ends);
    const DocumentPtr longNames = readFile(path / "m.xml");
    EXPECT_EQ(ROUTERUtils_getTypeCodeFromXMLDom(longNames.get(), "S0"), nullptr);
    EXPECT_TRUE(
        longNames->error.text.starts_with("in 's.xml', line 2: the names of the types are too long in all"));
    const DocumentPtr document = readFile(path / "a.xml");
    for (const auto& [name, line, wrong] :
         {std::tuple{"M::B", 0, ""},
          {"A", 0, ""},
          {"E", 3, "in 'c.xml', line 3: in 'd.xml', line 2: an enum needs an enumerator"},
          {"D", 3, "in 'c.xml', line 3: in 'd.xml', line 2: the type 'E' is wrong itself"},
          {"Missing", 3,
           "in 'c.xml', line 3: cannot include 'http://host/e.xml': No such file or directory"}}) {
        const DDS_TypeCode* code = ROUTERUtils_getTypeCodeFromXMLDom(document.get(), name);
        EXPECT_EQ(code == nullptr ? "" : code->name, line == 0 ? name : "");
        EXPECT_EQ(document->error.line, line);
        EXPECT_EQ(document->error.text, wrong);
    }
    std::filesystem::remove_all(path);
}

} // namespace
