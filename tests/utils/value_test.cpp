// Names, strings, GUIDs and the thread-settings mask: what goes in and exactly what comes out.
#include "middleware/base/heap.h"
#include "tests/middleware/captured_log.h"
#include "utils/guid.h"
#include "utils/naming.h"
#include "utils/strings.h"
#include "utils/thread_settings.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

namespace {

std::string textOf(const char* text) {
    return text != nullptr ? text : "(none)";
}

TEST(Naming, AQualifiedNameThatIsCutElsewhere) {
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [qualified, expectedRoute, expectedSession] : {
             Row{"::svc::dr1::s1::route::", "::S::dr1", "::S::dr1::s1"},
             {"x:svc::dr1::s1", "::S::dr1", "(none)"}, // the first character is not looked at
             {"::svc::::", "::S::", "(none)"},
             {"::svc::dr1", "(none)", "(none)"},
             {"", "(none)", "(none)"},
         }) {
        const ZULStringPtr route(ROUTERUtils_makeDomainRouteName("S", qualified));
        const ZULStringPtr session(ROUTERUtils_makeSessionName("S", qualified));
        EXPECT_EQ(textOf(route.get()), expectedRoute) << qualified;
        EXPECT_EQ(textOf(session.get()), expectedSession) << qualified;
    }
    for (const auto& [name, expected] : {std::pair{"::::a", "::a"},
                                         {"a", "a"},
                                         {":a", ":a"},
                                         {static_cast<const char*>(nullptr), "(none)"}}) {
        EXPECT_EQ(textOf(ROUTERUtils_removeScopeChars(name)), expected);
    }
}

TEST(Strings, SequencesThatDifferAndCountAsEqual) {
    char a[] = "a", otherA[] = "a", b[] = "b";
    const auto areEqual = [](std::vector<char*> left, std::vector<char*> right) {
        DDS_StringSeq sequences[2]{};
        for (std::vector<char*>* texts : {&left, &right}) {
            const auto length = static_cast<DDS_Long>(texts->size());
            EXPECT_TRUE(ZULSequence::loan(&sequences[texts == &right], texts->data(), nullptr, length, length,
                                          "test"));
        }
        return ROUTERUtils_StringSeq_equals(&sequences[0], &sequences[1]);
    };
    EXPECT_TRUE(areEqual({}, {}) && areEqual({a, b, nullptr}, {otherA, b, nullptr}));
    EXPECT_FALSE(areEqual({a}, {b}) || areEqual({nullptr}, {a}) || areEqual({a}, {a, b}));
}

TEST(Strings, AReplacementThatIsLostOrNotReported) {
    CapturedLog log;
    char* text = nullptr;
    EXPECT_STREQ(ROUTERUtils_String_replace(&text, "first"), "first");
    char* const first = text;
    EXPECT_STREQ(ROUTERUtils_String_replace(&text, text + 3), "st");
    EXPECT_EQ(text, first);
    EXPECT_STREQ(ROUTERUtils_String_replace(&text, "longer text"), "longer text");
    EXPECT_EQ(log.take(), "");
    ZULHeap_failAfter(0);
    EXPECT_EQ(ROUTERUtils_String_replace(&text, "a text longer than that"), nullptr);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(log.take(),
              "ERROR [ROUTERUtils_String_assertLength] out of memory for a string of 23 characters\n"
              "ERROR [ROUTERUtils_String_replace] failure: reallocating string\n");
    text = DDS_String_dup("x");
    EXPECT_EQ(ROUTERUtils_String_replace(&text, nullptr), nullptr);
    EXPECT_EQ(text, nullptr);
}

TEST(Guid, AWordInAnotherByteOrder) {
    ROUTERUtilsGuid guid;
    ROUTERUtils_calculateGUID(&guid, 0x01020304, 0x05060708, 0x090A0B0C, 0x0D0E0F10);
    const unsigned char expected[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_EQ(std::memcmp(&guid, expected, sizeof(expected)), 0);
    ROUTERUtilsBuiltinTopicKey key;
    ROUTERUtils_guidToBuiltinTopicKey(&key, &guid);
    EXPECT_EQ(key.value[0], htonl(guid.host));
    EXPECT_EQ(key.value[3], htonl(guid.object));
}

TEST(ThreadSettings, AMaskThatIsReadOtherwise) {
    const std::string illegal = " line 7: illegal value\n";
    const std::string padded = "STDIO" + std::string(5000, ' ');
    const std::string tooLong(ROUTER_THREAD_SETTINGS_TEXT_MAX + 1, 'x');
    const std::tuple<const char*, std::uint32_t, std::string> rows[] = {
        {" \t\n", 0, ""},
        {"STDIO | FLOATING_POINT", 3, ""},
        {"dds_thread_settings_kind_mask_default|THREAD_SETTINGS_KIND_MASK_DEFAULT", 0, ""},
        {"DDS_THREAD_SETTINGS_REALTIME_PRIORITY|thread_settings_priority_enforce\n|stdio", 26, ""},
        {padded.c_str(), 2, ""},
        {"stdio|bogus", 0, illegal},
        {"DDS_THREAD_SETTINGS_MASK_DEFAULT", 0, illegal},
        {"THREAD_SETTINGS_KINK_MASK_DEFAULT", 0, illegal},
        {"STDIO|", 0, illegal},
        {"STDIO FLOATING_POINT", 0, illegal},
        {nullptr, 0, " reader failed: trim string\n"},
        {tooLong.c_str(), 0,
         " line 7: a thread-settings mask has at most 1023 characters; name each keyword once\n"},
    };
    for (const auto& [text, mask, logged] : rows) {
        CapturedLog log;
        bool error = logged.empty();
        EXPECT_EQ(ROUTERUtils_getThreadSettingsKindMaskElement(7, text, &error), mask) << textOf(text);
        EXPECT_EQ(error, !logged.empty()) << textOf(text);
        const std::string context = "ERROR [ROUTERUtils_getThreadSettingsKindMaskElement] XML";
        EXPECT_EQ(log.take(), logged.empty() ? "" : context + logged);
    }
}

} // namespace
