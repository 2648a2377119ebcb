// What a participant that knows nothing of the administration types learns of them from discovery alone.
#include "admin_types/type_support.h"
#include "product/product_info.h"

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

// A participant that was asked to announce its types, with a reader of each.
struct AnnouncingParticipant {
    DDS_DomainParticipantFactory* factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipant* participant = nullptr;

    explicit AnnouncingParticipant(const ROUTERProductInfo& product) {
        DDS_DomainParticipantQos qos;
        DDS_DomainParticipantQos_initialize(&qos);
        qos.types.announce_descriptions = 1;
        participant = DDS_DomainParticipantFactory_create_participant(factory, DOMAIN, &qos, nullptr, 0);
        DDS_DomainParticipantQos_finalize(&qos);
        auto* subscriber =
            DDS_DomainParticipant_create_subscriber(participant, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, 0);
        const bool isRouting = ROUTER_getProductId() == ROUTER_PRODUCT_ROUTING_SERVICE;
        addReader(subscriber, ZUL_RoutingService_Administration_CommandRequestPlugin_new(),
                  isRouting ? nullptr : ZUL_FederationService_Administration_CommandRequest_get_typecode(),
                  product.administrationRequestTypeName, product.administrationRequestTopicName);
        addReader(subscriber, ZUL_RoutingService_Administration_CommandResponsePlugin_new(),
                  isRouting ? nullptr : ZUL_FederationService_Administration_CommandResponse_get_typecode(),
                  product.administrationResponseTypeName, product.administrationResponseTopicName);
        DDS_Entity_enable(DDS_DomainParticipant_as_entity(participant));
    }
    ~AnnouncingParticipant() {
        EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(participant), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, participant), DDS_RETCODE_OK);
    }
    AnnouncingParticipant(const AnnouncingParticipant&) = delete;
    AnnouncingParticipant& operator=(const AnnouncingParticipant&) = delete;

private:
    void addReader(DDS_Subscriber* subscriber, ZULTypePlugin* plugin, const DDS_TypeCode* typeCode,
                   const char* typeName, const char* topicName) const {
        plugin->typeCode = typeCode != nullptr ? typeCode : plugin->typeCode;
        EXPECT_EQ(DDS_DomainParticipant_register_type(participant, typeName, plugin), DDS_RETCODE_OK);
        ZULHeap_free(plugin);
        auto* topic = DDS_DomainParticipant_create_topic(participant, topicName, typeName,
                                                         &DDS_TOPIC_QOS_DEFAULT, nullptr, 0);
        EXPECT_NE(
            DDS_Subscriber_create_datareader(subscriber, topic, &DDS_DATAREADER_QOS_DEFAULT, nullptr, 0),
            nullptr);
    }
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

    AnnouncingParticipant announcing(product);
    ASSERT_NE(announcing.participant, nullptr);
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

    EXPECT_EQ(factory->delete_participant(observer)(), 0U);
    ROUTER_setProductId(ROUTER_PRODUCT_ROUTING_SERVICE);
}
INSTANTIATE_TEST_SUITE_P(Variants, Announcement,
                         testing::Values(ROUTER_PRODUCT_ROUTING_SERVICE, ROUTER_PRODUCT_FEDERATION_SERVICE));
