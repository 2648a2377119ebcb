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

const std::string NO_RESPONSE = warningLine(SEND, ZUL_LOG_ANY_s, "No response received");

class Exchange : public ConnectedClient {
protected:
    bool awaitPublished() {
        return await([this] { return client.currentResponse.load() != nullptr; });
    }
    void expectInterrupted(const std::string& expectedText) {
        EXPECT_EQ(result.kind, 0);
        EXPECT_STREQ(result.textBuffer, "Response not received");
        EXPECT_EQ(text(), expectedText);
        EXPECT_FALSE(client.waitingForResponse.load());
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
        std::vector<std::string> messages; // all but the last are not final
        std::string expected;
        bool isInline;
    };
    const auto run = [](std::size_t length, char c) {
        return std::string(length, c);
    };
    const Case cases[] = {
        {"one", {"done"}, "done", true},
        {"four", {"a", "bb", "", "ccc"}, "abbccc", true},
        {"nothing", {"", ""}, "(null)", false},
        {"empty first", {"", "x"}, "x", true},
        {"full buffer", {run(4000, 'a'), run(96, 'b')}, run(4000, 'a') + run(96, 'b'), true},
        {"one more", {run(4000, 'a'), run(97, 'b')}, run(4000, 'a') + run(97, 'b'), false},
        {"first cut", {run(5000, 'a'), run(100, 'b')}, run(4096, 'a') + run(100, 'b'), false},
        {"first cut, alone", {run(5000, 'a')}, run(4096, 'a'), true},
        {"heap to heap",
         {run(4096, 'a'), run(4096, 'b'), "", run(4096, 'c')},
         run(4096, 'a') + run(4096, 'b') + run(4096, 'c'),
         false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.name);
        answerWith([this, &row] {
            std::vector<Answer> answers;
            for (const std::string& message : row.messages) {
                answers.push_back(answer(message, false));
            }
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
    EXPECT_EQ(fake_dds::world().returnedLoans, static_cast<int>(std::size(cases)));
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, ReportsTheFirstOfTwoRouters) {
    const auto twoRouters = [this] {
        return std::vector{answer("part of A ", false), answer("part of B ", false), answer("final of A"),
                           answer("final of B", true, 2), answer("more", false)};
    };
    answerWith(twoRouters);
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "part of A part of B final of A");
    EXPECT_EQ(result.kind, 0);
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::calls(),
              (Lines{"write nil", "take max=-1 states=ffff/ffff/ffff loan", "return_loan 5"}));
    expectNextIsAnswered();
}

TEST_F(Exchange, DropsWhatDoesNotAnswerTheRequest) {
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
            changed([](Answer& a) { a.id = {}; }),
            changed([](Answer& a) { a.isValid = false; }),
            answer("right"),
            answer("right"), // a duplicate
        };
    });
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "right");
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::world().returnedLoans, 1);
    EXPECT_TRUE(fake_dds::deliver({answer("right")})); // later still
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::world().returnedLoans, 2);
    expectNextIsAnswered();
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, RecognisesTheDestination) {
    client.commandSample->id = {.host = -5, .app = 6, .invocation = 7};
    struct Case {
        fake_dds::RequestId id;
        int kind;
        bool expected;
    };
    const Case cases[] = {{{-5, 6, 7}, 0, true}, {{-5, 6, 7}, 1, true}, {{-5, 6, 8}, 1, false},
                          {{0, 0, 0}, 1, true},  {{0, 0, 0}, 0, false}, {{0, 0, 0}, 2, false},
                          {{0, 0, 7}, 1, false}, {{0, 6, 0}, 1, false}, {{-5, 0, 0}, 1, false}};
    for (const Case& row : cases) {
        ZUL_RoutingService_Administration_CommandResponse response{};
        response.id = row.id;
        response.kind = static_cast<ZUL_RoutingService_Administration_CommandResponseKind>(row.kind);
        EXPECT_EQ(ROUTERRemoteConfigClient_isResponseDestination(&client, &response), row.expected)
            << row.id.host << ' ' << row.id.app << ' ' << row.id.invocation << ' ' << row.kind;
    }
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
        EXPECT_EQ(log.take(), Lines{NO_RESPONSE});
        // Too late.
        EXPECT_TRUE(fake_dds::deliver({answer("late")}));
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    client.responseTimeout.sec = ZUL_TIME_FOREVER_SEC;
    expectNextIsAnswered();
}

TEST_F(Exchange, WarnsOfNoResponseOnlyWhenWanted) {
    client.responseTimeout = AT_ONCE;
    struct Case {
        std::uint32_t submodules, levels;
        bool isLogged;
    };
    const Case cases[] = {{ROUTER_SUBMODULE_REMOTE_CONFIG, ZUL_LOG_LEVEL_WARNING, true},
                          {ROUTER_SUBMODULE_REMOTE_CONFIG, ZUL_LOG_LEVEL_ERROR, false},
                          {0xFFFF & ~ROUTER_SUBMODULE_REMOTE_CONFIG, 3, false},
                          {0xFFFF, 0, false}};
    for (const Case& row : cases) {
        ROUTERLog_setBitmaps(row.submodules, row.levels);
        EXPECT_FALSE(sendNext());
        EXPECT_EQ(log.take(), row.isLogged ? Lines{NO_RESPONSE} : Lines{});
    }
}

TEST_F(Exchange, StartsTheTimeOutAfreshForEveryResponse) {
    client.responseTimeout = {.sec = 1, .frac = 0};
    std::future<void> router;
    // Paced by the clock, because the rule is about time: three parts in twice the time-out.
    fake_dds::setHooks({.onWrite = [&](const fake_dds::Request&) {
        router = std::async(std::launch::async, [&] {
            const std::unique_ptr<ZULSemaphore, decltype(&ZULSemaphore_delete)> never(
                ZULSemaphore_new({.initialCount = 0}), ZULSemaphore_delete);
            for (const bool isFinal : {false, false, true}) {
                ZULSemaphore_take(never.get(), ZULDeadline_after({.sec = 0, .frac = 0xA0000000})); // 0.6 s
                fake_dds::deliver({answer("x", isFinal)});
            }
        });
    }});
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "xxx");
    router.wait();
}

TEST_F(Exchange, InterruptEndsTheWait) {
    const auto interruptWhileWriting = [this](const fake_dds::Request&) {
        EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client));
    };
    fake_dds::setHooks({.onWrite = interruptWhileWriting});
    EXPECT_TRUE(sendNext());
    expectInterrupted("(null)");
    EXPECT_TRUE(fake_dds::deliver({answer("too late")}));
    EXPECT_TRUE(fake_dds::awaitIdle());
    expectNextIsAnswered();
}

TEST_F(Exchange, InterruptKeepsTheGatheredPart) {
    struct Case {
        std::vector<std::string> parts;
        std::string expected;
    };
    const Case cases[] = {
        {{"part"}, "Response not received"}, // the text refers to the buffer that now says so
        {{std::string(4096, 'a'), "b"}, std::string(4096, 'a') + "b"}, // on the heap
    };
    for (const Case& row : cases) {
        fake_dds::setHooks({.onWrite =
                                [&](const fake_dds::Request&) {
                                    std::vector<Answer> answers;
                                    for (const std::string& part : row.parts) {
                                        answers.push_back(answer(part, false));
                                    }
                                    fake_dds::deliver(answers);
                                },
                            // All parts have been taken by now, and the sending thread waits for the next.
                            .onReturnLoan =
                                [this] {
                                    ROUTERRemoteConfigClient_abortResponseWait(&client);
                                }});
        EXPECT_TRUE(sendNext());
        expectInterrupted(row.expected);
        EXPECT_TRUE(fake_dds::awaitIdle());
    }
    expectNextIsAnswered();
}

TEST_F(Exchange, InterruptCrossesADelivery) {
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        EXPECT_TRUE(fake_dds::deliver({answer("crossed"), answer("second of the batch")}));
        EXPECT_TRUE(awaitPublished());
        EXPECT_EQ(fake_dds::world().returnedLoans, 0);
        ROUTERRemoteConfigClient_abortResponseWait(&client);
    }});
    EXPECT_TRUE(sendNext());
    expectInterrupted("(null)");
    // The listener waits for ever here: only a "taken" lets it go.
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::world().returnedLoans, 1);
    expectNextIsAnswered(); // with both tokens still there
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, StrayInterruptsDoNoHarm) {
    EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client)); // not waiting: nothing happens
    EXPECT_FALSE(client.waitingForResponse.load());
    for (int i = 0; i < 3; ++i) { // a token each
        EXPECT_TRUE(sendNext(false));
        EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client));
        EXPECT_TRUE(ROUTERRemoteConfigClient_abortResponseWait(&client));
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
    EXPECT_EQ(log.take(), Lines{errorLine(SEND, ZUL_LOG_ANY_FAILURE_s, "write")});
    EXPECT_TRUE(client.waitingForResponse.load());
    EXPECT_EQ(result.kind, 1);
    EXPECT_EQ(text(), "(null)");
    expectNextIsAnswered();
}

TEST_F(Exchange, AnEarlyResponseWaitsForTheNextSendOfItsRequest) {
    EXPECT_TRUE(sendNext(false));
    EXPECT_TRUE(client.waitingForResponse.load());
    EXPECT_EQ(result.kind, 1);
    EXPECT_TRUE(fake_dds::deliver({answer("early")}));
    ASSERT_TRUE(awaitPublished());
    EXPECT_EQ(fake_dds::world().returnedLoans, 0); // on loan until it is taken
    EXPECT_TRUE(send());                           // the same number
    EXPECT_EQ(text(), "early");
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::world().returnedLoans, 1);

    // Not when the next send is another request's: the answer then goes by unread.
    EXPECT_TRUE(sendNext(false));
    EXPECT_TRUE(fake_dds::deliver({answer("of the first")}));
    ASSERT_TRUE(awaitPublished());
    answerWith([this] { return std::vector{answer("of the second")}; });
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "of the second");

    client.noResponseWait = true;
    fake_dds::setHooks({});
    EXPECT_TRUE(sendNext(true));
    EXPECT_TRUE(client.waitingForResponse.load());
    client.noResponseWait = false;
}

TEST_F(Exchange, AResponseWithdrawnByTheListenerIsNotReadAnyMore) {
    client.responseTimeout = AT_ONCE;
    fake_dds::setHooks({.onWrite = [this](const fake_dds::Request&) {
        EXPECT_TRUE(fake_dds::deliver({answer("withdrawn")}));
        EXPECT_TRUE(fake_dds::awaitIdle()); // its hand-over times out, as this thread does not come
        EXPECT_EQ(client.currentResponse.load(), nullptr);
    }});
    EXPECT_FALSE(sendNext());
    EXPECT_EQ(text(), "(null)");
    EXPECT_EQ(log.take(), (Lines{errorLine(LISTENER, ZUL_LOG_ANY_s, "timeout"), NO_RESPONSE}));
    EXPECT_EQ(fake_dds::world().returnedLoans, 1);
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
        EXPECT_TRUE(fake_dds::deliver({answer("in use")}));
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
    EXPECT_EQ(fake_dds::world().returnedLoans, 50);
}

TEST_F(Exchange, ClosingReleasesAPendingHandOver) {
    EXPECT_TRUE(sendNext(false));
    EXPECT_TRUE(fake_dds::deliver({answer("pending"), answer("behind it")}));
    ASSERT_TRUE(awaitPublished());
    const auto start = Clock::now();
    EXPECT_TRUE(ROUTERRemoteConfigClient_closeConnection(&client)); // the hand-over's time-out is never
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(10));
    EXPECT_EQ(fake_dds::world().returnedLoans, 1);
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, ListenerFailures) {
    struct Case {
        const char* call; // null: the reader is of another type
        DDS_ReturnCode_t code;
        Lines lines;
        int returned;
    };
    const Case cases[] = {
        {"take", DDS_RETCODE_ERROR, {errorLine(LISTENER, ZUL_LOG_ANY_FAILURE_s, "take")}, 0},
        {"take", DDS_RETCODE_NO_DATA, {}, 0},
        {nullptr, DDS_RETCODE_OK, {errorLine(LISTENER, ZUL_LOG_ANY_FAILURE_s, "data reader narrow")}, 0},
        {"return_loan", DDS_RETCODE_ERROR, {errorLine(LISTENER, ZUL_LOG_ANY_FAILURE_s, "return loan")}, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.call != nullptr ? row.call : "narrow");
        fake_dds::world().readerTypeName = row.call == nullptr ? "Another::Type" : nullptr;
        if (row.call != nullptr) {
            fake_dds::fail(row.call, 1, row.code);
        }
        EXPECT_TRUE(fake_dds::deliver({{.id = {}, .message = "of nobody"}}));
        EXPECT_TRUE(fake_dds::awaitIdle());
        EXPECT_EQ(log.take(), row.lines);
        EXPECT_EQ(fake_dds::world().returnedLoans, row.returned);
    }
    fake_dds::world().readerTypeName = nullptr;
    EXPECT_TRUE(fake_dds::deliver({})); // notice of data that is not there
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(Exchange, ATextThatCannotGrowFailsTheSend) {
    fake_dds::setHooks(
        {.onWrite =
             [this](const fake_dds::Request&) {
                 fake_dds::deliver({answer(std::string(4000, 'a'), false), answer(std::string(200, 'b'))});
             },
         .onTaken =
             [] {
                 ZULHeap_failAfter(0);
             }});
    EXPECT_FALSE(sendNext());
    ZULHeap_failAfter(-1);
    EXPECT_EQ(log.take(), Lines{errorLine(SEND, ZUL_LOG_OUT_OF_HEAP_STRING_d, "4200")});
    EXPECT_EQ(text(), std::string(4000, 'a'));
    EXPECT_TRUE(fake_dds::awaitIdle());
    EXPECT_EQ(fake_dds::world().returnedLoans, 1);
    expectNextIsAnswered();
}

// A semaphore that is full cannot be given.
void fill(ZULSemaphore*& semaphore) {
    ZULSemaphore_delete(semaphore);
    semaphore = ZULSemaphore_new({.initialCount = 0x7FFFFFFF});
}

TEST_F(Exchange, AFailedGiveBackFailsTheSendInTheEnd) {
    fill(client.responseTakenSemaphore);
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
    EXPECT_EQ(log.take(), Lines{errorLine(SEND, ZUL_LOG_SEMAPHORE_GIVE_FAILURE)});
}

TEST_F(Exchange, AFailedHandOverIsLoggedAndGoesOn) {
    fill(client.responseReadySemaphore);
    Lines lines;
    fake_dds::setHooks({.onWrite = [&](const fake_dds::Request&) {
        EXPECT_TRUE(fake_dds::deliver({answer("read")}));
        EXPECT_TRUE(await([&] { return !(lines = log.take()).empty(); }));
    }});
    EXPECT_TRUE(sendNext());
    EXPECT_EQ(text(), "read");
    EXPECT_EQ(lines, Lines{errorLine(LISTENER, ZUL_LOG_SEMAPHORE_GIVE_FAILURE)});
}

TEST_F(Exchange, AnnounceGreetsEveryRouterAndNeverWaits) {
    EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    const auto requests = fake_dds::written();
    ASSERT_EQ(requests.size(), 2U);
    EXPECT_STREQ(requests[0]->target_router, "*");
    EXPECT_EQ(requests[0]->command._d, 9);
    EXPECT_EQ(requests[0]->id.host, client.commandSample->id.host);
    EXPECT_EQ(requests[0]->id.invocation, 1);
    EXPECT_EQ(requests[1]->id.invocation, 2);
    EXPECT_EQ(fake_dds::calls(), (Lines{"write nil", "write nil"}));
    EXPECT_FALSE(client.waitingForResponse.load());

    fake_dds::fail("write");
    EXPECT_FALSE(ROUTERRemoteConfigClient_sendCommandAnnounce(&client));
    EXPECT_EQ(log.take(), Lines{errorLine("ROUTERRemoteConfigClient_sendCommandAnnounce",
                                          ZUL_LOG_ANY_FAILURE_s, "write")});
}

TEST_F(Exchange, MatchedRouters) {
    struct Case {
        int publications, subscriptions;
        bool expected;
    };
    for (const Case& row : {Case{0, 0, false}, {1, 0, false}, {0, 1, false}, {1, 1, true}, {3, 2, true}}) {
        fake_dds::world().publications = row.publications;
        fake_dds::world().subscriptions = row.subscriptions;
        EXPECT_EQ(ROUTERRemoteConfigClient_hasMatchingServer(&client), row.expected);
    }
    for (const char* call : {"get_matched_publications", "get_matched_subscriptions"}) {
        fake_dds::fail(call);
        EXPECT_FALSE(ROUTERRemoteConfigClient_hasMatchingServer(&client));
    }
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
    EXPECT_EQ(add("alpha"), 1);
    EXPECT_EQ(add("Alpine"), 2);
    EXPECT_EQ(add("alps"), 3);
    EXPECT_EQ(matches("", 0), std::pair(Lines({"alpha", "Alpine", "alps"}), 3));
    EXPECT_EQ(matches("alp", 0), std::pair(Lines({"alpha", "alps"}), 3));
    EXPECT_EQ(matches("alphabet", 1), std::pair(Lines{}, 3));
    for (int i = 4; i <= 127; ++i) {
        EXPECT_EQ(add("filler"), i);
    }
    EXPECT_EQ(add("the 128th"), 0);
    EXPECT_EQ(add("the 129th"), 1);
    EXPECT_STREQ(client.knownRouters[0], "the 129th");
    EXPECT_EQ(client.knownRouters[128], nullptr);
    EXPECT_EQ(matches("the", 0), std::pair(Lines({"the 129th", "the 128th"}), 128));
    EXPECT_EQ(matches("", 128), std::pair(Lines{}, 128));
    for (char*& name : client.knownRouters) { // the client does not release them
        DDS_String_free(name);
        name = nullptr;
    }
}

} // namespace
