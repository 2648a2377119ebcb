// The standard's defaults, whatever those of the DDS library are, and the records that own memory. A change
// of a property prepares its copies first, so a failed one leaves the list as it was.
#include "middleware/dds/qos.h"

const DDS_DataWriterQos DDS_DATAWRITER_QOS_DEFAULT{
    .durability = {DDS_VOLATILE_DURABILITY_QOS},
    .reliability = {DDS_RELIABLE_RELIABILITY_QOS, {0, 100'000'000}},
    .history = {DDS_KEEP_LAST_HISTORY_QOS, 1},
    .resource_limits = {DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED},
    .rtps_reliable_writer = {32, 256, {0, 100'000'000}},
};

const DDS_DataReaderQos DDS_DATAREADER_QOS_DEFAULT{
    .durability = {DDS_VOLATILE_DURABILITY_QOS},
    .reliability = {DDS_BEST_EFFORT_RELIABILITY_QOS, {0, 100'000'000}},
    .history = {DDS_KEEP_LAST_HISTORY_QOS, 1},
    .resource_limits = {DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED, DDS_LENGTH_UNLIMITED},
    .rtps_reliable_reader = {DDS_DURATION_ZERO, {0, 500'000'000}},
};

namespace {

// The property of that name, or a new one at the end; null when the list is full or memory exhausted.
DDS_PropertyQosPolicy_Property* findOrAdd(DDS_PropertyQosPolicy& policy, const char* name,
                                          const char* context) {
    auto& list = policy.value;
    const DDS_Long length = list.length;
    for (DDS_Long i = 0; i < length; ++i) {
        if (std::strcmp(list.contiguous[i].name, name) == 0) {
            return &list.contiguous[i];
        }
    }
    const bool hasRoom =
        length < DDS_PROPERTY_LIST_MAX && ZULSequence::ensure_length(&list, length + 1, length + 1, context);
    return hasRoom ? &list.contiguous[length] : nullptr;
}

} // namespace

DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_assert_property(DDS_PropertyQosPolicy* policy, const char* name,
                                                             const char* value, DDS_Boolean propagate) {
    if (policy == nullptr || name == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    using Element = ZULSequenceElement<DDS_PropertyQosPolicy_Property>;
    const DDS_PropertyQosPolicy_Property wanted{const_cast<char*>(name), const_cast<char*>(value), propagate};
    DDS_PropertyQosPolicy_Property fresh{};
    DDS_PropertyQosPolicy_Property* slot =
        Element::copy(fresh, wanted) ? findOrAdd(*policy, name, __func__) : nullptr;
    if (slot != nullptr) {
        std::swap(*slot, fresh);
    }
    Element::finalize(fresh, DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT);
    return slot != nullptr ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

void DDS_DomainParticipantQos_initialize(DDS_DomainParticipantQos* self) {
    *self = {};
    self->entity_factory.autoenable_created_entities = 1;
    self->database.shutdown_cleanup_period = {1, 0};
    ZULSequence::reset(self->property.value);
}

void DDS_DomainParticipantQos_finalize(DDS_DomainParticipantQos* self) {
    DDS_String_free(self->participant_name.name);
    self->participant_name.name = nullptr;
    ZULSequence::finalize(&self->property.value, __func__);
}

bool DDS_DomainParticipantQos_copy(DDS_DomainParticipantQos* self, const DDS_DomainParticipantQos* source) {
    self->entity_factory = source->entity_factory;
    self->database = source->database;
    self->types = source->types;
    self->wire_protocol = source->wire_protocol;
    return ZULSequenceElement<char*>::copy(self->participant_name.name, source->participant_name.name) &&
           ZULSequence::copy(&self->property.value, &source->property.value, __func__);
}
