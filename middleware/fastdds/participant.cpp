// Participant: type registration, topics, publishers and subscribers, enabling, and the orderly end of all of
// them.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/qos_mapping.h"

#include <algorithm>

namespace fast = eprosima::fastdds::dds;

DDS_Entity* DDS_DomainParticipant_as_entity(DDS_DomainParticipant* self) {
    return self;
}

DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity* self) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    auto* participant =
        static_cast<DDS_DomainParticipant*>(self); // the only entities that can be had as such
    const auto code = zul::toReturnCode(participant->participant->enable());
    // The library does not say so when an endpoint could not be started.
    const bool allEnabled = std::all_of(participant->writers.begin(), participant->writers.end(),
                                        [](const auto& writer) { return writer->writer->is_enabled(); }) &&
                            std::all_of(participant->readers.begin(), participant->readers.end(),
                                        [](const auto& reader) { return reader->reader->is_enabled(); });
    return code == DDS_RETCODE_OK && !allEnabled ? DDS_RETCODE_ERROR : code;
}

DDS_ReturnCode_t DDS_DomainParticipant_get_default_datareader_qos(DDS_DomainParticipant* self,
                                                                  DDS_DataReaderQos* qos) {
    if (self == nullptr || qos == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    *qos = DDS_DATAREADER_QOS_DEFAULT;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DomainParticipant_get_default_datawriter_qos(DDS_DomainParticipant* self,
                                                                  DDS_DataWriterQos* qos) {
    if (self == nullptr || qos == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    *qos = DDS_DATAWRITER_QOS_DEFAULT;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant* self, DDS_DomainParticipantQos* qos) {
    if (self == nullptr || qos == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (!DDS_DomainParticipantQos_copy(qos, &self->qos)) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    const auto& prefix = self->participant->guid().guidPrefix.value;
    const auto word = [&prefix](int first) {
        return DDS_UnsignedLong{prefix[first]} << 24 | DDS_UnsignedLong{prefix[first + 1]} << 16 |
               DDS_UnsignedLong{prefix[first + 2]} << 8 | DDS_UnsignedLong{prefix[first + 3]};
    };
    qos->wire_protocol = {.rtps_host_id = word(0), .rtps_app_id = word(4)};
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant* self, const char* typeName,
                                                     const ZULTypePlugin* plugin) {
    if (self == nullptr || typeName == nullptr || plugin == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    auto adapter =
        std::make_shared<zul::TypeAdapter>(typeName, *plugin, self->qos.types.announce_descriptions != 0);
    if (!adapter->isComplete()) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    fast::TypeSupport support;
    support.std::shared_ptr<fast::TopicDataType>::operator=(adapter);
    const auto code = zul::toReturnCode(self->participant->register_type(support, typeName));
    if (code == DDS_RETCODE_OK) {
        self->types[typeName] = adapter;
    }
    return code;
}

DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant* self, const char* typeName) {
    if (self == nullptr || typeName == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const auto code = zul::toReturnCode(self->participant->unregister_type(typeName));
    if (code == DDS_RETCODE_OK) {
        self->types.erase(typeName);
    }
    return code;
}

namespace {

// Wraps what the library created and lets the participant own the wrapper; null for null.
template <class Wrapper, class Fill>
Wrapper* adopt(std::vector<std::unique_ptr<Wrapper>>& owner, const void* created, Fill fill) {
    if (created == nullptr) {
        return nullptr;
    }
    auto wrapper = std::make_unique<Wrapper>();
    fill(*wrapper);
    return owner.emplace_back(std::move(wrapper)).get();
}

} // namespace

DDS_Publisher* DDS_DomainParticipant_create_publisher(DDS_DomainParticipant* self,
                                                      const DDS_PublisherQos* /*qos*/,
                                                      const DDS_PublisherListener* /*listener*/,
                                                      DDS_StatusMask /*mask*/) {
    fast::Publisher* created = self->participant->create_publisher(fast::PUBLISHER_QOS_DEFAULT);
    return adopt(self->publishers, created, [&](DDS_Publisher& publisher) {
        publisher.owner = self;
        publisher.publisher = created;
    });
}

DDS_Subscriber* DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant* self,
                                                        const DDS_SubscriberQos* /*qos*/,
                                                        const DDS_SubscriberListener* /*listener*/,
                                                        DDS_StatusMask /*mask*/) {
    fast::Subscriber* created = self->participant->create_subscriber(fast::SUBSCRIBER_QOS_DEFAULT);
    return adopt(self->subscribers, created, [&](DDS_Subscriber& subscriber) {
        subscriber.owner = self;
        subscriber.subscriber = created;
    });
}

DDS_Topic* DDS_DomainParticipant_create_topic(DDS_DomainParticipant* self, const char* topicName,
                                              const char* typeName, const DDS_TopicQos* /*qos*/,
                                              const DDS_TopicListener* /*listener*/,
                                              DDS_StatusMask /*mask*/) {
    if (topicName == nullptr || typeName == nullptr) {
        return nullptr;
    }
    const auto type = self->types.find(typeName);
    if (type == self->types.end()) {
        return nullptr;
    }
    fast::Topic* created = self->participant->create_topic(topicName, typeName, fast::TOPIC_QOS_DEFAULT);
    return adopt(self->topics, created, [&](DDS_Topic& topic) {
        topic.topic = created;
        topic.adapter = type->second;
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant* self) {
    if (self == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    for (const auto& reader : self->readers) {
        if (reader->delivery != nullptr) {
            reader->delivery->stop();
        }
    }
    const auto code = zul::toReturnCode(self->participant->delete_contained_entities());
    if (code == DDS_RETCODE_OK) {
        self->readers.clear();
        self->writers.clear();
        self->subscribers.clear();
        self->publishers.clear();
        self->topics.clear();
    }
    return code;
}
