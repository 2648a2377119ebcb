// The participant factory: domain range, the library's profile file and log, creation and deletion of
// participants.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/log_bridge.h"
#include "middleware/fastdds/qos_mapping.h"
#include "middleware/log.h"

#include <atomic>
#include <fastdds/dds/domain/DomainParticipantFactory.hpp>

namespace fast = eprosima::fastdds::dds;

struct DDS_DomainParticipantFactory {
    std::atomic<int> participants{0};
};

namespace {

constexpr ZULLogTemplate DOMAIN_ID_OUT_OF_RANGE_dd{
    0x2001000, "domain id %d is outside 0..%d: choose one in that range\n"};

fast::DomainParticipantFactory* libraryFactory() {
    auto* factory = fast::DomainParticipantFactory::get_instance();
    fast::DomainParticipantFactoryQos qos;
    factory->get_qos(qos);
    qos.entity_factory().autoenable_created_entities = false;
    factory->set_qos(qos);
    return factory;
}

void forgetParticipant(DDS_DomainParticipantFactory& self) {
    if (--self.participants == 0) {
        zul::endLogThread();
    }
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
    const DDS_DomainParticipantListener* /*listener*/, DDS_StatusMask /*mask*/) {
    // The library ends the process for a domain id that is too large and wraps a negative one.
    if (domainId < 0 || domainId > DDS_DOMAIN_ID_MAX) {
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, __func__, DOMAIN_ID_OUT_OF_RANGE_dd, domainId,
                          DDS_DOMAIN_ID_MAX);
        return nullptr;
    }
    if (self->participants++ == 0) {
        zul::installLogBridge();
    }
    auto participant = std::make_unique<DDS_DomainParticipant>();
    DDS_DomainParticipantQos_initialize(&participant->qos);
    auto* factory = libraryFactory();
    factory->load_profiles();
    fast::DomainParticipantQos libraryQos;
    factory->get_default_participant_qos(libraryQos);
    zul::applyParticipantQos(*qos, libraryQos);
    if (DDS_DomainParticipantQos_copy(&participant->qos, qos)) {
        participant->participant =
            factory->create_participant(static_cast<fast::DomainId_t>(domainId), libraryQos);
    }
    if (participant->participant == nullptr) {
        DDS_DomainParticipantQos_finalize(&participant->qos);
        forgetParticipant(*self);
        return nullptr;
    }
    return participant.release();
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory* self,
                                                                 DDS_DomainParticipant* participant) {
    if (self == nullptr || participant == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const auto code = zul::toReturnCode(
        fast::DomainParticipantFactory::get_instance()->delete_participant(participant->participant));
    if (code == DDS_RETCODE_OK) {
        DDS_DomainParticipantQos_finalize(&participant->qos);
        delete participant;
        forgetParticipant(*self);
    }
    return code;
}
