// What is learnt from discovery alone: of the administration types by a participant that knows nothing of
// them, and of a participant and its reader by a listener of ours, as far as zulctl does not show it.
#include "admin_types/type_support.h"
#include "tests/fastdds/participant.h"

#include <condition_variable>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <fastdds/dds/domain/DomainParticipantListener.hpp>
#include <fastrtps/types/TypeObject.h>
#include <map>
#include <mutex>

namespace fast = eprosima::fastdds::dds;
namespace types = eprosima::fastrtps::types;

namespace {

constexpr int DOMAIN = 20;

// "mutable <type>; <id> <member>; ...", a string with its bound.
std::string render(const types::CompleteTypeObject& object) {
    if (object._d() != types::TK_STRUCTURE) {
        return "no structure";
    }
    const auto& described = object.struct_type();
    std::string out =
        (described.struct_flags().IS_MUTABLE() ? "mutable " : "") + described.header().detail().type_name();
    for (const auto& member : described.member_seq()) {
        const types::TypeIdentifier& type = member.common().member_type_id();
        out += "; " + std::to_string(member.common().member_id()) + " " + member.detail().name();
        if (type._d() == types::TI_STRING8_LARGE) {
            out += "<" + std::to_string(type.string_ldefn().bound()) + ">";
        }
    }
    return out;
}

class Listener final : public fast::DomainParticipantListener {
public:
    void on_type_discovery(fast::DomainParticipant*, const eprosima::fastrtps::rtps::SampleIdentity&,
                           const eprosima::fastrtps::string_255& topic, const types::TypeIdentifier*,
                           const types::TypeObject* object, types::DynamicType_ptr) override {
        if (object != nullptr && object->_d() == types::EK_COMPLETE) {
            note(topic.to_string(), render(object->complete()));
        }
    }
    DDS_DomainParticipantListener ofOurs() {
        return {this,
                [](void* self, const DDS_ParticipantBuiltinTopicData* data, DDS_UnsignedLong) {
                    static_cast<Listener*>(self)->note("vendor", std::to_string(data->rtps_vendor_id[1]));
                },
                nullptr,
                [](void* self, const DDS_SubscriptionBuiltinTopicData* data, DDS_UnsignedLong) {
                    const bool isEndless = data->deadline.period.sec == DDS_DURATION_INFINITE.sec &&
                                           data->liveliness.lease_duration.sec == DDS_DURATION_INFINITE.sec;
                    static_cast<Listener*>(self)->note("reader", std::to_string(data->durability.kind) +
                                                                     std::to_string(data->liveliness.kind) +
                                                                     (isEndless ? " without end" : ""));
                }};
    }
    // What was announced with each topic, the vendor and a reader's policies, once there are so many.
    std::map<std::string, std::string> wait(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(20), [&] { return seen_.size() == count; });
        return seen_;
    }

private:
    void note(const std::string& of, const std::string& what) {
        const std::lock_guard lock(mutex_);
        seen_[of] = what;
        changed_.notify_all();
    }
    std::mutex mutex_;
    std::condition_variable changed_;
    std::map<std::string, std::string> seen_;
};

TEST(Announcement, ATypeVendorOrPolicyThatIsNotOrOtherwiseAnnounced) {
    Listener listener;
    const DDS_DomainParticipantListener ours = listener.ofOurs();
    const Participant watching(DOMAIN, {.listener = &ours});
    auto* factory = fast::DomainParticipantFactory::get_instance();
    factory->load_profiles();
    fast::DomainParticipantQos qos;
    factory->get_default_participant_qos(qos);
    auto* observer = factory->create_participant(DOMAIN, qos, &listener);
    ASSERT_NE(observer, nullptr);
    observer->enable();

    Participant announcing(DOMAIN, {.announcesTypes = true});
    // The federation variant replaces the description; a type that contains itself has none.
    DDS_TypeCode list{.kind = DDS_TK_SEQUENCE, .bound = 3};
    const DDS_TypeCode knot{
        .kind = DDS_TK_STRUCT, .name = "Knot", .members = {{.name = "next", .type = &list}}};
    list.content = &knot;
    ZULTypePlugin* plugin = ZUL_RoutingService_Administration_CommandRequestPlugin_new();
    for (const auto& [name, typeCode] :
         {std::pair{"Request", plugin->typeCode},
          {"Response", ZUL_RoutingService_Administration_CommandResponse_get_typecode()},
          {"Federated", ZUL_FederationService_Administration_CommandRequest_get_typecode()},
          {"Knot", &knot}}) {
        plugin->typeCode = typeCode;
        EXPECT_EQ(DDS_DomainParticipant_register_type(announcing.participant, name, plugin), DDS_RETCODE_OK);
    }
    ZUL_RoutingService_Administration_CommandRequestPlugin_delete(plugin);
    for (const char* name : {"Request", "Response", "Federated"}) {
        EXPECT_NE(announcing.createReader(announcing.createTopic(name, name)), nullptr);
    }
    announcing.enable();
    const std::string routing = "ZUL::RoutingService::Administration::Command";
    const std::map<std::string, std::string> expected{
        {"Request", "mutable " + routing + "Request; 0 id; 1 target_router; 2 command"},
        {"Response", routing + "Response; 0 id; 1 kind; 2 message<4096>; 3 is_final"},
        {"Federated",
         "ZUL::FederationService::Administration::CommandRequest; 0 id; 1 target_service; 2 command"},
        {"vendor", "15"},
        {"reader", "00 without end"}};
    EXPECT_EQ(listener.wait(expected.size()), expected);
    EXPECT_EQ(factory->delete_participant(observer)(), 0U);
}

} // namespace
