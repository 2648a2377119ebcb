// Gate transport: a network transport that can be kept from sending until its participant can hear.
//
// The library announces a new participant before its receivers are registered, so the answer of a peer that
// is quicker than that (some 0.2 ms) is lost, and the peer does not answer again before its next periodic
// announcement, seconds later. A closed gate lets nothing out; the announcements after its opening are
// answered to a participant that listens.
#pragma once

#include <atomic>
#include <fastdds/dds/domain/qos/DomainParticipantQos.hpp>
#include <memory>

namespace zul {

// Shared by the transports of one participant. Closed at first; once open it stays open.
class Gate {
public:
    void open() { open_.store(true); }
    bool isOpen() const { return open_.load(); }

private:
    std::atomic<bool> open_{false};
};

// Puts the gate in front of each UDP transport of `qos`. The others stay as they are: shared memory because
// the library recognises it by its class, TCP because its peers are asked again once they are connected.
void putGateInFront(const std::shared_ptr<const Gate>& gate,
                    eprosima::fastdds::dds::DomainParticipantQos& qos);

} // namespace zul
