// What the opaque DDS_* types are. A participant owns everything that was created in it; the wrappers of
// publishers, subscribers, topics, writers and readers live until its contained entities are deleted.
#pragma once

#include "middleware/dds/dds.h"
#include "middleware/fastdds/bounded_wait.h"
#include "middleware/fastdds/delivery_thread.h"
#include "middleware/fastdds/discovery.h"
#include "middleware/fastdds/loans.h"
#include "middleware/fastdds/matched_endpoints.h"
#include "middleware/fastdds/read_conditions.h"
#include "middleware/fastdds/type_adapter.h"

#include <atomic>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/DataWriterListener.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <fastdds/dds/topic/Topic.hpp>
#include <fastdds/dds/topic/TypeSupport.hpp>
#include <map>
#include <memory>
#include <string>
#include <vector>

struct DDS_Entity {};

struct DDS_Topic {
    eprosima::fastdds::dds::Topic* topic = nullptr;
    std::shared_ptr<zul::TypeAdapter> adapter;
};

struct DDS_DataWriter final : eprosima::fastdds::dds::DataWriterListener {
    eprosima::fastdds::dds::DataWriter* writer = nullptr;
    std::shared_ptr<zul::TypeAdapter> adapter;
    zul::BoundedWait wait; // for room, in a write
    zul::MatchedEndpoints matched;
    DDS_DataWriterListener listener{};

    bool enable() { return writer->enable() == eprosima::fastrtps::types::ReturnCode_t::RETCODE_OK; }
    void on_publication_matched(eprosima::fastdds::dds::DataWriter* writer,
                                const eprosima::fastdds::dds::PublicationMatchedStatus& status) override;
};

struct DDS_DataReader final : eprosima::fastdds::dds::DataReaderListener {
    using Reader = eprosima::fastdds::dds::DataReader;

    Reader* reader = nullptr;
    std::shared_ptr<zul::TypeAdapter> adapter;
    zul::MatchedEndpoints matched;
    DDS_Long maxSamples = 0;                    // most samples of one read or take
    std::atomic<bool> leavesReadSamples{false}; // a read has left samples that a take can find
    std::atomic<bool> hasToldOfLoss{false};
    zul::Loans loans;
    zul::ReadConditions conditions;
    std::unique_ptr<zul::DeliveryThread> delivery;

    bool enable() { return reader->enable() == eprosima::fastrtps::types::ReturnCode_t::RETCODE_OK; }
    void note(DDS_StatusMask status);
    void tellOfLoss();
    void on_subscription_matched(Reader*, const eprosima::fastdds::dds::SubscriptionMatchedStatus&) override;
    void on_sample_rejected(Reader*, const eprosima::fastrtps::SampleRejectedStatus&) override;
    void on_data_available(Reader*) override { note(DDS_DATA_AVAILABLE_STATUS); }
    void on_requested_deadline_missed(Reader*,
                                      const eprosima::fastrtps::RequestedDeadlineMissedStatus&) override {
        note(DDS_REQUESTED_DEADLINE_MISSED_STATUS);
    }
    void on_liveliness_changed(Reader*, const eprosima::fastrtps::LivelinessChangedStatus&) override {
        note(DDS_LIVELINESS_CHANGED_STATUS);
    }
    void
    on_requested_incompatible_qos(Reader*,
                                  const eprosima::fastdds::dds::RequestedIncompatibleQosStatus&) override {
        note(DDS_REQUESTED_INCOMPATIBLE_QOS_STATUS);
    }
    void on_sample_lost(Reader*, const eprosima::fastdds::dds::SampleLostStatus&) override {
        note(DDS_SAMPLE_LOST_STATUS);
    }
};

struct DDS_Publisher {
    DDS_DomainParticipant* owner = nullptr;
    eprosima::fastdds::dds::Publisher* publisher = nullptr;
};

struct DDS_Subscriber {
    DDS_DomainParticipant* owner = nullptr;
    eprosima::fastdds::dds::Subscriber* subscriber = nullptr;
};

struct DDS_DomainParticipant final : DDS_Entity {
    DDS_DomainParticipant() { DDS_DomainParticipantQos_initialize(&qos); }
    ~DDS_DomainParticipant() { DDS_DomainParticipantQos_finalize(&qos); }
    DDS_DomainParticipant(const DDS_DomainParticipant&) = delete;
    DDS_DomainParticipant& operator=(const DDS_DomainParticipant&) = delete;

    zul::DiscoveryBridge discovery; // called by the library until the participant is deleted
    eprosima::fastdds::dds::DomainParticipant* participant = nullptr;
    bool enabled = false; // whether its entities are; the library's participant always is
    DDS_DomainParticipantQos qos;
    std::map<std::string, std::shared_ptr<zul::TypeAdapter>, std::less<>> types;
    std::vector<std::unique_ptr<DDS_Topic>> topics;
    std::vector<std::unique_ptr<DDS_Publisher>> publishers;
    std::vector<std::unique_ptr<DDS_Subscriber>> subscribers;
    std::vector<std::unique_ptr<DDS_DataWriter>> writers;
    std::vector<std::unique_ptr<DDS_DataReader>> readers;
};

namespace zul {

// Gives a new endpoint to its participant, and then starts it if that is due: the library calls it from then
// on, and what it calls must be complete. Null, and `remove` is called, when it does not start.
template <class Endpoint, class Remove>
Endpoint* adoptEndpoint(std::vector<std::unique_ptr<Endpoint>>& owner, std::unique_ptr<Endpoint> created,
                        bool isDue, Remove remove) {
    Endpoint* endpoint = owner.emplace_back(std::move(created)).get();
    if (!isDue || callLibrary(__func__, false, [endpoint] { return endpoint->enable(); })) {
        return endpoint;
    }
    remove(*endpoint);
    owner.pop_back();
    return nullptr;
}

} // namespace zul
