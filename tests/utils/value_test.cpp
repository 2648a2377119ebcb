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

TEST(Naming, ComponentsOfQualifiedNames) {
    const struct {
        const char* qualified;
        const char* route;
        const char* session;
    } rows[] = {
        {"::svc::dr1::s1::", "::S::dr1", "::S::dr1::s1"},
        {"::svc::dr1::s1::route::", "::S::dr1", "::S::dr1::s1"},
        {"x:svc::dr1::", "::S::dr1", "(none)"}, // the first character is not looked at
        {"::svc::dr1::s1", "::S::dr1", "(none)"},
        {"::svc::::", "::S::", "(none)"},
        {"::svc::dr1", "(none)", "(none)"},
        {"", "(none)", "(none)"},
    };
    for (const auto& row : rows) {
        const ZULStringPtr route(ROUTERUtils_makeDomainRouteName("S", row.qualified));
        const ZULStringPtr session(ROUTERUtils_makeSessionName("S", row.qualified));
        EXPECT_EQ(textOf(route.get()), row.route) << row.qualified;
        EXPECT_EQ(textOf(session.get()), row.session) << row.qualified;
    }
    const std::pair<const char*, const char*> scoped[] = {{"::a", "a"},     {"a", "a"}, {":a", ":a"},
                                                          {"::::a", "::a"}, {"", ""},   {nullptr, "(none)"}};
    for (const auto& [name, expected] : scoped) {
        EXPECT_EQ(textOf(ROUTERUtils_removeScopeChars(name)), expected);
    }
}

TEST(Strings, SequencesAreEqualTextByText) {
    char a[] = "a", otherA[] = "a", b[] = "b";
    const struct {
        std::vector<char*> left, right;
        bool equal;
    } rows[] = {
        {{}, {}, true},    {{a, b}, {otherA, b}, true}, {{a, nullptr}, {a, nullptr}, true},
        {{a}, {b}, false}, {{nullptr}, {a}, false},     {{a}, {a, b}, false},
    };
    const auto loaned = [](const std::vector<char*>& texts) {
        DDS_StringSeq sequence{};
        const auto length = static_cast<DDS_Long>(texts.size());
        EXPECT_TRUE(ZULSequence::loan_contiguous(&sequence, const_cast<char**>(texts.data()), length, length,
                                                 "test"));
        return sequence;
    };
    for (const auto& row : rows) {
        const DDS_StringSeq left = loaned(row.left), right = loaned(row.right);
        EXPECT_EQ(ROUTERUtils_StringSeq_equals(&left, &right), row.equal) << "row " << &row - rows;
    }
}

TEST(Strings, ReplaceKeepsGrowsAndReportsExhaustion) {
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

TEST(Guid, WordsAreInNetworkOrderAndTurnedOnceMoreInTheKey) {
    ROUTERUtilsGuid guid;
    ROUTERUtils_calculateGUID(&guid, 0x01020304, 0x05060708, 0x090A0B0C, 0x0D0E0F10);
    const unsigned char expected[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    EXPECT_EQ(std::memcmp(&guid, expected, sizeof(expected)), 0);
    ROUTERUtilsBuiltinTopicKey key;
    ROUTERUtils_guidToBuiltinTopicKey(&key, &guid);
    EXPECT_EQ(key.value[0], htonl(guid.host));
    EXPECT_EQ(key.value[3], htonl(guid.object));
}

TEST(ThreadSettings, MasksAndTheirErrors) {
    const std::string context = "ERROR [ROUTERUtils_getThreadSettingsKindMaskElement] XML";
    const std::string illegal = context + " line 7: illegal value\n";
    const std::string tooLong(ROUTER_THREAD_SETTINGS_TEXT_MAX + 1, 'x');
    const std::string longest = "STDIO" + std::string(5000, ' ');
    const struct {
        const char* text;
        std::uint32_t mask;
        std::string logged;
    } rows[] = {
        {" \t\n", 0, ""},
        {"STDIO | FLOATING_POINT", 3, ""},
        {"dds_thread_settings_kind_mask_default|THREAD_SETTINGS_KIND_MASK_DEFAULT", 0, ""},
        {"DDS_THREAD_SETTINGS_REALTIME_PRIORITY|thread_settings_priority_enforce\n|stdio", 26, ""},
        {longest.c_str(), 2, ""},
        {"stdio|bogus", 0, illegal},
        {"DDS_THREAD_SETTINGS_MASK_DEFAULT", 0, illegal},
        {"THREAD_SETTINGS_KINK_MASK_DEFAULT", 0, illegal},
        {"STDIO|", 0, illegal},
        {"STDIO FLOATING_POINT", 0, illegal},
        {nullptr, 0, context + " reader failed: trim string\n"},
        {tooLong.c_str(), 0,
         context + " line 7: a thread-settings mask has at most 1023 characters; name each keyword once\n"},
    };
    for (const auto& row : rows) {
        CapturedLog log;
        bool error = row.logged.empty();
        EXPECT_EQ(ROUTERUtils_getThreadSettingsKindMaskElement(7, row.text, &error), row.mask)
            << textOf(row.text);
        EXPECT_EQ(error, !row.logged.empty()) << textOf(row.text);
        EXPECT_EQ(log.take(), row.logged);
    }
}

} // namespace
