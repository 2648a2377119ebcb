// A participant for the length of a test.
#pragma once

#include "middleware/dds/dds.h"

#include <gtest/gtest.h>

struct ParticipantWishes {
    bool announcesTypes = false;
    const DDS_DomainParticipantListener* listener = nullptr;
};

struct Participant {
    explicit Participant(int domain, const ParticipantWishes& wishes = {}) {
        DDS_DomainParticipantQos qos;
        DDS_DomainParticipantQos_initialize(&qos);
        qos.types.announce_descriptions = wishes.announcesTypes ? 1 : 0;
        participant =
            DDS_DomainParticipantFactory_create_participant(factory, domain, &qos, wishes.listener, 0);
        DDS_DomainParticipantQos_finalize(&qos);
        subscriber =
            DDS_DomainParticipant_create_subscriber(participant, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, 0);
        publisher =
            DDS_DomainParticipant_create_publisher(participant, &DDS_PUBLISHER_QOS_DEFAULT, nullptr, 0);
    }
    ~Participant() {
        EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(participant), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, participant), DDS_RETCODE_OK);
    }
    Participant(const Participant&) = delete;
    Participant& operator=(const Participant&) = delete;

    DDS_Topic* createTopic(const char* name, const char* type) const {
        return DDS_DomainParticipant_create_topic(participant, name, type, &DDS_TOPIC_QOS_DEFAULT, nullptr,
                                                  0);
    }
    DDS_DataReader* createReader(DDS_Topic* topic, const DDS_DataReaderQos& qos = DDS_DATAREADER_QOS_DEFAULT,
                                 const DDS_DataReaderListener* listener = nullptr) const {
        return DDS_Subscriber_create_datareader(subscriber, topic, &qos, listener, DDS_DATA_AVAILABLE_STATUS);
    }
    DDS_DataWriter* createWriter(DDS_Topic* topic,
                                 const DDS_DataWriterQos& qos = DDS_DATAWRITER_QOS_DEFAULT) const {
        return DDS_Publisher_create_datawriter(publisher, topic, &qos, nullptr, 0);
    }
    void enable() const {
        EXPECT_EQ(DDS_Entity_enable(DDS_DomainParticipant_as_entity(participant)), DDS_RETCODE_OK);
    }

    DDS_DomainParticipantFactory* factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipant* participant;
    DDS_Subscriber* subscriber;
    DDS_Publisher* publisher;
};
