// Semaphores, strings, the log, text on a terminal, the property policy, the version text.
#include "middleware/base/semaphore.h"
#include "middleware/base/strings.h"
#include "middleware/base/terminal_text.h"
#include "middleware/base/version.h"
#include "middleware/dds/qos.h"
#include "tests/middleware/captured_log.h"
#include "tests/support/failing_heap.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <sys/time.h>
#include <thread>

namespace {

using std::chrono::steady_clock;
const itimerval NEVER{};

struct Semaphore : testing::Test {
    ~Semaphore() override { ZULSemaphore_delete(semaphore); }
    ZULSemaphoreStatus take(const ZULTime& span) {
        return ZULSemaphore_take(semaphore, ZULDeadline_after(span));
    }
    ZULSemaphore* semaphore = ZULSemaphore_new({.initialCount = 1});
};

TEST_F(Semaphore, AWaitThatIsTooShortOrTooLong) {
    for (const std::int32_t seconds : {0, -1, INT32_MIN}) {
        EXPECT_EQ(take({seconds, 0}), ZUL_SEMAPHORE_OK) << seconds; // what is there is taken
        const auto start = steady_clock::now();
        EXPECT_EQ(take({seconds, 0}), ZUL_SEMAPHORE_TIMEOUT) << seconds;
        EXPECT_LT(steady_clock::now() - start, std::chrono::seconds(1));
        EXPECT_EQ(ZULSemaphore_give(semaphore), ZUL_SEMAPHORE_OK);
    }
    EXPECT_EQ(take({0, 0}), ZUL_SEMAPHORE_OK);
    for (const std::int32_t seconds : {60, ZUL_TIME_FOREVER_SEC}) {
        std::thread giver([this] { ZULSemaphore_give(semaphore); });
        EXPECT_EQ(take({seconds, 0}), ZUL_SEMAPHORE_OK);
        giver.join();
    }
}

// An alarm every hundredth of a second, for five seconds at most: a wait that started anew after each would
// last that long.
TEST_F(Semaphore, ASignalThatEndsOrProlongsTheWait) {
    EXPECT_EQ(take({0, 0}), ZUL_SEMAPHORE_OK);
    static std::atomic<int> alarms;
    alarms = 0;
    std::signal(SIGALRM, [](int) {
        if (++alarms == 500) {
            setitimer(ITIMER_REAL, &NEVER, nullptr);
        }
    });
    const itimerval often{{0, 10'000}, {0, 10'000}};
    setitimer(ITIMER_REAL, &often, nullptr);
    const auto start = steady_clock::now();
    EXPECT_EQ(take({0, 0x33333333}), ZUL_SEMAPHORE_TIMEOUT); // a fifth of a second
    const auto elapsed = steady_clock::now() - start;
    setitimer(ITIMER_REAL, &NEVER, nullptr);
    std::signal(SIGALRM, SIG_DFL);
    EXPECT_GE(elapsed, std::chrono::milliseconds(199));
    EXPECT_LT(elapsed, std::chrono::seconds(4));
    EXPECT_GT(alarms, 0);
}

TEST(Strings, ThatCompareOrEndElsewhere) {
    EXPECT_TRUE(ZULString_equalsIgnoreCase("ENABLE", "enable") && ZULString_equalsIgnoreCase("", ""));
    for (const auto& [left, right] :
         {std::pair{"enable", "enables"}, {"\xC4", "\xE4"}, {"@", "`"}, {"[", "{"}}) {
        EXPECT_FALSE(ZULString_equalsIgnoreCase(left, right)) << left;
    }
    for (const auto& [size, cut] : {std::pair{1U, ""}, {4U, "abc"}, {6U, "abcde"}, {9U, "abcde"}}) {
        const auto buffer = std::make_unique<char[]>(size);
        ZULString_copyBounded(buffer.get(), size, "abcde");
        EXPECT_STREQ(buffer.get(), cut);
    }
    EXPECT_EQ(DDS_String_dup(nullptr), nullptr);
    EXPECT_EQ(DDS_String_alloc(SIZE_MAX), nullptr);
}

TEST(Log, ALineThatIsFilledOrMaskedOtherwise) {
    CapturedLog log;
    ZULLog_message(ZUL_LOG_LEVEL_ERROR, "op", ZUL_LOG_INSUFFICIENT_SPACE_dd, 2, 3);
    ZULLog_message(ZUL_LOG_LEVEL_WARNING, "op", ZUL_LOG_ANY_s, "100% %s %d"); // an argument is no template
    ZULLog_message(ZUL_LOG_LEVEL_ERROR, "op", ZUL_LOG_ANY_s, static_cast<const char*>(nullptr));
    ZULLog_message(ZUL_LOG_LEVEL_ERROR, "op", ZUL_LOG_ANY_s); // too few: the place stays
    ZULLog_debug("%s: %d\n", "id", -7LL);
    const volatile std::size_t tooLong = SIZE_MAX; // no memory holds it
    ZULLog_message(ZUL_LOG_LEVEL_ERROR, "op", ZUL_LOG_ANY_FAILURE_s, std::string_view("x", tooLong));
    EXPECT_EQ(log.take(), "ERROR [op] insufficient space: 2 available, 3 needed\n"
                          "WARNING [op] 100% %s %d\n"
                          "ERROR [op] (null)\n"
                          "ERROR [op] %s\n"
                          "id: -7\n"
                          "failure: %s\n");
    for (const std::uint32_t mask : {0U, 1U, 2U, 3U}) {
        ZULLog_setMiddlewareMask(mask);
        for (const ZULLogLevel level : {ZUL_LOG_LEVEL_ERROR, ZUL_LOG_LEVEL_WARNING}) {
            ZULLog_middleware(level, "op", ZUL_LOG_SEMAPHORE_TAKE_FAILURE);
            EXPECT_EQ(log.take().empty(), (mask & level) == 0) << mask << ", " << level;
        }
    }
    ZULLog_setMiddlewareMask(ZUL_LOG_LEVEL_ERROR);
}

TEST(TerminalText, ThatATerminalWouldObey) {
    for (const auto& [text, shown] : {
             std::pair<std::string_view, const char*>{"a\tb ~\n", "a\tb ~\n"},
             {"\r\x1b[2J\x7f", "\\x0d\\x1b[2J\\x7f"},
             {{"\0x", 2}, "\\x00x"},
             {"\xc2\x9b[m\xc2\x80\xc2\x9f", "\\xc2\\x9b[m\\xc2\\x80\\xc2\\x9f"}, // C1
             {"\xc2\xa0\xc3\xa9\xdf\xbf", "\xc2\xa0\xc3\xa9\xdf\xbf"},
             {"\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf",
              "\xe0\xa0\x80\xef\xbf\xbf\xf0\x90\x80\x80\xf4\x8f\xbf\xbf"},
             // Too long a form, a surrogate, beyond Unicode, cut, no beginning.
             {"\xc1\x9b \xe0\x82\x9b", "\\xc1\\x9b \\xe0\\x82\\x9b"},
             {"\xed\xa0\x80 \xf4\x90\x80\x80", "\\xed\\xa0\\x80 \\xf4\\x90\\x80\\x80"},
             {"\xc3 \xe2\x82", "\\xc3 \\xe2\\x82"},
             {"\x9b\xff\xf8", "\\x9b\\xff\\xf8"},
         }) {
        EXPECT_EQ(ZULTerminal_shown(text), shown);
    }
}

TEST(Properties, OneThatIsLostDoubledOrOneTooMany) {
    CapturedLog log; // exhausted memory is reported
    DDS_DomainParticipantQos qos, copied;
    DDS_DomainParticipantQos_initialize(&qos);
    DDS_DomainParticipantQos_initialize(&copied);
    const auto put = [&qos](const std::string& name, const char* value) {
        return DDS_PropertyQosPolicyHelper_assert_property(&qos.property, name.c_str(), value, 1);
    };
    EXPECT_EQ(put("version", "1"), DDS_RETCODE_OK);
    EXPECT_EQ(put("version", "5.1.0"), DDS_RETCODE_OK);
    EXPECT_EQ(put("x", nullptr), DDS_RETCODE_BAD_PARAMETER);
    // Name, value, the longer list.
    EXPECT_EQ(failEachAllocation([&] { return put("name", "value") == DDS_RETCODE_OK; },
                                 [&](bool isPut) { EXPECT_EQ(qos.property.value.length, isPut ? 2 : 1); }),
              3);
    for (int i = 2; i < DDS_PROPERTY_LIST_MAX; ++i) {
        ASSERT_EQ(put(std::to_string(i), "v"), DDS_RETCODE_OK);
    }
    EXPECT_EQ(put("one more", "v"), DDS_RETCODE_OUT_OF_RESOURCES);
    EXPECT_EQ(put("31", "replaced"), DDS_RETCODE_OK); // the full list can still be changed

    qos.participant_name.name = DDS_String_dup("shell");
    ASSERT_TRUE(DDS_DomainParticipantQos_copy(&copied, &qos));
    DDS_DomainParticipantQos_finalize(&qos);
    const DDS_PropertyQosPolicy_Property* properties = copied.property.value.contiguous;
    EXPECT_STREQ(properties[0].value, "5.1.0");
    EXPECT_STREQ(properties[31].value, "replaced");
    EXPECT_STREQ(copied.participant_name.name, "shell");
    EXPECT_EQ(properties[0].propagate, 1);
    DDS_DomainParticipantQos_finalize(&copied);
}

TEST(Version, ThatIsWrittenOtherwise) {
    for (const auto& [version, expected] :
         {std::pair{ZULProductVersion{5, 1, 9, 2}, "5.1.9 rev 2"}, {{127, -128, 'z', 0}, "127.-128.z"}}) {
        char text[ZUL_PRODUCT_VERSION_TEXT_SIZE];
        ZULProductVersion_toString(version, text);
        EXPECT_STREQ(text, expected);
    }
}

} // namespace
