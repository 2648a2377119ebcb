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

namespace zul {

// Takes a type's adapter out of the library's shared pointer, for as long as a wrapper needs it.
using AdapterPtr = std::shared_ptr<TypeAdapter>;

} // namespace zul

struct DDS_Entity {};

struct DDS_Topic {
    eprosima::fastdds::dds::Topic* topic = nullptr;
    zul::AdapterPtr adapter;
};

struct DDS_DataWriter final : eprosima::fastdds::dds::DataWriterListener {
    eprosima::fastdds::dds::DataWriter* writer = nullptr;
    zul::AdapterPtr adapter;
    zul::BoundedWait wait; // for room, in a write
    zul::MatchedEndpoints matched;
    DDS_DataWriterListener listener{};

    bool isEnabled() const { return writer->is_enabled(); }
    void on_publication_matched(eprosima::fastdds::dds::DataWriter* writer,
                                const eprosima::fastdds::dds::PublicationMatchedStatus& status) override;
};

struct DDS_DataReader final : eprosima::fastdds::dds::DataReaderListener {
    eprosima::fastdds::dds::DataReader* reader = nullptr;
    zul::AdapterPtr adapter;
    zul::MatchedEndpoints matched;
    DDS_Long maxSamples = 0; // most samples of one read or take
    std::atomic<bool> leavesReadSamples{false};
    std::atomic<bool> hasToldOfLoss{false};
    zul::Loans loans;
    zul::ReadConditions conditions;
    std::unique_ptr<zul::DeliveryThread> delivery;

    bool isEnabled() const { return reader->is_enabled(); }
    void note(DDS_StatusMask status);
    void tellOfLoss();
    void on_data_available(eprosima::fastdds::dds::DataReader* reader) override;
    void on_subscription_matched(eprosima::fastdds::dds::DataReader* reader,
                                 const eprosima::fastdds::dds::SubscriptionMatchedStatus& status) override;
    void
    on_requested_deadline_missed(eprosima::fastdds::dds::DataReader* reader,
                                 const eprosima::fastrtps::RequestedDeadlineMissedStatus& status) override;
    void on_liveliness_changed(eprosima::fastdds::dds::DataReader* reader,
                               const eprosima::fastrtps::LivelinessChangedStatus& status) override;
    void on_sample_rejected(eprosima::fastdds::dds::DataReader* reader,
                            const eprosima::fastrtps::SampleRejectedStatus& status) override;
    void on_requested_incompatible_qos(
        eprosima::fastdds::dds::DataReader* reader,
        const eprosima::fastdds::dds::RequestedIncompatibleQosStatus& status) override;
    void on_sample_lost(eprosima::fastdds::dds::DataReader* reader,
                        const eprosima::fastdds::dds::SampleLostStatus& status) override;
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
    bool enabled = false; // its entities are; the library's participant is from the start
    DDS_DomainParticipantQos qos;
    std::map<std::string, zul::AdapterPtr, std::less<>> types;
    std::vector<std::unique_ptr<DDS_Topic>> topics;
    std::vector<std::unique_ptr<DDS_Publisher>> publishers;
    std::vector<std::unique_ptr<DDS_Subscriber>> subscribers;
    std::vector<std::unique_ptr<DDS_DataWriter>> writers;
    std::vector<std::unique_ptr<DDS_DataReader>> readers;
};
