// What the exchange makes of responses, interrupts and failures: results, texts and log lines. The orders in
// which they may meet are hand_over_test's.
#include "remote_config/known_routers.h"
#include "tests/remote_config/client_fixture.h"

namespace {

using fake_dds::Answer;

constexpr const char* SEND = "ROUTERRemoteConfigClient_sendEntityMessage"; // kept as an older name
constexpr const char* LISTENER =
    "ZUL_RoutingService_Administration_CommandResponseListener_on_data_available";
constexpr ZULTime AT_ONCE{.sec = 0, .frac = 0};

std::string run(std::size_t length, char c) {
    return std::string(length, c);
}

class Exchange : public ConnectedClient {
protected:
    bool sendNext(bool wait = true) {
        ROUTERRemoteConfigClient_nextInvocation(&client);
        ROUTERRemoteConfigResult_finalize(&result);
        return ROUTERRemoteConfigClient_sendCommandRequest(&client, &result, wait);
    }
    void interrupt() { EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client)); }
    bool awaitPublished() {
        return await([this] { return client.currentResponse.load() != nullptr; });
    }
    static void deliverAndWait(const std::vector<Answer>& answers) {
        fake_dds::deliver(answers);
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    // The last one ends the answer when `isFinal`, and its kind is 3.
    std::vector<Answer> parts(const Lines& messages, bool isFinal) const {
        std::vector<Answer> answers;
        for (const std::string& message : messages) {
            answers.push_back(answer(message, false));
        }
        answers.back().isFinal = isFinal;
        answers.back().kind = 3;
        return answers;
    }
    void expectInterrupted(const std::string& expectedText) {
        EXPECT_EQ(result.kind, 0);
        EXPECT_STREQ(result.textBuffer, "Response not received");
        EXPECT_EQ(text(), expectedText);
        EXPECT_FALSE(client.waitingForResponse.load());
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    // Nothing that happened before disturbs the next request.
    void expectNextIsAnswered() {
        answerWith([this] { return std::vector{answer("next")}; });
        EXPECT_TRUE(sendNext());
        EXPECT_EQ(text(), "next");
        EXPECT_EQ(result.kind, 0);
        EXPECT_TRUE(fake_dds::awaitIdle());
        EXPECT_EQ(fake_dds::world().openLoans, 0);
    }
};

TEST_F(Exchange, WaitsOnlyWhenAskedAndAllowedTo) {
    EXPECT_TRUE(sendNext(false)); // nobody answers
    client.noResponseWait = true;
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "(null)");
    client.noResponseWait = false;
    expectNextIsAnswered();
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
        SCOPED_TRACE(expected.size());
        answerWith([this, messages = messages] { return parts(messages, true); });
        EXPECT_TRUE(sendNext());
        EXPECT_EQ(text(), expected);
        EXPECT_EQ(result.text == result.textBuffer, expected == full);
        EXPECT_EQ(result.kind, 3);
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
}

TEST_F(Exchange, CreditsOnlyWhatAnswersTheRequest) {
    answerWith([this] {
        const auto [host, app, number] = client.commandSample->id;
        return std::vector<Answer>{
            {.id = {host, app, number - 1}, .message = "late"}, // to an earlier request
            {.id = {host, app, number + 1}, .message = "wrong"},
            {.id = {host + 1, app, number}, .message = "another shell's"},
            {.id = {host, app + 1, number}, .message = "another shell's"},
            {.id = {}, .kind = 1, .message = "announcement"},
            {.id = {host, app, number}, .kind = 1, .message = "announcement"},
            {.id = {host, app, number}, .message = "no data", .isValid = false},
            answer("part of A ", false),
            answer("part of B ", false), // a second router of that name
            answer("final of A"),
            answer("final of A"), // a duplicate
            answer("final of B", true, 2),
        };
    });
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "part of A part of B final of A");
    EXPECT_EQ(result.kind, 0);
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::world().calls, (Lines{"write", "take", "return_loan"}));
    deliverAndWait({answer("later still")});
    expectNextIsAnswered();
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, AnInterruptEndsTheWaitAndKeepsTheGatheredPart) {
    const std::pair<Lines, std::string> cases[] = {
        {{"part"}, "Response not received"},           // the text refers to the buffer that now says so
        {{run(4096, 'a'), "b"}, run(4096, 'a') + "b"}, // on the heap
    };
    for (const auto& [messages, expected] : cases) {
        const auto onWrite = [this, messages = messages](const fake_dds::Request&) {
            fake_dds::deliver(parts(messages, false));
        };
        // All parts have been taken when the loan goes back, and the sending thread waits for the next.
        const auto onReturnLoan = [this] {
            interrupt();
        };
        fake_dds::setHooks({onWrite, onReturnLoan});
        EXPECT_TRUE(sendNext());
        expectInterrupted(expected);
        deliverAndWait({answer("too late")});
    }
    expectNextIsAnswered();
}

TEST_F(Exchange, AFailedWriteKeepsWaiting) {
    fake_dds::fail("write", 1);
    EXPECT_FALSE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    EXPECT_FALSE(client.waitingForResponse.load()); // a greeting never waits
    fake_dds::fail("write", 1);
    EXPECT_FALSE(sendNext());
    EXPECT_EQ(log.take().back(), errorLine(SEND, "failure: write"));
    EXPECT_TRUE(client.waitingForResponse.load());
    EXPECT_EQ(result.kind, 1);
    EXPECT_EQ(text(), "(null)");
    expectNextIsAnswered();
}

TEST_F(Exchange, AResponseWithdrawnByTheListenerIsNotReadAnyMore) {
    client.responseTimeout = AT_ONCE;
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        deliverAndWait({answer("withdrawn")}); // its hand-over times out, as this thread does not come
        EXPECT_EQ(client.currentResponse.load(), nullptr);
        EXPECT_EQ(log.take(), Lines{errorLine(LISTENER, "timeout")});
    }});
    EXPECT_FALSE(sendNext());
    EXPECT_EQ(text(), "(null)");
}

TEST_F(Exchange, TheListenerReportsAFailedTakeOrReturn) {
    deliverAndWait({}); // notice of data that is not there
    EXPECT_EQ(log.take(), Lines{});
    for (const auto& [call, text] :
         {std::pair("take", "failure: take"), {"return_loan", "failure: return loan"}}) {
        fake_dds::fail(call, 1);
        deliverAndWait({{.message = "of nobody"}});
        EXPECT_EQ(log.take(), Lines{errorLine(LISTENER, text)});
    }
    fake_dds::world().openLoans = 0; // the one that could not be returned
}

TEST_F(Exchange, ATextThatCannotGrowFailsTheSend) {
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        fake_dds::deliver({answer(run(4000, 'a'), false), answer(run(200, 'b'))});
        EXPECT_TRUE(awaitPublished());
        ZULHeap_failAfter(0);
    }});
    EXPECT_FALSE(sendNext());
    ZULHeap_failAfter(-1);
    EXPECT_EQ(log.take(), Lines{errorLine(SEND, "out of memory for a string of 4200 characters")});
    EXPECT_EQ(text(), run(4000, 'a'));
    expectNextIsAnswered();
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
