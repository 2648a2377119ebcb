// The client on the real library: what it looks like to others, and what is left of it.
#include "remote_config/client.h"
#include "remote_config/exchange.h"
#include "tests/middleware/captured_log.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>

namespace {

constexpr int DOMAIN = 19;

std::set<std::string> filesOf(const char* folder, const char* part) {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().filename().string().find(part) != std::string::npos) {
            names.insert(entry.path());
        }
    }
    return names;
}
std::size_t threadCount() {
    return filesOf("/proc/self/task", "").size();
}

TEST(Lifecycle, NothingIsLeftAfterClosingOrAFailedStart) {
    // A sanitizer may start a thread of its own beside the first one: count from after a first round.
    ROUTERRemoteConfigClient_delete(ROUTERRemoteConfigClient_new(DOMAIN, 0));
    const std::size_t threads = threadCount();
    EXPECT_LE(threads, 2U);
    const auto files = filesOf("/dev/shm", "fastrtps");
    for (int round = 0; round < 3; ++round) {
        auto* client = ROUTERRemoteConfigClient_new(DOMAIN, 0);
        ASSERT_NE(client, nullptr);
        EXPECT_GT(threadCount(), threads);
        EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(client));
        EXPECT_FALSE(ROUTERRemoteConfigClient_hasMatchingServer(client));
        ROUTERRemoteConfigClient_delete(client);
        EXPECT_EQ(threadCount(), threads);
    }
    CapturedLog log;
    EXPECT_EQ(ROUTERRemoteConfigClient_new(233, 0), nullptr);
    EXPECT_EQ(ROUTERRemoteConfigClient_new(-1, 0), nullptr);
    EXPECT_NE(log.take().find("domain id -1 is outside 0..232"), std::string::npos);
    EXPECT_EQ(threadCount(), threads);
    EXPECT_EQ(filesOf("/dev/shm", "fastrtps"), files);
}

} // namespace
