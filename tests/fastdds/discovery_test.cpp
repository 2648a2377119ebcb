// What a listener is told of another participant and its reader, as far as zulctl does not show it.
#include "admin_types/type_support.h"
#include "tests/fastdds/participant.h"

#include <atomic>
#include <future>

namespace {

constexpr int DOMAIN = 65;

struct Seen {
    std::atomic<int> vendor{0};
    std::atomic<bool> isTold{false};
    std::promise<std::string> policies{};

    static void noteParticipant(void* self, const DDS_ParticipantBuiltinTopicData* data, DDS_UnsignedLong) {
        static_cast<Seen*>(self)->vendor = data->rtps_vendor_id[1];
    }
    static void noteReader(void* self, const DDS_SubscriptionBuiltinTopicData* data, DDS_UnsignedLong) {
        const bool isEndless = data->deadline.period.sec == DDS_DURATION_INFINITE.sec &&
                               data->liveliness.lease_duration.sec == DDS_DURATION_INFINITE.sec;
        if (!static_cast<Seen*>(self)->isTold.exchange(true)) {
            static_cast<Seen*>(self)->policies.set_value(std::to_string(data->durability.kind) +
                                                         std::to_string(data->liveliness.kind) +
                                                         (isEndless ? " without end" : ""));
        }
    }
};

TEST(Discovery, AVendorOrAPolicyThatIsToldOtherwise) {
    Seen seen;
    const DDS_DomainParticipantListener listener{&seen, Seen::noteParticipant, nullptr, Seen::noteReader};
    Participant observer(DOMAIN, {.listener = &listener});
    Participant other(DOMAIN);
    ZUL_RoutingService_Administration_CommandRequestTypeSupport_register_type(other.participant, "Type");
    EXPECT_NE(other.createReader(other.createTopic("Topic", "Type")), nullptr);
    other.enable();
    auto policies = seen.policies.get_future();
    ASSERT_EQ(policies.wait_for(std::chrono::seconds(20)), std::future_status::ready);
    EXPECT_EQ(policies.get(), "00 without end");
    EXPECT_EQ(seen.vendor, 15);
}

} // namespace
