// What participants do to the process they live in, and to each other, with the real library.
#include "middleware/fastdds/bounded_wait.h"
#include "remote_config/client.h"
#include "remote_config/exchange.h"
#include "tests/middleware/captured_log.h"

#include <array>
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
#include <spawn.h>
#include <sstream>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace {

namespace fast = eprosima::fastdds::dds;

constexpr int DOMAIN = 31;

// A profile that fixes the GUID prefix, for as long as it lives.
class FixedPrefix {
public:
    FixedPrefix() {
        factory_.load_profiles();
        factory_.get_default_participant_qos(previous_);
        fast::DomainParticipantQos qos = previous_;
        std::istringstream("0a.0b.0c.0d.01.02.03.04.05.06.07.08") >> qos.wire_protocol().prefix;
        factory_.set_default_participant_qos(qos);
    }
    ~FixedPrefix() { factory_.set_default_participant_qos(previous_); }
    FixedPrefix(const FixedPrefix&) = delete;
    FixedPrefix& operator=(const FixedPrefix&) = delete;

private:
    fast::DomainParticipantFactory& factory_ = *fast::DomainParticipantFactory::get_instance();
    fast::DomainParticipantQos previous_;
};

struct DeleteClient {
    void operator()(ROUTERRemoteConfigClient* client) const { ROUTERRemoteConfigClient_delete(client); }
};
using Client = std::unique_ptr<ROUTERRemoteConfigClient, DeleteClient>;
Client connect() {
    return Client(ROUTERRemoteConfigClient_new(DOMAIN, 1));
}
using RequestSource = std::pair<DDS_Long, DDS_Long>;
RequestSource sourceOf(const Client& client) {
    return {client->commandSample->id.host, client->commandSample->id.app};
}

// The library may wake a write early, as if its time were over: trying again must not start the time afresh.
TEST(Writers, WaitNoLongerThanTheirBlockingTimeHoweverOftenTheyAreWoken) {
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

TEST(Participants, NoTwoShareARequestSourceAliveOrJustGone) {
    std::set<RequestSource> sources;
    const Client first = connect();
    sources.insert(sourceOf(first));
    sources.insert(sourceOf(connect()));
    sources.insert(sourceOf(connect()));
    EXPECT_EQ(sources.size(), 3U);

    // The same GUID each time, and the source is taken from that one.
    const FixedPrefix fixed;
    sources.clear();
    for (int i = 0; i < 3; ++i) {
        const Client client = connect();
        sources.insert(sourceOf(client));
        EXPECT_EQ(client->commandSample->id.host, 0x0A0B0C0D);
    }
    EXPECT_EQ(sources.size(), 3U);
}

TEST(Participants, ASecondOneWithTheSamePrefixFailsAndHarmsNobody) {
    const FixedPrefix fixed;
    const Client first = connect();
    ASSERT_NE(first, nullptr);
    CapturedLog log;
    EXPECT_EQ(connect(), nullptr);
    const std::string lines = log.take();
    EXPECT_NE(lines.find("fixes GUID prefix 0a.0b.0c.0d.01.02.03.04.05.06.07.08, which another"),
              std::string::npos)
        << lines;
    EXPECT_NE(lines.find("createConnection] failed to create participant\n"), std::string::npos) << lines;
    EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(first.get()));
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

class CountingConsumer final : public fast::LogConsumer {
public:
    explicit CountingConsumer(std::atomic<int>& lines) : lines_(lines) {}
    void Consume(const fast::Log::Entry& /*entry*/) override { ++lines_; }

private:
    std::atomic<int>& lines_;
};

TEST(Participants, LeaveTheProcessAsTheyFoundIt) {
    auto* factory = fast::DomainParticipantFactory::get_instance();
    fast::DomainParticipantFactoryQos before;
    factory->get_qos(before);
    std::atomic<int> lines{0};
    fast::Log::RegisterConsumer(std::make_unique<CountingConsumer>(lines));
    std::set<std::filesystem::path> threads;
    const auto tasks = [] {
        return std::filesystem::directory_iterator("/proc/self/task");
    };
    for (const auto& task : tasks()) {
        threads.insert(task.path());
    }

    Client client = connect();
    ASSERT_NE(client, nullptr);
    int started = 0;
    for (const auto& task : tasks()) {
        if (!threads.contains(task.path())) {
            ++started;
            EXPECT_EQ(blockedSignals(task.path()), UINT64_MAX) << task.path();
        }
    }
    EXPECT_GT(started, 3);
    client.reset();

    fast::DomainParticipantFactoryQos after;
    factory->get_qos(after);
    EXPECT_EQ(after, before);
    fast::Log::QueueLog("line", fast::Log::Context{__FILE__, __LINE__, __func__, "TEST"}, fast::Log::Error);
    fast::Log::Flush();
    EXPECT_EQ(lines, 1);
    fast::Log::ClearConsumers();
    fast::Log::KillThread();
}

// A practice router in a process of its own: two participants of one process would find each other without
// the network.
class RouterProcess {
public:
    RouterProcess() {
        const std::string program = std::string(std::getenv("ZUL_BIN")) + "/zul-practice-router";
        const std::string domain = std::to_string(DOMAIN);
        const char* arguments[] = {program.c_str(), "--domain", domain.c_str(), "--name", "r1", nullptr};
        std::array<int, 2> output{};
        EXPECT_EQ(pipe(output.data()), 0);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
        EXPECT_EQ(
            posix_spawn(&id_, program.c_str(), &actions, nullptr, const_cast<char**>(arguments), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(output[1]);
        char ready = 0;
        EXPECT_EQ(read(output[0], &ready, 1), 1); // its first line says so
        close(output[0]);
    }
    ~RouterProcess() {
        kill(id_, SIGTERM);
        waitpid(id_, nullptr, 0);
    }
    RouterProcess(const RouterProcess&) = delete;
    RouterProcess& operator=(const RouterProcess&) = delete;

private:
    pid_t id_ = 0;
};

// An answer that is lost comes again with the peer's next announcement, after three seconds: that happened to
// every tenth start.
TEST(Participants, FindAPeerBeforeItsNextAnnouncement) {
    constexpr int STARTS = 40;
    constexpr std::chrono::milliseconds BOUND{2000};
    const RouterProcess router;
    for (int i = 0; i < STARTS; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const Client client = connect();
        ASSERT_NE(client, nullptr);
        while (!ROUTERRemoteConfigClient_hasMatchingServer(client.get())) {
            ASSERT_LT(std::chrono::steady_clock::now() - start, BOUND) << "start " << i;
            std::this_thread::yield();
        }
    }
}

} // namespace
