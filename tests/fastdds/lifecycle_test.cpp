// The client on the real library: what it looks like to others, and what is left of it.
#include "middleware/log.h"
#include "remote_config/client.h"
#include "remote_config/exchange.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace {

constexpr int DOMAIN = 19;

std::size_t threadCount() {
    const std::filesystem::directory_iterator tasks("/proc/self/task");
    return static_cast<std::size_t>(std::distance(begin(tasks), end(tasks)));
}

std::set<std::string> sharedFiles() {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().find("fastrtps") != std::string::npos) {
            names.insert(entry.path());
        }
    }
    return names;
}

void append(void* text, std::string_view line) {
    static_cast<std::string*>(text)->append(line);
}

} // namespace

TEST(Lifecycle, NothingIsLeftAfterClosingOrAFailedStart) {
    // A sanitizer may start a thread of its own beside the first one: count from after a first round.
    ROUTERRemoteConfigClient_delete(ROUTERRemoteConfigClient_new(DOMAIN, 0));
    const std::size_t threads = threadCount();
    EXPECT_LE(threads, 2U);
    const auto files = sharedFiles();
    for (int round = 0; round < 3; ++round) {
        auto* client = ROUTERRemoteConfigClient_new(DOMAIN, 0);
        ASSERT_NE(client, nullptr);
        EXPECT_GT(threadCount(), threads);
        // The id was taken before the participant was enabled: it must still be that of the participant.
        DDS_DomainParticipantQos qos;
        DDS_DomainParticipantQos_initialize(&qos);
        ASSERT_EQ(DDS_DomainParticipant_get_qos(client->participant, &qos), DDS_RETCODE_OK);
        EXPECT_EQ(client->commandSample->id.host, static_cast<DDS_Long>(qos.wire_protocol.rtps_host_id));
        EXPECT_EQ(client->commandSample->id.app, static_cast<DDS_Long>(qos.wire_protocol.rtps_app_id));
        EXPECT_STREQ(qos.participant_name.name, "ZUL Routing Service: Shell");
        EXPECT_STREQ(DDS_PropertyQosPolicyHelper_lookup_property(&qos.property, "zul.service.version"),
                     "5.1.0");
        DDS_DomainParticipantQos_finalize(&qos);
        EXPECT_TRUE(ROUTERRemoteConfigClient_sendCommandAnnounce(client));
        EXPECT_FALSE(ROUTERRemoteConfigClient_hasMatchingServer(client));
        ROUTERRemoteConfigClient_delete(client);
        EXPECT_EQ(threadCount(), threads);
    }
    std::string log;
    ZULLog_setSink(append, &log);
    EXPECT_EQ(ROUTERRemoteConfigClient_new(233, 0), nullptr);
    EXPECT_EQ(ROUTERRemoteConfigClient_new(-1, 0), nullptr);
    ZULLog_setSink(nullptr, nullptr);
    EXPECT_NE(log.find("domain id -1 is outside 0..232"), std::string::npos) << log;
    EXPECT_EQ(threadCount(), threads);
    EXPECT_EQ(sharedFiles(), files);
}
