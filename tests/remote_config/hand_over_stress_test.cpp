// The hand-over on real threads, for the sanitizers: a router that answers rightly, late, twice, for others
// and in parts at random moments, real signals on the sending thread that sometimes stall there, short
// time-outs, and closing at any moment. A message repeats a letter of the request that it answers, so a
// response credited to another request shows; it is overwritten and freed as soon as its offer has ended.
#include "remote_config/hand_over.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>

namespace {

using std::chrono::microseconds;
using zul::remote_config::HandOver;
using zul::remote_config::Response;
using zul::remote_config::WaitEnd;

ROUTERRemoteConfigClient* g_client = nullptr;

void spin(microseconds span) {
    for (const auto end = std::chrono::steady_clock::now() + span; std::chrono::steady_clock::now() < end;) {
    }
}

void interrupt(int) {
    static std::atomic<unsigned> signals{0};
    const int savedError = errno;
    HandOver(*g_client).abort();
    spin(microseconds(++signals % 8 == 0 ? 5000 : 0)); // longer than a time-out
    errno = savedError;
}

char letterOf(DDS_Long request) {
    return static_cast<char>('a' + request % 26);
}

// Calls again and again until it is destroyed.
template <class Turn>
std::jthread repeat(Turn turn) {
    return std::jthread([turn](const std::stop_token& stop) {
        for (std::mt19937 random(7); !stop.stop_requested();) {
            turn(random);
        }
    });
}

struct Stress {
    explicit Stress(ZULTime timeout) {
        ROUTERLog_setBitmaps(0, 0);
        g_client = &client;
        request.id = {1, 1, 0};
        client.commandSample = &request;
        client.responseTimeout = timeout;
        client.responseReadySemaphore = ZULSemaphore_new({.initialCount = 0});
        client.responseTakenSemaphore = ZULSemaphore_new({.initialCount = 0});
        struct sigaction action {}; // without automatic restart
        action.sa_handler = interrupt;
        sigaction(SIGUSR1, &action, nullptr);
        router = repeat([this](std::mt19937& random) { answer(random); });
        interrupter = repeat([sender = pthread_self()](std::mt19937& random) {
            spin(microseconds(random() % 6000));
            pthread_kill(sender, SIGUSR1);
        });
    }
    ~Stress() {
        room.close();
        router = {};
        interrupter = {};
        signal(SIGUSR1, SIG_IGN);
        EXPECT_EQ(client.currentResponse.load(), nullptr);
        EXPECT_EQ(ZULSemaphore_take(client.responseTakenSemaphore, {.nanoseconds = 0, .never = false}),
                  ZUL_SEMAPHORE_TIMEOUT); // none is left
        ZULSemaphore_delete(client.responseReadySemaphore);
        ZULSemaphore_delete(client.responseTakenSemaphore);
    }
    Stress(const Stress&) = delete;
    Stress& operator=(const Stress&) = delete;

    // The router's thread: answers the newest request, if any, rightly or wrongly.
    void answer(std::mt19937& random) {
        const DDS_Long number = newest.exchange(0);
        if (number == 0) {
            std::this_thread::yield();
            return;
        }
        for (auto parts = 1 + random() % 4; parts > 0; --parts) {
            const auto fault = random() % 10;
            Response response{};
            response.id = {fault == 0 ? 2 : 1, 1, number + (fault == 1 ? 1 : fault == 2 ? -1 : 0)};
            response.is_final = parts == 1 ? 1 : 0;
            // Some are so long that gathering them takes a while: the moment in which the loan must last.
            std::string message(random() % (random() % 8 == 0 ? 400000 : 300),
                                letterOf(response.id.invocation));
            response.message = message.data();
            for (int copies = fault == 3 ? 2 : 1; copies > 0; --copies) {
                room.publish(response);
            }
            message.assign(message.size(), '!');
            spin(microseconds(random() % 3 == 0 ? random() % 1500 : 0));
        }
        handled = number;
    }
    // One request; what is gathered may belong to it alone.
    void send(bool wait) {
        room.nextRequest();
        room.begin();
        newest = request.id.invocation;
        if (wait) {
            ++ends[static_cast<std::size_t>(room.await([this](const Response& response) {
                const std::string_view message = response.message;
                EXPECT_EQ(message.find_first_not_of(letterOf(request.id.invocation)), message.npos);
                return true;
            }))];
        }
    }
    void expectEach(std::initializer_list<WaitEnd> expected) const {
        for (const WaitEnd end : expected) {
            EXPECT_GT(ends[static_cast<std::size_t>(end)], 10);
        }
    }

    ROUTERRemoteConfigClient client{};
    ZUL_RoutingService_Administration_CommandRequest request{};
    HandOver<> room{client};
    std::atomic<DDS_Long> newest{0}, handled{0}; // requests
    std::array<int, 6> ends{};
    std::jthread router, interrupter;
};

TEST(HandOverStress, ShortTimeOuts) {
    Stress stress({.sec = 0, .frac = 0x00800000}); // 2 ms
    for (int round = 0; round < 600; ++round) {
        stress.send(round % 5 != 0);
    }
    stress.expectEach({WaitEnd::ANSWERED, WaitEnd::INTERRUPTED, WaitEnd::TIMED_OUT});
}

TEST(HandOverStress, ClosingAtAnyMomentWithoutATimeOut) {
    Stress stress({.sec = ZUL_TIME_FOREVER_SEC, .frac = 0});
    std::mt19937 random(11);
    for (int session = 0; session < 60; ++session) {
        for (int round = 0; round < 5; ++round) {
            stress.send(true); // answered or, sooner or later, interrupted
        }
        stress.send(false); // whose answers are on their way while it closes
        spin(microseconds(random() % 2000));
        stress.room.close();
        while (stress.handled != stress.request.id.invocation) {
            std::this_thread::yield();
        }
    }
    stress.expectEach({WaitEnd::ANSWERED, WaitEnd::INTERRUPTED});
}

} // namespace
