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

DDS_PropertyQosPolicy_Property* find(const DDS_PropertyQosPolicy* policy, const char* name) {
    const auto& list = policy->value;
    for (DDS_Long i = 0; i < list.length; ++i) {
        if (std::strcmp(list.contiguous[i].name, name) == 0) {
            return &list.contiguous[i];
        }
    }
    return nullptr;
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
    if (!Element::copy(fresh, wanted)) {
        Element::finalize(fresh, DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT);
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    DDS_PropertyQosPolicy_Property* slot = find(policy, name);
    if (slot == nullptr) {
        const DDS_Long length = policy->value.length;
        const bool hasRoom = length < DDS_PROPERTY_LIST_MAX &&
                             ZULSequence::ensure_length(&policy->value, length + 1, length + 1, __func__);
        slot = hasRoom ? ZULSequence::get_reference(&policy->value, length, __func__) : nullptr;
    }
    if (slot == nullptr) {
        Element::finalize(fresh, DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT);
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    Element::finalize(*slot, DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT);
    *slot = fresh;
    return DDS_RETCODE_OK;
}

const char* DDS_PropertyQosPolicyHelper_lookup_property(const DDS_PropertyQosPolicy* policy,
                                                        const char* name) {
    const DDS_PropertyQosPolicy_Property* found = find(policy, name);
    return found != nullptr ? found->value : nullptr;
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
