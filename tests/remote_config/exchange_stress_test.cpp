// The hand-over under fire: a router that answers rightly, late, twice, for others and in parts at random
// moments, real signals on the sending thread, short time-outs, and closing at any moment. Every message
// consists of the number of the request that it answers, so a response credited to another request shows; the
// fake poisons and frees what is returned to it. Built with the thread and address sanitizers too.
#include "tests/remote_config/client_fixture.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <optional>
#include <random>

namespace {

using fake_dds::Answer;

ROUTERRemoteConfigClient* g_client = nullptr;

void spin(std::chrono::microseconds span) {
    for (const auto end = Clock::now() + span; Clock::now() < end;) {
    }
}

void interrupt(int) {
    static std::atomic<unsigned> signals{0};
    const int savedError = errno;
    ROUTERRemoteConfigClient_abortResponseWait(g_client);
    if (++signals % 8 == 0) {
        spin(std::chrono::milliseconds(5)); // stalls wherever it is, longer than a time-out
    }
    errno = savedError;
}

// A power of two, so that a message cut to 4096 characters still consists of whole ones.
std::string token(DDS_Long invocation) {
    const std::string digits = std::to_string(invocation);
    return std::string(16 - digits.size(), '.') + digits;
}

class ExchangeStress : public testing::Test {
protected:
    ExchangeStress() {
        fake_dds::reset();
        g_client = &client;
        struct sigaction action {};
        action.sa_handler = interrupt;
        sigaction(SIGUSR1, &action, nullptr);
        ROUTERRemoteConfigResult_initialize(&result);
        // Threads that do the same again and again until they are destroyed.
        router = std::jthread([this](const std::stop_token& stop) {
            for (std::mt19937 random(7); !stop.stop_requested();) {
                route(random);
            }
        });
        interrupter = std::jthread([sender = pthread_self()](const std::stop_token& stop) {
            for (std::mt19937 random(7); !stop.stop_requested();) {
                spin(std::chrono::microseconds(random() % 6000));
                pthread_kill(sender, SIGUSR1);
            }
        });
    }
    ~ExchangeStress() override {
        router = {};
        interrupter = {};
        signal(SIGUSR1, SIG_IGN);
        fake_dds::reset();
    }
    void connect(ZULTime timeout) {
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, timeout.sec));
        client.responseTimeout = timeout; // before the listener can look at it
        fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
            const std::lock_guard lock(mutex);
            newest = request.id;
        }});
    }

    // One turn of the router: answers the newest request, rightly or wrongly.
    void route(std::mt19937& random) {
        std::unique_lock lock(mutex);
        const auto request = std::exchange(newest, {});
        lock.unlock();
        if (!request) {
            std::this_thread::yield();
            return;
        }
        std::vector<Answer> batch;
        for (auto parts = 1 + random() % 4; parts > 0; --parts) {
            Answer answer{.id = *request, .isFinal = parts == 1};
            const auto fault = random() % 12;
            answer.id.invocation += fault == 0 ? 1 : fault == 1 ? -1 : 0; // -1: late
            answer.id.host += fault == 2 ? 1 : 0;
            answer.kind = fault == 3 ? 1 : 0;
            answer.isValid = fault != 4;
            const std::string number = token(answer.id.invocation);
            if (fault == 5) { // twice
                batch.push_back(answer);
                batch.back().message = number;
            }
            // Some are so long that gathering them takes a while: the moment in which the loan must last.
            for (auto copies = random() % (random() % 8 == 0 ? 20000 : 300); copies > 0; --copies) {
                answer.message += number;
            }
            batch.push_back(answer);
            if (random() % 3 == 0) {
                fake_dds::deliver(std::exchange(batch, {}));
                spin(std::chrono::microseconds(random() % 1500));
            }
        }
        fake_dds::deliver(batch);
    }

    // One send; whatever its outcome, the result may hold this request's messages only.
    void sendAndCheck(bool wait) {
        const bool sent = ROUTERRemoteConfigClient_sendCommandRequest(&client, &result, wait);
        const std::string text = result.text != nullptr ? result.text : "";
        const bool isInterrupted = sent && std::string(result.textBuffer) == "Response not received";
        answered += wait && sent && !isInterrupted;
        interrupted += wait && isInterrupted;
        unanswered += wait && !sent;
        if (result.text != result.textBuffer || !isInterrupted) {
            const std::string expected = token(client.commandSample->id.invocation);
            ASSERT_EQ(text.size() % expected.size(), 0U);
            for (std::size_t at = 0; at < text.size(); at += expected.size()) {
                ASSERT_EQ(text.compare(at, expected.size(), expected), 0) << text.substr(0, 40);
            }
        }
        ROUTERRemoteConfigResult_finalize(&result);
        fake_dds::forget();
    }

    ROUTERRemoteConfigClient client{};
    ROUTERRemoteConfigResult result{};
    std::mutex mutex;
    std::optional<fake_dds::RequestId> newest;
    int answered = 0, interrupted = 0, unanswered = 0;
    LogCapture log;
    std::jthread router, interrupter;
};

TEST_F(ExchangeStress, ShortTimeOuts) {
    ASSERT_NO_FATAL_FAILURE(connect({.sec = 0, .frac = 0x00800000})); // 2 ms
    for (int round = 0; round < 1500; ++round) {
        ROUTERRemoteConfigClient_nextInvocation(&client);
        if (round % 5 == 0) {
            ASSERT_NO_FATAL_FAILURE(sendAndCheck(false));
            if (round % 10 == 0) {
                ROUTERRemoteConfigClient_nextInvocation(&client);
            }
        }
        ASSERT_NO_FATAL_FAILURE(sendAndCheck(true));
        for (const std::string& line : log.take()) {
            EXPECT_EQ(line.find("return loan"), line.npos);
        }
    }
    EXPECT_GT(answered, 10);
    EXPECT_GT(interrupted, 10);
    EXPECT_GT(unanswered, 10);
    EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
}

TEST_F(ExchangeStress, ClosingAtAnyMomentWithoutATimeOut) {
    std::mt19937 random(11);
    for (int session = 0; session < 150; ++session) {
        ASSERT_NO_FATAL_FAILURE(connect({.sec = ZUL_TIME_FOREVER_SEC, .frac = 0}));
        for (int round = 0; round < 5; ++round) {
            ROUTERRemoteConfigClient_nextInvocation(&client);
            ASSERT_NO_FATAL_FAILURE(sendAndCheck(true)); // answered or, sooner or later, interrupted
        }
        ROUTERRemoteConfigClient_nextInvocation(&client);
        ASSERT_NO_FATAL_FAILURE(sendAndCheck(false)); // whose answers are on their way while it closes
        spin(std::chrono::microseconds(random() % 2000));
        ASSERT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
    }
    EXPECT_GT(answered, 10);
    EXPECT_GT(interrupted, 10);
    EXPECT_EQ(log.take(), Lines{});
}

// Signals fall into the gathering of a part, too: none of them may be lost.
TEST_F(ExchangeStress, OneSignalEndsAnAnswerWithoutEnd) {
    router = {};
    interrupter = {};
    ASSERT_NO_FATAL_FAILURE(connect({.sec = ZUL_TIME_FOREVER_SEC, .frac = 0}));
    const auto deliverPart = [this] {
        const std::lock_guard lock(mutex);
        fake_dds::deliver({{.id = *newest, .message = std::string(1000000, 'x'), .isFinal = false}});
    };
    const auto onWrite = [this, deliverPart](const fake_dds::Request& request) {
        {
            const std::lock_guard lock(mutex);
            newest = request.id;
        }
        deliverPart();
    };
    fake_dds::setHooks({onWrite, deliverPart});
    for (int round = 0; round < 50; ++round) {
        ROUTERRemoteConfigClient_nextInvocation(&client);
        std::atomic<bool> ended{false};
        int signals = 0;
        std::jthread sender([&, shell = pthread_self()] {
            await([this] { return client.waitingForResponse.load(); });
            spin(std::chrono::microseconds(round * 200));
            do {
                pthread_kill(shell, SIGUSR1);
                ++signals;
            } while (!await([&] { return ended.load(); }));
        });
        EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandRequest(&client, &result, true));
        ended = true;
        sender.join();
        ASSERT_EQ(signals, 1);
        EXPECT_STREQ(result.textBuffer, "Response not received");
        ROUTERRemoteConfigResult_finalize(&result);
    }
    EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
}

} // namespace
