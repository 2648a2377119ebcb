// What participants do to the process they live in, and to each other, with the real library.
#include "middleware/fastdds/bounded_wait.h"
#include "middleware/fastdds/resource_check.h"
#include "remote_config/client.h"
#include "remote_config/exchange.h"
#include "tests/middleware/captured_log.h"
#include "tests/support/failing_heap.h"
#include "tests/support/failing_new.h"

#include <atomic>
#include <chrono>
#include <csignal>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/log/Log.hpp>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <memory>
#include <set>
#include <sstream>

namespace {

namespace fast = eprosima::fastdds::dds;

constexpr int DOMAIN = 31;

using Client = std::unique_ptr<ROUTERRemoteConfigClient, decltype(&ROUTERRemoteConfigClient_delete)>;
Client connect() {
    return {ROUTERRemoteConfigClient_new(DOMAIN, 1), ROUTERRemoteConfigClient_delete};
}

std::set<std::filesystem::path> filesOf(const char* folder, const char* part = "") {
    std::set<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().filename().string().find(part) != std::string::npos) {
            paths.insert(entry.path());
        }
    }
    return paths;
}
std::set<std::filesystem::path> threadsOfProcess() {
    return filesOf("/proc/self/task");
}

TEST(Participants, ThatLeaveThreadsOrFilesBehind) {
    connect(); // a sanitizer may start a thread of its own beside the first one
    const std::size_t threads = threadsOfProcess().size();
    EXPECT_LE(threads, 2U);
    const auto files = filesOf("/dev/shm", "fastrtps");
    for (int round = 0; round < 3; ++round) {
        const Client client = connect();
        ASSERT_NE(client, nullptr);
        EXPECT_GT(threadsOfProcess().size(), threads);
        EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(client.get()));
        EXPECT_FALSE(ROUTERRemoteConfigClient_hasMatchingServer(client.get()));
    }
    CapturedLog log;
    EXPECT_EQ(ROUTERRemoteConfigClient_new(233, 0), nullptr);
    EXPECT_EQ(ROUTERRemoteConfigClient_new(-1, 0), nullptr);
    EXPECT_NE(log.take().find("domain id -1 is outside 0..232"), std::string::npos);
    EXPECT_EQ(threadsOfProcess().size(), threads);
    EXPECT_EQ(filesOf("/dev/shm", "fastrtps"), files);
}

TEST(Participants, ThatHangWhenMemoryEndsAtTheirStart) {
    g_newCanFail = true;
    const auto passes = [] {
        try {
            return zul::ResourceCheck().passes("test");
        } catch (const std::bad_alloc&) {
            return false;
        }
    };
    EXPECT_GE(failEachAllocation(passes), 8); // one a thread at least
    g_newCanFail = false;
}

// The library may wake a write early, as if its time were over: trying again must not start the time afresh.
TEST(Writers, ThatWaitLongerTheOftenerTheyAreWoken) {
    using std::chrono::milliseconds;
    const zul::BoundedWait wait = zul::boundedWait({.sec = 60, .nanosec = 0});
    for (const milliseconds early : {milliseconds(0), milliseconds(30), milliseconds(99)}) {
        std::chrono::steady_clock::time_point now;
        const auto attempt = [&now, &wait, early] {
            now += wait.slice - early;
            return DDS_RETCODE_TIMEOUT;
        };
        EXPECT_EQ(zul::attemptWithin(wait, attempt, [&now] { return now; }), DDS_RETCODE_TIMEOUT);
        EXPECT_LE(now.time_since_epoch(), std::chrono::seconds(60));
        EXPECT_GE(now.time_since_epoch(), std::chrono::seconds(60) - wait.slice);
    }
}

TEST(Participants, ThatShareARequestSourceOrAPrefix) {
    std::set<std::pair<DDS_Long, DDS_Long>> sources;
    const auto noteSource = [&sources](const Client& client) {
        EXPECT_TRUE(sources.emplace(client->commandSample->id.host, client->commandSample->id.app).second);
    };
    const Client first = connect();
    noteSource(first);
    noteSource(connect());
    noteSource(connect());

    // As a profile would fix it: the same GUID each time, and the source is taken from that one.
    auto& factory = *fast::DomainParticipantFactory::get_instance();
    const fast::DomainParticipantQos before = factory.get_default_participant_qos();
    fast::DomainParticipantQos fixed = before;
    std::istringstream("0a.0b.0c.0d.01.02.03.04.05.06.07.08") >> fixed.wire_protocol().prefix;
    factory.set_default_participant_qos(fixed);
    for (int i = 0; i < 3; ++i) {
        const Client client = connect();
        ASSERT_NE(client, nullptr);
        noteSource(client);
        EXPECT_EQ(client->commandSample->id.host, 0x0A0B0C0D);
        CapturedLog log;
        EXPECT_EQ(connect(), nullptr); // a second one with this prefix
        const std::string lines = log.take();
        EXPECT_NE(lines.find("fixes GUID prefix 0a.0b.0c.0d.01.02.03.04.05.06.07.08, which another"),
                  std::string::npos)
            << lines;
        EXPECT_NE(lines.find("createConnection] failed to create participant\n"), std::string::npos) << lines;
        EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(client.get()));
    }
    factory.set_default_participant_qos(before);
}

// The signals that a thread of this process blocks, a bit each. Those that nobody can block, or that the C
// library keeps to itself, count as blocked.
std::uint64_t blockedSignals(const std::filesystem::path& task) {
    constexpr std::uint64_t OTHERS = 1ULL << (SIGKILL - 1) | 1ULL << (SIGSTOP - 1) | 3ULL << 31;
    std::ifstream status(task / "status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("SigBlk:")) {
            return std::stoull(line.substr(7), nullptr, 16) | OTHERS;
        }
    }
    return 0;
}

struct CountingConsumer final : fast::LogConsumer {
    explicit CountingConsumer(std::atomic<int>& ofLines) : lines(ofLines) {}
    void Consume(const fast::Log::Entry& /*entry*/) override { ++lines; }
    std::atomic<int>& lines;
};

TEST(Participants, ThatChangeSignalsQosOrLogOfTheProcess) {
    auto* factory = fast::DomainParticipantFactory::get_instance();
    std::atomic<int> lines{0};
    fast::Log::RegisterConsumer(std::make_unique<CountingConsumer>(lines));
    const auto threads = threadsOfProcess();
    Client client = connect();
    ASSERT_NE(client, nullptr);
    int started = 0;
    for (const auto& thread : threadsOfProcess()) {
        if (!threads.contains(thread)) {
            ++started;
            EXPECT_EQ(blockedSignals(thread), UINT64_MAX) << thread;
        }
    }
    EXPECT_GT(started, 3);
    client.reset();

    fast::DomainParticipantFactoryQos qos;
    factory->get_qos(qos);
    EXPECT_EQ(qos, fast::DomainParticipantFactoryQos()); // as it was before the first participant
    fast::Log::QueueLog("line", fast::Log::Context{__FILE__, __LINE__, __func__, "TEST"}, fast::Log::Error);
    fast::Log::Flush();
    EXPECT_EQ(lines, 1);
    fast::Log::ClearConsumers();
    fast::Log::KillThread();
}

} // namespace
