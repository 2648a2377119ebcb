// Orders of events between the sending thread, the listener's thread and the interrupt, each brought about by
// hooks of the fake DDS.
#include "remote_config/known_routers.h"
#include "tests/remote_config/client_fixture.h"

#include <future>

namespace {

using fake_dds::Answer;

constexpr const char* SEND = "ROUTERRemoteConfigClient_sendEntityMessage"; // kept as an older name
constexpr const char* LISTENER =
    "ZUL_RoutingService_Administration_CommandResponseListener_on_data_available";
constexpr ZULTime AT_ONCE{.sec = 0, .frac = 0};

const Lines NO_RESPONSE{warningLine(SEND, "No response received")};

std::string run(std::size_t length, char c) {
    return std::string(length, c);
}

class Exchange : public ConnectedClient {
protected:
    bool awaitPublished() {
        return await([this] { return client.currentResponse.load() != nullptr; });
    }
    static void deliverAndWait(const std::vector<Answer>& answers) {
        fake_dds::deliver(answers);
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    std::vector<Answer> parts(const Lines& messages) const { // not final
        std::vector<Answer> answers;
        for (const std::string& message : messages) {
            answers.push_back(answer(message, false));
        }
        return answers;
    }
    void interrupt() { EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client)); }
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

TEST_F(Exchange, GathersUntilTheFinalResponse) {
    struct Case {
        const char* name;
        Lines messages; // all but the last are not final
        std::string expected;
        bool isInline;
    };
    const std::string a4096 = run(4096, 'a');
    const Case cases[] = {
        {"nothing", {"", ""}, "(null)", false},
        {"some empty", {"", "a", "", "bb"}, "abb", true},
        {"full buffer", {run(4000, 'a'), run(96, 'b')}, run(4000, 'a') + run(96, 'b'), true},
        {"one more", {run(4000, 'a'), run(97, 'b')}, run(4000, 'a') + run(97, 'b'), false},
        {"first cut", {run(5000, 'a')}, a4096, true},
        {"heap to heap", {a4096, a4096, "", run(4096, 'c')}, a4096 + a4096 + run(4096, 'c'), false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        answerWith([this, &row] {
            std::vector<Answer> answers = parts(row.messages);
            answers.back().isFinal = true;
            answers.back().kind = 3; // only the last kind counts
            return answers;
        });
        EXPECT_TRUE(sendNext());
        EXPECT_EQ(text(), row.expected);
        EXPECT_EQ(result.text == result.textBuffer, row.isInline);
        EXPECT_EQ(result.kind, 3);
        EXPECT_FALSE(client.waitingForResponse.load());
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, CreditsOnlyWhatAnswersTheRequest) {
    const auto changed = [this](void (*change)(Answer&)) {
        Answer wrong = answer("wrong");
        change(wrong);
        return wrong;
    };
    answerWith([this, changed] {
        return std::vector{
            changed([](Answer& a) { --a.id.invocation; }), // late: an earlier request's
            changed([](Answer& a) { ++a.id.invocation; }), //
            changed([](Answer& a) { ++a.id.host; }),       // another shell's
            changed([](Answer& a) { ++a.id.app; }),        //
            changed([](Answer& a) { a.kind = 1; }),        // an announcement, even with the right id
            changed([](Answer& a) { a.id = {}, a.kind = 1; }),
            changed([](Answer& a) { a.isValid = false; }),
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
    EXPECT_EQ(fake_dds::calls(), (Lines{"write", "take", "return_loan"}));
    deliverAndWait({answer("later still")});
    expectNextIsAnswered();
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, RecognisesTheDestination) {
    client.commandSample->id = {.host = -5, .app = 6, .invocation = 7};
    const auto isOurs = [this](fake_dds::RequestId id, bool isAnnouncement) {
        fake_dds::Response response{};
        response.id = id;
        response.kind = isAnnouncement ? ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT
                                       : ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
        return ROUTERRemoteConfigClient_isResponseDestination(&client, &response);
    };
    EXPECT_TRUE(isOurs({-5, 6, 7}, false));
    EXPECT_TRUE(isOurs({0, 0, 0}, true));
    EXPECT_FALSE(isOurs({0, 0, 0}, false));
    EXPECT_FALSE(isOurs({0, 0, 7}, true));
    EXPECT_FALSE(isOurs({0, 6, 0}, true));
    EXPECT_FALSE(isOurs({-5, 0, 0}, true));
}

TEST_F(Exchange, GivesUpAfterTheTimeOut) {
    for (const int seconds : {0, 1}) {
        SCOPED_TRACE(seconds);
        client.responseTimeout = {.sec = seconds, .frac = 0};
        const auto start = Clock::now();
        EXPECT_FALSE(sendNext());
        const auto elapsed = Clock::now() - start;
        EXPECT_GE(elapsed, std::chrono::seconds(seconds));
        EXPECT_LT(elapsed, std::chrono::milliseconds(seconds * 1000 + 900));
        EXPECT_EQ(result.kind, 1);
        EXPECT_EQ(text(), "(null)");
        EXPECT_FALSE(client.waitingForResponse.load());
        EXPECT_EQ(log.take(), NO_RESPONSE);
        deliverAndWait({answer("late")});
    }
    client.responseTimeout.sec = ZUL_TIME_FOREVER_SEC;
    expectNextIsAnswered();
}

TEST_F(Exchange, StartsTheTimeOutAfreshForEveryResponse) {
    client.responseTimeout = {.sec = 1, .frac = 0};
    std::future<void> router;
    // Paced by the clock, because the rule is about time: three parts in twice the time-out.
    fake_dds::setHooks({.onWrite = [&](const fake_dds::Request&) {
        router = std::async(std::launch::async, [this] {
            std::promise<void> never;
            for (const bool isFinal : {false, false, true}) {
                never.get_future().wait_for(std::chrono::milliseconds(600));
                never = {};
                fake_dds::deliver({answer("x", isFinal)});
            }
        });
    }});
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "xxx");
    router.wait();
}

TEST_F(Exchange, AnInterruptEndsTheWaitAndKeepsTheGatheredPart) {
    const std::pair<Lines, std::string> cases[] = {
        {{}, "(null)"},
        {{"part"}, "Response not received"},           // the text refers to the buffer that now says so
        {{run(4096, 'a'), "b"}, run(4096, 'a') + "b"}, // on the heap
    };
    for (const auto& [messages, expected] : cases) {
        const auto onWrite = [&](const fake_dds::Request&) {
            fake_dds::deliver(parts(messages));
            if (messages.empty()) {
                interrupt();
            }
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

TEST_F(Exchange, AnInterruptCrossesADelivery) {
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        fake_dds::deliver({answer("crossed"), answer("second of the batch")});
        EXPECT_TRUE(awaitPublished());
        interrupt();
    }});
    EXPECT_TRUE(sendNext());
    expectInterrupted("(null)"); // the listener waits for ever here: only a "taken" lets it go
    expectNextIsAnswered();      // with both tokens still there
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, StrayInterruptsDoNoHarm) {
    interrupt(); // not waiting: nothing happens
    EXPECT_FALSE(client.waitingForResponse.load());
    for (int i = 0; i < 3; ++i) { // a token each
        EXPECT_TRUE(sendNext(false));
        interrupt();
        interrupt();
        EXPECT_FALSE(client.waitingForResponse.load());
    }
    expectNextIsAnswered();
    client.responseTimeout = AT_ONCE;
    fake_dds::setHooks({});
    EXPECT_FALSE(sendNext()); // and all of them are gone, or do not count
    EXPECT_EQ(text(), "(null)");
}

TEST_F(Exchange, AFailedWriteKeepsWaiting) {
    fake_dds::fail("write");
    EXPECT_FALSE(sendNext());
    EXPECT_EQ(log.take(), Lines{errorLine(SEND, "failure: write")});
    EXPECT_TRUE(client.waitingForResponse.load());
    EXPECT_EQ(result.kind, 1);
    EXPECT_EQ(text(), "(null)");
    expectNextIsAnswered();
}

TEST_F(Exchange, AnEarlyResponseWaitsForTheNextSendOfItsRequest) {
    EXPECT_TRUE(sendNext(false));
    EXPECT_TRUE(client.waitingForResponse.load());
    EXPECT_EQ(result.kind, 1);
    fake_dds::deliver({answer("early")});
    ASSERT_TRUE(awaitPublished());
    EXPECT_EQ(fake_dds::world().openLoans, 1); // until it is taken
    EXPECT_TRUE(send());                       // the same number
    EXPECT_EQ(text(), "early");
    EXPECT_TRUE(fake_dds::awaitIdle());

    // Not when the next send is another request's: the answer then goes by unread.
    EXPECT_TRUE(sendNext(false));
    fake_dds::deliver({answer("of the first")});
    ASSERT_TRUE(awaitPublished());
    expectNextIsAnswered();

    client.noResponseWait = true;
    fake_dds::setHooks({});
    EXPECT_TRUE(sendNext(true));
    EXPECT_TRUE(client.waitingForResponse.load());
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
    EXPECT_EQ(log.take(), NO_RESPONSE);
}

// This thread plays the sending one, and is slow between claiming the sample and giving it back.
TEST_F(Exchange, AClaimedResponseOutlivesTheListenersTimeOut) {
    client.responseTimeout = AT_ONCE;
    std::atomic<bool> isRead{true};
    int claims = 0;
    fake_dds::setHooks({.onReturnLoan = [&] {
        EXPECT_TRUE(isRead.load());
    }});
    for (int i = 0; i < 50; ++i) { // the moment is short
        client.waitingForResponse.store(true);
        fake_dds::deliver({answer("in use")});
        ASSERT_EQ(ZULSemaphore_take(client.responseReadySemaphore, {.nanoseconds = 0, .never = true}),
                  ZUL_SEMAPHORE_OK);
        const auto* claimed = client.currentResponse.exchange(nullptr);
        isRead.store(claimed == nullptr);
        EXPECT_TRUE(await([this] { return !log.take().empty(); })); // "timeout"
        if (claimed != nullptr) {                                   // else this thread was too late
            ++claims;
            EXPECT_STREQ(claimed->message, "in use");
            isRead.store(true);
            ZULSemaphore_give(client.responseTakenSemaphore);
        }
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    EXPECT_GT(claims, 0);
}

TEST_F(Exchange, ClosingReleasesAPendingHandOver) {
    EXPECT_TRUE(sendNext(false));
    fake_dds::deliver({answer("pending"), answer("behind it")});
    ASSERT_TRUE(awaitPublished());
    EXPECT_TRUE(ROUTERRemoteConfigClient_closeConnection(&client)); // the hand-over's time-out is never
    EXPECT_EQ(fake_dds::world().openLoans, 0);
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, TheListenerReportsAFailedTakeOrReturn) {
    fake_dds::deliver({}); // notice of data that is not there
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(log.take(), Lines{});
    for (const auto& [call, text] :
         {std::pair("take", "failure: take"), {"return_loan", "failure: return loan"}}) {
        fake_dds::fail(call);
        deliverAndWait({{.id = {}, .message = "of nobody"}});
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

TEST_F(Exchange, AFailedGiveBackFailsTheSendInTheEnd) {
    // A semaphore that is full cannot be given.
    ZULSemaphore_delete(client.responseTakenSemaphore);
    client.responseTakenSemaphore = ZULSemaphore_new({.initialCount = 0x7FFFFFFF});
    // Published as the listener does it, which would itself take from the full semaphore.
    char message[] = "read";
    ZUL_RoutingService_Administration_CommandResponse response{};
    response.message = message;
    response.is_final = 1;
    fake_dds::setHooks({.onWrite = [&](const fake_dds::Request& request) {
        response.id = request.id;
        client.currentResponse.store(&response);
        ZULSemaphore_give(client.responseReadySemaphore);
    }});
    EXPECT_FALSE(sendNext());
    EXPECT_EQ(text(), "read");
    EXPECT_EQ(result.kind, 0);
    EXPECT_EQ(log.take(), Lines{errorLine(SEND, "failed to give semaphore")});
}

TEST_F(Exchange, AnnounceGreetsEveryRouterAndNeverWaits) {
    EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    const auto requests = fake_dds::written();
    ASSERT_EQ(requests.size(), 1U);
    EXPECT_STREQ(requests[0]->target_router, "*");
    EXPECT_EQ(requests[0]->command._d, 9);
    EXPECT_EQ(requests[0]->id.invocation, 1);
    EXPECT_FALSE(client.waitingForResponse.load());

    fake_dds::fail("write");
    EXPECT_FALSE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    EXPECT_EQ(log.take(), Lines{errorLine("ROUTERRemoteConfigClient_sendCommandAnnounce", "failure: write")});
}

TEST_F(Exchange, ARouterIsMatchedInBothDirections) {
    const auto isMatched = [this](int publications, int subscriptions) {
        fake_dds::world().publications = publications;
        fake_dds::world().subscriptions = subscriptions;
        return ROUTERRemoteConfigClient_hasMatchingServer(&client);
    };
    EXPECT_FALSE(isMatched(1, 0));
    EXPECT_FALSE(isMatched(0, 1));
    EXPECT_TRUE(isMatched(3, 2));
    fake_dds::fail("get_matched_publications");
    EXPECT_FALSE(isMatched(3, 2));
}

TEST_F(Exchange, KnownRoutersAreARing) {
    const auto add = [this](const std::string& name) {
        return ROUTERRemoteConfigClient_addKnownRouter(&client, name.c_str());
    };
    const auto matches = [this](const char* start, DDS_Long index) {
        Lines names;
        while (const char* name = ROUTERRemoteConfigClient_matchKnownRouter(&client, start, &index)) {
            names.emplace_back(name);
        }
        return std::pair(names, index);
    };
    add("alpha");
    add("Alpine");
    EXPECT_EQ(add("alps"), 3);
    EXPECT_EQ(matches("alp", 0), std::pair(Lines({"alpha", "alps"}), 3));
    for (int i = 4; i <= 128; ++i) {
        EXPECT_EQ(add(i == 128 ? "the 128th" : "filler"), i % 128);
    }
    add("the 129th");
    EXPECT_EQ(matches("the", 0), std::pair(Lines({"the 129th", "the 128th"}), 128));
    for (char*& name : client.knownRouters) { // the client does not release them
        DDS_String_free(name);
        name = nullptr;
    }
}

} // namespace
