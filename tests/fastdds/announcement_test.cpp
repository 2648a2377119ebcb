// What a participant that knows nothing of the administration types learns of them from discovery alone.
#include "product/product_info.h"
#include "remote_config/client.h"
#include "remote_config/exchange.h"

#include <condition_variable>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/domain/DomainParticipantListener.hpp>
#include <fastrtps/types/DynamicType.h>
#include <fastrtps/types/DynamicTypeMember.h>
#include <fastrtps/types/MemberDescriptor.h>
#include <fastrtps/types/TypeDescriptor.h>
#include <fastrtps/types/TypeObjectFactory.h>
#include <gtest/gtest.h>
#include <map>
#include <mutex>

namespace fast = eprosima::fastdds::dds;
namespace types = eprosima::fastrtps::types;

namespace {

constexpr int DOMAIN = 20;

class Listener final : public fast::DomainParticipantListener {
public:
    void on_type_discovery(fast::DomainParticipant*, const eprosima::fastrtps::rtps::SampleIdentity&,
                           const eprosima::fastrtps::string_255& topic, const types::TypeIdentifier*,
                           const types::TypeObject* object, types::DynamicType_ptr) override {
        const std::lock_guard lock(mutex_);
        if (object != nullptr && object->_d() == types::EK_COMPLETE) {
            objects_[topic.to_string()] = object->complete();
            changed_.notify_all();
        }
    }
    types::CompleteTypeObject wait(const std::string& topic) {
        std::unique_lock lock(mutex_);
        const bool arrived =
            changed_.wait_for(lock, std::chrono::seconds(20), [&] { return objects_.contains(topic); });
        EXPECT_TRUE(arrived) << topic;
        return arrived ? objects_[topic] : types::CompleteTypeObject();
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::string, types::CompleteTypeObject> objects_;
};

class Announcement : public testing::TestWithParam<int> {};

} // namespace

TEST_P(Announcement, NamesMembersAndBoundsAreListed) {
    ROUTER_setProductId(GetParam());
    const ROUTERProductInfo& product = *ROUTER_getProductInfo();
    Listener listener;
    auto* factory = fast::DomainParticipantFactory::get_instance();
    factory->load_profiles();
    fast::DomainParticipantQos qos;
    factory->get_default_participant_qos(qos);
    auto* observer = factory->create_participant(DOMAIN, qos, &listener);
    ASSERT_NE(observer, nullptr);
    observer->enable();

    auto* client = ROUTERRemoteConfigClient_new(DOMAIN, 0);
    ASSERT_NE(client, nullptr);
    const types::CompleteTypeObject request = listener.wait(product.administrationRequestTopicName);
    const types::CompleteTypeObject response = listener.wait(product.administrationResponseTopicName);

    const bool isRouting = GetParam() == ROUTER_PRODUCT_ROUTING_SERVICE;
    ASSERT_EQ(request._d(), types::TK_STRUCTURE);
    const auto& members = request.struct_type().member_seq();
    ASSERT_EQ(members.size(), 3U);
    EXPECT_EQ(request.struct_type().header().detail().type_name(), product.administrationRequestTypeName);
    EXPECT_EQ(request.struct_type().struct_flags().IS_MUTABLE(), isRouting);
    EXPECT_EQ(members[0].detail().name(), "id");
    EXPECT_EQ(members[1].detail().name(), isRouting ? "target_router" : "target_service");
    EXPECT_EQ(members[2].detail().name(), "command");
    EXPECT_EQ(members[2].common().member_id(), 2U);

    ASSERT_EQ(response._d(), types::TK_STRUCTURE);
    EXPECT_EQ(response.struct_type().header().detail().type_name(), product.administrationResponseTypeName);
    const auto& parts = response.struct_type().member_seq();
    ASSERT_EQ(parts.size(), 4U);
    EXPECT_EQ(parts[2].detail().name(), "message");
    ASSERT_EQ(parts[2].common().member_type_id()._d(), types::TI_STRING8_LARGE);
    EXPECT_EQ(parts[2].common().member_type_id().string_ldefn().bound(), 4096U);
    EXPECT_EQ(parts[3].common().member_type_id()._d(), types::TK_BOOLEAN);

    ROUTERRemoteConfigClient_delete(client);
    EXPECT_EQ(factory->delete_participant(observer)(), 0U);
    ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
}
INSTANTIATE_TEST_SUITE_P(Variants, Announcement,
                         testing::Values(ROUTER_PRODUCT_ROUTING_SERVICE, ROUTER_PRODUCT_FEDERATION_SERVICE));
