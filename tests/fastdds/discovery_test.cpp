// What a listener is told of another participant, from its start to its end.
#include "admin_types/type_support.h"
#include "tests/fastdds/participant.h"

#include <condition_variable>
#include <cstring>
#include <gtest/gtest.h>
#include <mutex>
#include <sstream>

namespace {

constexpr int DOMAIN = 65;

class Seen {
public:
    DDS_DomainParticipantListener listener() {
        return {this, note<DDS_ParticipantBuiltinTopicData>, note<DDS_PublicationBuiltinTopicData>,
                note<DDS_SubscriptionBuiltinTopicData>};
    }
    bool await(const std::string& line) {
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20),
                                 [&] { return lines_.find(line + "\n") != std::string::npos; });
    }
    std::string all() {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    static std::string describe(const DDS_ParticipantBuiltinTopicData& data) {
        std::ostringstream text;
        text << "participant " << data.participant_name.name << " vendor " << int{data.rtps_vendor_id[1]}
             << " lease " << data.lease_duration.sec << " at " << data.default_unicast_address
             << (data.has_identity_token != 0 ? " secured" : "");
        return text.str();
    }
    static std::string describe(const DDS_EndpointBuiltinTopicData& data) {
        std::ostringstream text;
        text << (std::memcmp(data.key.value, data.participant_key.value, DDS_GUID_PREFIX_LENGTH) == 0 ? "its "
                                                                                                      : "a ")
             << data.topic_name << " " << data.type_name << " " << data.durability.kind
             << data.reliability.kind << data.ownership.kind << data.liveliness.kind
             << int{data.has_partition} << " " << (data.deadline.period.sec == DDS_DURATION_INFINITE.sec);
        return text.str();
    }
    template <class Data>
    static void note(void* self, const Data* data, DDS_UnsignedLong state) {
        auto& seen = *static_cast<Seen*>(self);
        const std::lock_guard lock(seen.mutex_);
        seen.lines_ += (std::is_same_v<Data, DDS_PublicationBuiltinTopicData> ? "writer " : "") +
                       describe(*data) + ": " + std::to_string(state) + "\n";
        seen.changed_.notify_all();
    }

    std::mutex mutex_;
    std::condition_variable changed_;
    std::string lines_;
};

TEST(Discovery, TellsOfParticipantsAndEndpointsUntilTheyLeave) {
    Seen seen;
    const DDS_DomainParticipantListener listener = seen.listener();
    Participant observer(DOMAIN, {.listener = &listener});
    {
        Participant other(DOMAIN, {.name = "the other"});
        ASSERT_EQ(ZUL_RoutingService_Administration_CommandRequestTypeSupport_register_type(other.participant,
                                                                                            "Type"),
                  DDS_RETCODE_OK);
        DDS_Topic* topic = other.createTopic("Topic", "Type");
        EXPECT_NE(other.createReader(topic), nullptr);
        EXPECT_NE(other.createWriter(topic), nullptr);
        other.enable();
        EXPECT_TRUE(seen.await("participant the other vendor 15 lease 20 at 127.0.0.1: 1")) << seen.all();
        EXPECT_TRUE(seen.await("its Topic Type 00000 1: 1")) << seen.all();
        EXPECT_TRUE(seen.await("writer its Topic Type 01000 1: 1")) << seen.all();
    }
    EXPECT_TRUE(seen.await("participant the other vendor 15 lease 20 at 127.0.0.1: 2")) << seen.all();
}

} // namespace
