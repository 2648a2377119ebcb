// Participant: registers types, creates topics, publishers and subscribers, enables them, and ends them all.
#include "middleware/fastdds/entities.h"
#include "middleware/fastdds/library_call.h"
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
        static_cast<DDS_DomainParticipant*>(self); // nothing else is handed out as a DDS_Entity
    return zul::createInLibrary(__func__, DDS_RETCODE_ERROR, [participant] {
        for (const auto& publisher : participant->publishers) {
            publisher->publisher->enable();
        }
        for (const auto& subscriber : participant->subscribers) {
            subscriber->subscriber->enable();
        }
        participant->enabled = true;
        const auto enable = [](const auto& endpoint) {
            return endpoint->enable();
        };
        return std::ranges::all_of(participant->writers, enable) &&
                       std::ranges::all_of(participant->readers, enable)
                   ? DDS_RETCODE_OK
                   : DDS_RETCODE_ERROR;
    });
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
    return DDS_DomainParticipantQos_copy(qos, &self->qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant* self, const char* typeName,
                                                     const ZULTypePlugin* plugin) {
    if (self == nullptr || typeName == nullptr || plugin == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return zul::callLibrary(__func__, DDS_RETCODE_OUT_OF_RESOURCES, [&] {
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
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant* self, const char* typeName) {
    if (self == nullptr || typeName == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return zul::callLibrary(__func__, DDS_RETCODE_OUT_OF_RESOURCES, [&] {
        const auto code = zul::toReturnCode(self->participant->unregister_type(typeName));
        if (code == DDS_RETCODE_OK) {
            self->types.erase(typeName);
        }
        return code;
    });
}

namespace {

// Wraps what the library creates and lets the participant own the wrapper; null when it cannot be created.
template <class Wrapper, class Create>
Wrapper* adopt(const char* context, std::vector<std::unique_ptr<Wrapper>>& owner, Create create) {
    return zul::createInLibrary(context, nullptr, [&]() -> Wrapper* {
        auto wrapper = std::make_unique<Wrapper>();
        return create(*wrapper) ? owner.emplace_back(std::move(wrapper)).get() : nullptr;
    });
}

// A QoS with which a publisher or subscriber leaves it to us when its endpoints start. What a profile file
// has set stays: the library takes that by itself for its own constant only, which a copy is not.
template <class Qos>
Qos withoutAutoenable(Qos qos) {
    qos.entity_factory().autoenable_created_entities = false;
    return qos;
}

// What is created in an enabled participant is enabled at once, when its QoS says so. False for null.
template <class Entity>
bool enableIfDue(Entity* entity, const DDS_DomainParticipant& participant) {
    if (entity != nullptr && participant.enabled &&
        participant.qos.entity_factory.autoenable_created_entities != 0) {
        entity->enable();
    }
    return entity != nullptr;
}

} // namespace

DDS_Publisher* DDS_DomainParticipant_create_publisher(DDS_DomainParticipant* self,
                                                      const DDS_PublisherQos* /*qos*/,
                                                      const DDS_PublisherListener* /*listener*/,
                                                      DDS_StatusMask /*mask*/) {
    return adopt(__func__, self->publishers, [self](DDS_Publisher& publisher) {
        publisher.owner = self;
        publisher.publisher = self->participant->create_publisher(
            withoutAutoenable(self->participant->get_default_publisher_qos()));
        return enableIfDue(publisher.publisher, *self);
    });
}

DDS_Subscriber* DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant* self,
                                                        const DDS_SubscriberQos* /*qos*/,
                                                        const DDS_SubscriberListener* /*listener*/,
                                                        DDS_StatusMask /*mask*/) {
    return adopt(__func__, self->subscribers, [self](DDS_Subscriber& subscriber) {
        subscriber.owner = self;
        subscriber.subscriber = self->participant->create_subscriber(
            withoutAutoenable(self->participant->get_default_subscriber_qos()));
        return enableIfDue(subscriber.subscriber, *self);
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
    return adopt(__func__, self->topics, [&](DDS_Topic& topic) {
        topic.topic = self->participant->create_topic(topicName, typeName, fast::TOPIC_QOS_DEFAULT);
        topic.adapter = type->second;
        return topic.topic != nullptr;
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
    const auto code = zul::callLibrary(__func__, DDS_RETCODE_ERROR, [self] {
        // The library releases a writer's samples while its heartbeats go on, which then may look for gaps
        // between released ones for ever, with the lock that the deletion waits for.
        for (const auto& writer : self->writers) {
            std::size_t count = 0;
            if (writer->writer->is_enabled()) {
                writer->writer->clear_history(&count);
            }
        }
        return zul::toReturnCode(self->participant->delete_contained_entities());
    });
    if (code == DDS_RETCODE_OK) {
        self->readers.clear();
        self->writers.clear();
        self->subscribers.clear();
        self->publishers.clear();
        self->topics.clear();
    }
    return code;
}
