// The hand-over on real threads, for the sanitizers: a router that answers rightly, late, twice, for others
// and in parts at random moments, real signals on the sending thread that sometimes stall there, short
// time-outs or none, and closing at any moment. A message repeats a letter of the request that it answers, so
// a response credited to another request shows; it is overwritten and freed as soon as its offer has ended.
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

// Offers the parts of an answer, some of them wrong.
void answer(ROUTERRemoteConfigClient& client, DDS_Long request, std::mt19937& random) {
    for (auto parts = 1 + random() % 4; parts > 0; --parts) {
        const auto fault = random() % 10;
        Response response{};
        response.id = {fault == 0 ? 2 : 1, 1, request + (fault == 1 ? 1 : fault == 2 ? -1 : 0)};
        response.is_final = parts == 1 ? 1 : 0;
        // Some are so long that gathering them takes a while: the moment in which the loan must last.
        std::string message(random() % (random() % 8 == 0 ? 400000 : 300), letterOf(response.id.invocation));
        response.message = message.data();
        for (int copies = fault == 3 ? 2 : 1; copies > 0; --copies) {
            HandOver(client).publish(response);
        }
        message.assign(message.size(), '!');
        spin(microseconds(random() % 3 == 0 ? random() % 1500 : 0));
    }
}

TEST(HandOverStress, RunsOnRealThreadsWithSignals) {
    ROUTERLog_setBitmaps(0, 0);
    ZUL_RoutingService_Administration_CommandRequest request{};
    request.id = {1, 1, 0};
    ROUTERRemoteConfigClient client{};
    client.commandSample = &request;
    client.responseReadySemaphore = ZULSemaphore_new({.initialCount = 0});
    client.responseTakenSemaphore = ZULSemaphore_new({.initialCount = 0});
    g_client = &client;
    struct sigaction action {}; // without automatic restart
    action.sa_handler = interrupt;
    sigaction(SIGUSR1, &action, nullptr);

    std::atomic<DDS_Long> newest{0}, handled{0}; // requests
    std::jthread router([&](const std::stop_token& stop) {
        for (std::mt19937 random(7); !stop.stop_requested(); std::this_thread::yield()) {
            if (const DDS_Long number = newest.exchange(0); number != 0) {
                answer(client, number, random);
                handled = number;
            }
        }
    });
    std::jthread interrupter([sender = pthread_self()](const std::stop_token& stop) {
        for (std::mt19937 random(7); !stop.stop_requested();) {
            spin(microseconds(random() % 6000));
            pthread_kill(sender, SIGUSR1);
        }
    });

    HandOver room(client);
    std::array<int, 6> ends{};
    std::mt19937 random(11);
    for (int session = 0; session < 120; ++session) {
        const bool isPatient = session % 3 == 0;
        client.responseTimeout = {.sec = isPatient ? ZUL_TIME_FOREVER_SEC : 0, .frac = 0x00800000}; // 2 ms
        for (int round = 1; round <= 6; ++round) {
            room.nextRequest();
            room.begin();
            newest = request.id.invocation;
            if (round == 6) {
                break; // the answers to the last are on their way while it closes
            }
            ++ends[static_cast<std::size_t>(room.await([&request](const Response& response) {
                const std::string_view message = response.message;
                EXPECT_EQ(message.find_first_not_of(letterOf(request.id.invocation)), message.npos);
                return true;
            }))];
        }
        spin(microseconds(random() % 2000));
        room.close();
        while (handled != request.id.invocation) {
            std::this_thread::yield();
        }
    }
    router = {};
    interrupter = {};
    signal(SIGUSR1, SIG_IGN);
    for (const WaitEnd end : {WaitEnd::ANSWERED, WaitEnd::INTERRUPTED, WaitEnd::TIMED_OUT}) {
        EXPECT_GT(ends[static_cast<std::size_t>(end)], 10);
    }
    EXPECT_EQ(client.currentResponse.load(), nullptr);
    EXPECT_EQ(ZULSemaphore_take(client.responseTakenSemaphore, {.nanoseconds = 0, .never = false}),
              ZUL_SEMAPHORE_TIMEOUT); // none is left
    ZULSemaphore_delete(client.responseReadySemaphore);
    ZULSemaphore_delete(client.responseTakenSemaphore);
}

} // namespace
