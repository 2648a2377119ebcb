// Answers in orders that a live network does not give on demand.
#include "fleet/gathering.h"

#include "fleet/response_queue.h"

#include <gtest/gtest.h>
#include <thread>

namespace zul::fleet {
namespace {

using namespace std::chrono_literals;

constexpr std::int32_t OK = 0, ERROR = 2, NOT_FOUND = 3;
const Clock::time_point START{};
const GuidPrefix A{1}, B{2}, C{3};

// What has ended, a word each: name, writer, status, text, parts, milliseconds.
std::string ended(Gathering& gathering) {
    constexpr const char* NAMES[] = {"ok", "error", "not_found", "no_answer", "interrupted"};
    std::string text;
    for (const Answer& answer : gathering.takeEnded()) {
        text += answer.router + std::to_string(answer.writer ? (*answer.writer)[0] : 0) + ":" +
                NAMES[static_cast<std::size_t>(answer.status)] + ":" + answer.message + ":" +
                std::to_string(answer.parts) + ":" + std::to_string(answer.took.count()) +
                (answer.isWhole ? " " : " cut ");
    }
    return text;
}

struct GatheringTest : testing::Test {
    Gathering gathering{1s};

    void come(std::int32_t invocation, const GuidPrefix& writer, std::int32_t kind, const char* text,
              bool isFinal, Clock::duration at = 1ms) {
        gathering.add({invocation, writer, kind, text, isFinal, START + at});
    }
};

TEST_F(GatheringTest, PartsOfSeveralRoutersAreNotMixedUp) {
    gathering.expect(1, "a", {A}, START);
    gathering.expect(2, "b", {B}, START);
    come(2, B, OK, "b1", false);
    come(1, A, OK, "a1", false);
    come(2, B, NOT_FOUND, "b2", true, 7ms);
    EXPECT_FALSE(gathering.isComplete());
    come(1, A, ERROR, "a2", true, 9ms);
    EXPECT_TRUE(gathering.isComplete());
    EXPECT_EQ(ended(gathering), "b2:not_found:b1b2:2:7 a1:error:a1a2:2:9 ");
}

TEST_F(GatheringTest, OnlyTheRequestsOwnAnswerCounts) {
    gathering.expect(5, "a", {A}, START);
    come(4, A, OK, "late", true);
    come(6, A, OK, "foreign", true);
    EXPECT_FALSE(gathering.isComplete());
    come(5, A, OK, "it", true);
    come(5, A, OK, "duplicate", true);
    EXPECT_EQ(ended(gathering), "a1:ok:it:1:1 ");
    EXPECT_TRUE(gathering.isComplete());
}

TEST_F(GatheringTest, NamesakesGiveAResultEachAndAnUnknownOneIsNotDropped) {
    gathering.expect(1, "a", {A, B}, START);
    come(1, B, OK, "b", true);
    EXPECT_FALSE(gathering.isComplete());
    come(1, C, OK, "c", true);
    come(1, A, OK, "a", true);
    EXPECT_EQ(ended(gathering), "a2:ok:b:1:1 a3:ok:c:1:1 a1:ok:a:1:1 ");
    gathering.expect(2, "nameless", {}, START); // whoever answers
    come(2, C, OK, "c", true);
    gathering.expect(3, "late", {}, START);
    gathering.expire(START + 2s);
    come(3, C, OK, "c", true, 3s);
    EXPECT_EQ(ended(gathering), "nameless3:ok:c:1:1 late0:no_answer::0:0 ");
    gathering.expect(4, "a", {A}, START); // a stranger's parts keep nobody waiting
    come(4, A, OK, "a", true);
    come(4, B, OK, "and so on", false, 900ms);
    gathering.expire(START + 1s);
    EXPECT_EQ(ended(gathering), "a1:ok:a:1:1 a2:no_answer:and so on:1:900 ");
    EXPECT_TRUE(gathering.isComplete());
}

TEST_F(GatheringTest, TheTimeoutCountsFromTheLastPartOfEach) {
    gathering.expect(1, "a", {A}, START);
    gathering.expect(2, "b", {B}, START);
    EXPECT_EQ(gathering.deadline(), START + 1s);
    come(1, A, OK, "part", false, 900ms);
    gathering.expire(START + 1s);
    EXPECT_EQ(ended(gathering), "b2:no_answer::0:0 ");
    EXPECT_EQ(gathering.deadline(), START + 1900ms);
    gathering.expire(START + 1899ms);
    EXPECT_EQ(ended(gathering), "");
    gathering.expire(START + 1900ms);
    EXPECT_EQ(ended(gathering), "a1:no_answer:part:1:900 ");
    come(1, A, OK, "too late", true);
    EXPECT_EQ(ended(gathering), "");
    gathering.expect(3, "c", {C}, START + 5ms);
    come(3, C, OK, "before the send returned", true, 2ms);
    EXPECT_EQ(ended(gathering), "c3:ok:before the send returned:1:0 ");
}

TEST_F(GatheringTest, WhoHasGoneOrIsInterruptedIsNotWaitedFor) {
    gathering.expect(1, "a", {A, B}, START);
    gathering.lose(C);
    gathering.lose(A);
    EXPECT_EQ(ended(gathering), "a1:no_answer::0:0 ");
    gathering.interrupt();
    EXPECT_EQ(ended(gathering), "a2:interrupted::0:0 ");
    EXPECT_TRUE(gathering.isComplete());
    gathering.expect(2, "c", {C}, START);
    come(2, C, OK, "half of ", false);
    gathering.spoil();
    come(2, C, OK, "it", true);
    EXPECT_EQ(ended(gathering),
              "c3:error:a part of an answer did not fit in memory; ask fewer routers at a time:1:1 cut ");
}

TEST_F(GatheringTest, AnAnswerWithoutEndIsCutOff) {
    gathering.expect(1, "a", {A}, START);
    gathering.add({1, A, OK, std::string(MAX_ANSWER, 'x'), false, START});
    EXPECT_FALSE(gathering.isComplete());
    come(1, A, OK, "x", false);
    EXPECT_EQ(ended(gathering), "a1:error:its answer is longer than 268435456 bytes:1:0 cut ");
    EXPECT_TRUE(gathering.isComplete());
}

TEST_F(GatheringTest, RoomIsWhenEnoughHaveEndedOrGoneQuiet) {
    EXPECT_EQ(gathering.whenFewerThan(1, 10ms), Clock::time_point::min());
    gathering.expect(1, "a", {A}, START);
    gathering.expect(2, "b", {B}, START + 5ms);
    EXPECT_EQ(gathering.whenFewerThan(3, 10ms), Clock::time_point::min());
    EXPECT_EQ(gathering.whenFewerThan(2, 10ms), START + 10ms);
    EXPECT_EQ(gathering.whenFewerThan(1, 10ms), START + 15ms);
    come(1, A, OK, "part", false, 9ms);
    EXPECT_EQ(gathering.whenFewerThan(2, 10ms), START + 15ms);
    come(2, B, OK, "b", true);
    EXPECT_EQ(gathering.whenFewerThan(2, 10ms), Clock::time_point::min());
}

// A thread that gathers late, and at last not at all.
TEST(ResponseQueue, HoldsNoMoreThanItsLimitLosesNothingAndLetsGo) {
    constexpr std::size_t LIMIT = 100000, SIZE = 1000, COUNT = 1000;
    ResponseQueue queue(LIMIT);
    std::atomic<std::size_t> pushed{0};
    std::jthread delivery([&] {
        for (std::int32_t i = 0; i < static_cast<std::int32_t>(2 * COUNT); ++i, ++pushed) {
            queue.push({.invocation = i, .message = std::string(SIZE, 'x')});
        }
    });
    std::size_t seen = 0;
    while (seen < COUNT) {
        while (pushed < seen + LIMIT / (SIZE + sizeof(Response))) {
            std::this_thread::yield();
        }
        const std::vector<Response> taken = queue.take().responses;
        EXPECT_LE(taken.size(), LIMIT / SIZE);
        for (const Response& response : taken) {
            EXPECT_EQ(response.invocation, static_cast<std::int32_t>(seen++));
        }
    }
    queue.close();
}

} // namespace
} // namespace zul::fleet
