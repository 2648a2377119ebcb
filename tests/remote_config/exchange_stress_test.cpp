// The hand-over under fire: a router that answers rightly, late, twice, for others and in parts at random
// moments, real signals on the sending thread, short time-outs, and closing at any moment. Every message
// consists of the number of the request that it answers, so a response credited to another request shows; the
// fake poisons and frees what is returned to it. Built with the thread and address sanitizers too.
#include "tests/remote_config/client_fixture.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <random>

namespace {

using fake_dds::Answer;

ROUTERRemoteConfigClient* g_client = nullptr;
std::atomic<unsigned> g_signals{0};

void spin(std::chrono::microseconds span) {
    for (const auto end = Clock::now() + span; Clock::now() < end;) {
    }
}

void interrupt(int) {
    const int savedError = errno;
    ROUTERRemoteConfigClient_abortResponseWait(g_client);
    if (++g_signals % 8 == 0) {
        spin(
            std::chrono::milliseconds(5)); // the sending thread stalls wherever it is, longer than a time-out
    }
    errno = savedError;
}

// A power of two, so that a message cut to 4096 characters still consists of whole ones.
std::string token(DDS_Long invocation) {
    const std::string digits = std::to_string(invocation);
    return std::string(16 - digits.size(), '.') + digits;
}

// A thread that runs `work` again and again until it is destroyed.
class Repeating {
public:
    explicit Repeating(std::function<void(std::mt19937&)> work)
        : thread_([this, work = std::move(work)] {
              for (std::mt19937 random(7); !isOver_.load();) {
                  work(random);
              }
          }) {}
    ~Repeating() {
        isOver_.store(true);
        thread_.join();
    }
    Repeating(const Repeating&) = delete;
    Repeating& operator=(const Repeating&) = delete;

private:
    std::atomic<bool> isOver_{false};
    std::thread thread_;
};

class ExchangeStress : public testing::Test {
protected:
    ExchangeStress() {
        fake_dds::reset();
        g_client = &client;
        struct sigaction action {};
        action.sa_handler = interrupt;
        sigaction(SIGUSR1, &action, nullptr);
        ROUTERRemoteConfigResult_initialize(&result);
    }
    ~ExchangeStress() override {
        signal(SIGUSR1, SIG_IGN);
        fake_dds::reset();
    }
    void connect(ZULTime timeout) {
        ASSERT_TRUE(ROUTERRemoteConfigClient_initialize(&client, 1, timeout.sec));
        client.responseTimeout = timeout; // before the listener can look at it
        fake_dds::setHooks({.onWrite = [this](const fake_dds::Request& request) {
            const std::lock_guard lock(mutex);
            requests.push_back(request.id);
        }});
    }

    bool popRequest(fake_dds::RequestId& id) {
        const std::lock_guard lock(mutex);
        if (requests.empty()) {
            return false;
        }
        id = requests.back(); // a router that has fallen behind answers the newest
        requests.clear();
        return true;
    }

    // One turn of the router: answers a request, rightly or wrongly.
    void route(std::mt19937& random) {
        fake_dds::RequestId id{};
        if (!popRequest(id)) {
            std::this_thread::yield();
            return;
        }
        std::vector<Answer> batch;
        for (auto parts = 1 + random() % 4; parts > 0; --parts) {
            Answer answer{.id = id, .isFinal = parts == 1};
            switch (random() % 12) {
            case 0:
                --answer.id.invocation; // late
                break;
            case 1:
                ++answer.id.invocation;
                break;
            case 2:
                ++answer.id.host;
                break;
            case 3:
                answer.kind = 1;
                break;
            case 4:
                batch.push_back(answer); // twice
                batch.back().message = token(id.invocation);
                break;
            case 5:
                answer.isValid = false;
                break;
            default:
                break;
            }
            // Some are so long that gathering them takes a while: the moment in which the loan must last.
            const std::string number = token(answer.id.invocation);
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
        const auto start = Clock::now();
        const bool sent = ROUTERRemoteConfigClient_sendCommandRequest(&client, &result, wait);
        longest = std::max(longest, Clock::now() - start);
        const std::string text = result.text != nullptr ? result.text : "";
        const bool isInterrupted = sent && std::string(result.textBuffer) == "Response not received";
        if (wait) {
            ++(isInterrupted ? interrupted : sent ? answered : unanswered);
        }
        if (result.text != result.textBuffer || !isInterrupted) {
            const std::string expected = token(client.commandSample->id.invocation);
            ASSERT_EQ(text.size() % expected.size(), 0U);
            // Begins with the number, and every further one equals the one before it.
            ASSERT_TRUE(text.starts_with(text.empty() ? "" : expected)) << text.substr(0, 40);
            ASSERT_TRUE(text.empty() ||
                        std::equal(text.begin() + 16, text.end(), text.begin(), text.end() - 16));
        }
        ROUTERRemoteConfigResult_finalize(&result);
        fake_dds::forget();
    }

    ROUTERRemoteConfigClient client{};
    ROUTERRemoteConfigResult result{};
    std::mutex mutex;
    std::vector<fake_dds::RequestId> requests;
    Clock::duration longest{};
    int answered = 0, interrupted = 0, unanswered = 0;
    const pthread_t sender = pthread_self();
    LogCapture log;
};

TEST_F(ExchangeStress, ShortTimeOuts) {
    ASSERT_NO_FATAL_FAILURE(connect({.sec = 0, .frac = 0x00800000})); // 2 ms
    Repeating router([this](std::mt19937& random) { route(random); });
    Repeating interrupter([this](std::mt19937& random) {
        spin(std::chrono::microseconds(random() % 6000));
        pthread_kill(sender, SIGUSR1);
    });
    for (int round = 0; round < 1500; ++round) {
        ROUTERRemoteConfigClient_nextInvocation(&client);
        if (round % 5 == 0) {
            ASSERT_NO_FATAL_FAILURE(sendAndCheck(false));
            if (round % 10 == 0) {
                ROUTERRemoteConfigClient_nextInvocation(&client);
            }
        }
        ASSERT_NO_FATAL_FAILURE(sendAndCheck(true));
        log.take();
    }
    EXPECT_GT(answered, 10);
    EXPECT_GT(interrupted, 10);
    EXPECT_GT(unanswered, 10);
    // At most four parts and the last wait, 2 ms each; the rest is a busy machine.
    EXPECT_LT(longest, std::chrono::seconds(2));
    EXPECT_EQ(fake_dds::world().wrongReturns, 0);
    EXPECT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
}

TEST_F(ExchangeStress, ClosingAtAnyMomentWithoutATimeOut) {
    Repeating router([this](std::mt19937& random) { route(random); });
    Repeating interrupter([this](std::mt19937& random) {
        spin(std::chrono::microseconds(random() % 6000));
        pthread_kill(sender, SIGUSR1);
    });
    std::mt19937 random(11);
    Clock::duration longestClose{};
    for (int session = 0; session < 150; ++session) {
        ASSERT_NO_FATAL_FAILURE(connect({.sec = ZUL_TIME_FOREVER_SEC, .frac = 0}));
        for (int round = 0; round < 5; ++round) {
            ROUTERRemoteConfigClient_nextInvocation(&client);
            ASSERT_NO_FATAL_FAILURE(sendAndCheck(true)); // answered or, sooner or later, interrupted
        }
        ROUTERRemoteConfigClient_nextInvocation(&client);
        ASSERT_NO_FATAL_FAILURE(sendAndCheck(false)); // whose answers are on their way while it closes
        spin(std::chrono::microseconds(random() % 2000));
        const auto start = Clock::now();
        ASSERT_TRUE(ROUTERRemoteConfigClient_finalize(&client));
        longestClose = std::max(longestClose, Clock::now() - start);
    }
    EXPECT_GT(answered, 10);
    EXPECT_GT(interrupted, 10);
    EXPECT_LT(longestClose, std::chrono::seconds(2));
    EXPECT_EQ(fake_dds::world().wrongReturns, 0);
    EXPECT_EQ(log.take(), Lines{});
}

} // namespace
