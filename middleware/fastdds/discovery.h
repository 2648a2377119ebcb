// Discovery: hands what the library finds out about other participants and their endpoints to a listener, as
// the data of the standard's builtin topics.
#pragma once

#include "middleware/dds/builtin_topics.h"

#include <fastdds/dds/domain/DomainParticipantListener.hpp>

namespace zul {

class DiscoveryBridge final : public eprosima::fastdds::dds::DomainParticipantListener {
public:
    // Before the participant is created.
    void forwardTo(const DDS_DomainParticipantListener& listener) {
        listener_ = listener;
        isWanted_ = true;
    }
    bool isWanted() const { return isWanted_; }

    void on_participant_discovery(eprosima::fastdds::dds::DomainParticipant* participant,
                                  eprosima::fastrtps::rtps::ParticipantDiscoveryInfo&& info) override;
    void on_subscriber_discovery(eprosima::fastdds::dds::DomainParticipant* participant,
                                 eprosima::fastrtps::rtps::ReaderDiscoveryInfo&& info) override;
    void on_publisher_discovery(eprosima::fastdds::dds::DomainParticipant* participant,
                                eprosima::fastrtps::rtps::WriterDiscoveryInfo&& info) override;

private:
    DDS_DomainParticipantListener listener_{};
    bool isWanted_ = false;
};

} // namespace zul
