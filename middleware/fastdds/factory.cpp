// The participant factory: domain range, the library's profile file, creation and deletion of participants.
//
// A participant is started in the library as soon as it is created, so that its GUID is final (a profile file
// or a certificate may determine it) and a start that fails is known; what is created in it waits for an
// explicit DDS_Entity_enable.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/gate_transport.h"
#include "middleware/fastdds/library_call.h"
#include "middleware/fastdds/participant_identity.h"
#include "middleware/fastdds/qos_mapping.h"
#include "middleware/fastdds/resource_check.h"

#include <fastdds/dds/domain/DomainParticipantFactory.hpp>
#include <set>
#include <sstream>

namespace fast = eprosima::fastdds::dds;
namespace rtps = eprosima::fastrtps::rtps;

struct DDS_DomainParticipantFactory {
    std::mutex mutex;
    std::set<rtps::GuidPrefix_t> prefixes; // of the participants that exist
};

namespace {

constexpr const char* CREATE = "DDS_DomainParticipantFactory_create_participant";
constexpr ZULLogTemplate DOMAIN_ID_OUT_OF_RANGE_dd{
    0x2001000, "domain id %d is outside 0..%d: choose one in that range\n"};
constexpr ZULLogTemplate GUID_PREFIX_IN_USE_s{
    0x2001003, "the profile file fixes GUID prefix %s, which another participant of this process has: "
               "remove it from the profile file, or use one participant a process\n"};
// Keeps the library's factory from starting participants by itself, and puts its QoS back.
class DisabledCreation {
public:
    DisabledCreation() : factory_(*fast::DomainParticipantFactory::get_instance()) {
        factory_.get_qos(previous_);
        fast::DomainParticipantFactoryQos qos = previous_;
        qos.entity_factory().autoenable_created_entities = false;
        factory_.set_qos(qos);
    }
    ~DisabledCreation() { factory_.set_qos(previous_); }
    DisabledCreation(const DisabledCreation&) = delete;
    DisabledCreation& operator=(const DisabledCreation&) = delete;

private:
    fast::DomainParticipantFactory& factory_;
    fast::DomainParticipantFactoryQos previous_;
};

struct DeleteParticipant {
    void operator()(fast::DomainParticipant* participant) const {
        fast::DomainParticipantFactory::get_instance()->delete_participant(participant);
    }
};
using LibraryParticipant = std::unique_ptr<fast::DomainParticipant, DeleteParticipant>;

// The library tells participants of one process apart by their GUID prefixes, and would delete the wrong one
// of two that have the same.
bool isPrefixFree(DDS_DomainParticipantFactory& self, const rtps::GuidPrefix_t& fixed) {
    const std::lock_guard lock(self.mutex);
    if (fixed == rtps::c_GuidPrefix_Unknown || !self.prefixes.contains(fixed)) {
        return true;
    }
    std::ostringstream text;
    text << fixed;
    ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, CREATE, GUID_PREFIX_IN_USE_s, text.str());
    return false;
}

// A participant that has started; its entities are created disabled.
LibraryParticipant startParticipant(DDS_DomainParticipantFactory& self, DDS_DomainId_t domainId,
                                    const DDS_DomainParticipantQos& qos, zul::DiscoveryBridge& discovery,
                                    zul::ResourceCheck& resources) {
    auto* factory = fast::DomainParticipantFactory::get_instance();
    factory->load_profiles();
    fast::DomainParticipantQos libraryQos;
    factory->get_default_participant_qos(libraryQos);
    zul::applyParticipantQos(qos, libraryQos);
    if (!isPrefixFree(self, libraryQos.wire_protocol().prefix)) {
        return nullptr;
    }
    const auto gate = std::make_shared<zul::Gate>();
    zul::putGateInFront(gate, libraryQos);
    if (!resources.passes(CREATE)) {
        return nullptr;
    }
    LibraryParticipant participant;
    {
        const DisabledCreation disabled;
        participant.reset(factory->create_participant(static_cast<fast::DomainId_t>(domainId), libraryQos,
                                                      discovery.isWanted() ? &discovery : nullptr,
                                                      fast::StatusMask::none()));
    }
    if (participant != nullptr &&
        participant->enable() != eprosima::fastrtps::types::ReturnCode_t::RETCODE_OK) {
        return nullptr;
    }
    gate->open();
    return participant;
}

} // namespace

DDS_DomainParticipantFactory* DDS_DomainParticipantFactory_get_instance() {
    static DDS_DomainParticipantFactory instance;
    return &instance;
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_default_participant_qos(DDS_DomainParticipantFactory* self,
                                                                          DDS_DomainParticipantQos* qos) {
    if (self == nullptr || qos == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    DDS_DomainParticipantQos_finalize(qos);
    DDS_DomainParticipantQos_initialize(qos);
    return DDS_RETCODE_OK;
}

DDS_DomainParticipant* DDS_DomainParticipantFactory_create_participant(
    DDS_DomainParticipantFactory* self, DDS_DomainId_t domainId, const DDS_DomainParticipantQos* qos,
    const DDS_DomainParticipantListener* listener, DDS_StatusMask /*mask*/) {
    // The library ends the process for a domain id that is too large and wraps a negative one.
    if (domainId < 0 || domainId > DDS_DOMAIN_ID_MAX) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, __func__, DOMAIN_ID_OUT_OF_RANGE_dd, domainId,
                          DDS_DOMAIN_ID_MAX);
        return nullptr;
    }
    return zul::createInLibrary(__func__, nullptr, [&]() -> DDS_DomainParticipant* {
        zul::ResourceCheck resources;
        auto participant = std::make_unique<DDS_DomainParticipant>();
        if (listener != nullptr) {
            participant->discovery.forwardTo(*listener);
        }
        LibraryParticipant started =
            startParticipant(*self, domainId, *qos, participant->discovery, resources);
        if (started == nullptr || !DDS_DomainParticipantQos_copy(&participant->qos, qos)) {
            return nullptr;
        }
        const rtps::GuidPrefix_t& prefix = started->guid().guidPrefix;
        participant->qos.wire_protocol = zul::identifyParticipant(prefix);
        const std::lock_guard lock(self->mutex);
        self->prefixes.insert(prefix);
        participant->participant = started.release();
        return participant.release();
    });
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory* self,
                                                                 DDS_DomainParticipant* participant) {
    if (self == nullptr || participant == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const rtps::GuidPrefix_t prefix = participant->participant->guid().guidPrefix;
    const auto code = zul::callLibrary(__func__, DDS_RETCODE_ERROR, [participant] {
        return zul::toReturnCode(
            fast::DomainParticipantFactory::get_instance()->delete_participant(participant->participant));
    });
    if (code == DDS_RETCODE_OK) {
        const std::lock_guard lock(self->mutex);
        self->prefixes.erase(prefix);
        delete participant;
    }
    return code;
}
