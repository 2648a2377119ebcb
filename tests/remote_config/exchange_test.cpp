// What the exchange makes of responses, interrupts and failures: results, texts and log lines. The orders in
// which they may meet are hand_over_test's.
#include "remote_config/known_routers.h"
#include "tests/remote_config/client_fixture.h"

#include <thread>

namespace {

using fake_dds::Answer;
using fake_dds::Request;

constexpr const char* SEND = "ROUTERRemoteConfigClient_sendEntityMessage"; // oddity 7
constexpr const char* LISTENER =
    "ZUL_RoutingService_Administration_CommandResponseListener_on_data_available";

std::string run(std::size_t length, char c) {
    return std::string(length, c);
}

// The last one ends the answer when `isFinal`.
std::vector<Answer> parts(const Lines& messages, bool isFinal) {
    std::vector<Answer> answers;
    for (const std::string& message : messages) {
        answers.push_back({.message = message, .isFinal = false});
    }
    answers.back().isFinal = isFinal;
    answers.back().kind = 3;
    return answers;
}

class Exchange : public ConnectedClient {
protected:
    bool send(bool wait = true) {
        ROUTERRemoteConfigClient_nextInvocation(&client);
        ROUTERRemoteConfigResult_finalize(&result);
        return ROUTERRemoteConfigClient_sendCommandRequest(&client, &result, wait);
    }
    // Nothing that happened before disturbs the next request.
    void TearDown() override {
        fake_dds::awaitIdle();
        EXPECT_EQ(log.take(), "");
        fake_dds::answerWith({{.message = "next"}});
        EXPECT_TRUE(send());
        EXPECT_EQ(text(), "next");
        EXPECT_EQ(result.kind, 0);
        EXPECT_TRUE(send(false));
        awaitResponse(); // closing does not wait until somebody reads it
        ConnectedClient::TearDown();
    }
    void awaitResponse() const {
        while (client.currentResponse.load() == nullptr) {
            std::this_thread::yield();
        }
    }
};

TEST_F(Exchange, WaitsOnlyWhenAskedAndAllowedTo) {
    EXPECT_TRUE(send(false)); // nobody answers
    client.noResponseWait = true;
    EXPECT_TRUE(send());
    EXPECT_EQ(text(), "(null)");
    client.noResponseWait = false;
}

TEST_F(Exchange, GathersWhatFitsTheBufferThereAndMoreOnTheHeap) {
    const std::string full = run(4096, 'a');
    const std::pair<Lines, std::string> cases[] = {
        // All messages but the last are not final.
        {{"", ""}, "(null)"},
        {{run(4000, 'a'), run(96, 'a')}, full},
        {{run(4000, 'a'), run(97, 'a')}, full + "a"},
        {{run(5000, 'a')}, full},                                         // a first message is cut
        {{full, full, "", run(4096, 'c')}, full + full + run(4096, 'c')}, // doubled once, then again
    };
    for (const auto& [messages, expected] : cases) {
        fake_dds::answerWith(parts(messages, true));
        EXPECT_TRUE(send());
        EXPECT_EQ(text(), expected);
        EXPECT_EQ(result.text == result.textBuffer, expected == full);
        EXPECT_EQ(result.kind, 3);
    }
}

TEST_F(Exchange, CreditsOnlyWhatAnswersTheRequest) {
    fake_dds::answerWith({
        {.message = "late", .strayBy = {0, 0, -1}},
        {.message = "another host's", .strayBy = {1, 0, 0}},
        {.message = "another shell's", .strayBy = {0, 1, 0}},
        {.message = "announcement", .kind = 1},
        {.message = "no data", .isValid = false},
        {.message = "part of A ", .isFinal = false},
        {.message = "part of B ", .isFinal = false}, // a second router of that name
        {.message = "final of A"},
        {.message = "final of A"}, // a duplicate
        {.message = "final of B", .kind = 2},
    });
    EXPECT_TRUE(send());
    EXPECT_EQ(text(), "part of A part of B final of A");
    EXPECT_EQ(result.kind, 0);
    fake_dds::deliver({{.message = "later still"}});
}

TEST_F(Exchange, AnInterruptEndsTheWaitAndKeepsTheGatheredPart) {
    const std::pair<Lines, std::string> cases[] = {
        {{"part"}, "Response not received"},           // the text refers to the buffer that now says so
        {{run(4096, 'a'), "b"}, run(4096, 'a') + "b"}, // on the heap
    };
    for (const auto& [messages, expected] : cases) {
        std::jthread interrupter;
        fake_dds::world().router = [&, messages = messages](const Request&) -> std::vector<Answer> {
            fake_dds::deliver(parts(messages, false));
            interrupter = std::jthread([this] {
                fake_dds::awaitIdle(); // all parts are gathered, and the sending thread waits for the next
                EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client));
            });
            return {};
        };
        EXPECT_TRUE(send());
        EXPECT_EQ(result.kind, 0);
        EXPECT_STREQ(result.textBuffer, "Response not received");
        EXPECT_EQ(text(), expected);
        EXPECT_FALSE(client.waitingForResponse.load());
        fake_dds::deliver({{.message = "too late"}});
    }
}

TEST_F(Exchange, AFailedWriteKeepsWaiting) {
    fake_dds::fail("write", 1);
    EXPECT_FALSE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    EXPECT_FALSE(client.waitingForResponse.load()); // a greeting never waits
    log.take();
    fake_dds::fail("write", 1);
    EXPECT_FALSE(send());
    EXPECT_EQ(log.take(), errorLine(SEND, "failure: write"));
    EXPECT_TRUE(client.waitingForResponse.load());
    EXPECT_EQ(result.kind, 1);
    EXPECT_EQ(text(), "(null)");
}

TEST_F(Exchange, FailuresAndTimeOutsAreReported) {
    const auto logOf = [this](const std::vector<Answer>& answers) {
        fake_dds::deliver(answers);
        fake_dds::awaitIdle();
        return log.take();
    };
    EXPECT_EQ(logOf({}), ""); // notice of data that is not there
    fake_dds::fail("take", 1);
    EXPECT_EQ(logOf({{.message = "of nobody"}}), errorLine(LISTENER, "failure: take"));
    fake_dds::fail("return_loan", 1);
    EXPECT_EQ(logOf({{.message = "of nobody"}}), errorLine(LISTENER, "failure: return loan"));
    EXPECT_TRUE(send(false));
    client.responseTimeout = {.sec = 0, .frac = 0};
    EXPECT_EQ(logOf({{.message = "withdrawn"}}), errorLine(LISTENER, "timeout"));
    EXPECT_EQ(client.currentResponse.load(), nullptr);
    EXPECT_FALSE(send()); // and nobody answers in time
    EXPECT_EQ(log.take(), "WARNING [" + std::string(SEND) + "] No response received\n");
    EXPECT_EQ(text(), "(null)");
    client.responseTimeout = {.sec = ZUL_TIME_FOREVER_SEC, .frac = 0};
}

TEST_F(Exchange, ATextThatCannotGrowFailsTheSend) {
    fake_dds::world().router = [this](const Request&) -> std::vector<Answer> {
        fake_dds::deliver(parts({run(4000, 'a'), run(200, 'b')}, true));
        awaitResponse();
        ZULHeap_failAfter(0);
        return {};
    };
    EXPECT_FALSE(send());
    ZULHeap_failAfter(-1);
    EXPECT_EQ(log.take(), errorLine(SEND, "out of memory for a string of 4200 characters"));
    EXPECT_EQ(text(), run(4000, 'a'));
}

TEST_F(Exchange, ARouterIsMatchedInBothDirections) {
    for (const auto& [publications, subscriptions] : {std::pair(1, 0), {0, 1}, {3, 2}}) {
        fake_dds::world().publications = publications;
        fake_dds::world().subscriptions = subscriptions;
        EXPECT_EQ(ROUTERRemoteConfigClient_hasMatchingServer(&client), publications * subscriptions > 0);
    }
}

TEST_F(Exchange, KnownRoutersAreARing) {
    for (int i = 1; i <= 130; ++i) {
        EXPECT_EQ(ROUTERRemoteConfigClient_addKnownRouter(&client, std::to_string(i).c_str()), i % 128);
    }
    DDS_Long index = 0;
    EXPECT_STREQ(ROUTERRemoteConfigClient_matchKnownRouter(&client, "128", &index), "128");
    EXPECT_EQ(ROUTERRemoteConfigClient_matchKnownRouter(&client, "1", &index), nullptr);
    index = 0;
    EXPECT_STREQ(ROUTERRemoteConfigClient_matchKnownRouter(&client, "13", &index), "130");
    for (char*& name : client.knownRouters) { // the client does not release them
        DDS_String_free(name);
        name = nullptr;
    }
}

} // namespace
