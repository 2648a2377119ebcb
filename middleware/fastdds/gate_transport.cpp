// A chaining transport passes everything on to the one it wraps; only sending asks the gate.
#include "middleware/fastdds/gate_transport.h"

#include <fastdds/rtps/transport/ChainingTransport.h>
#include <fastdds/rtps/transport/UDPTransportDescriptor.h>

namespace zul {

namespace rtps = eprosima::fastrtps::rtps;
namespace transport = eprosima::fastdds::rtps;

namespace {

struct GateDescriptor final : transport::ChainingTransportDescriptor {
    GateDescriptor(std::shared_ptr<transport::TransportDescriptorInterface> wrapped,
                   std::shared_ptr<const Gate> itsGate)
        : ChainingTransportDescriptor(std::move(wrapped)), gate(std::move(itsGate)) {}

    transport::TransportInterface* create_transport() const override;

    std::shared_ptr<const Gate> gate;
};

class GateTransport final : public transport::ChainingTransport {
public:
    explicit GateTransport(const GateDescriptor& descriptor)
        : ChainingTransport(descriptor), gate_(descriptor.gate) {}

    // The library asks the configuration for its buffer sizes: the wrapped transport's.
    transport::TransportDescriptorInterface* get_configuration() override {
        return low_level_transport_->get_configuration();
    }

    bool send(rtps::SenderResource* wrapped, const rtps::octet* bytes, std::uint32_t size,
              rtps::LocatorsIterator* firstDestination, rtps::LocatorsIterator* lastDestination,
              const std::chrono::steady_clock::time_point& until) override {
        // What the gate holds back is dropped; the library sees it as sent, and lost on the way.
        return !gate_->isOpen() || wrapped->send(bytes, size, firstDestination, lastDestination, until);
    }

    void receive(transport::TransportReceiverInterface* receiver, const rtps::octet* bytes,
                 std::uint32_t size, const rtps::Locator_t& local, const rtps::Locator_t& remote) override {
        receiver->OnDataReceived(bytes, size, local, remote);
    }

private:
    std::shared_ptr<const Gate> gate_;
};

transport::TransportInterface* GateDescriptor::create_transport() const {
    return new GateTransport(*this); // the library owns it
}

} // namespace

void putGateInFront(const std::shared_ptr<const Gate>& gate,
                    eprosima::fastdds::dds::DomainParticipantQos& qos) {
    for (auto& descriptor : qos.transport().user_transports) {
        if (std::dynamic_pointer_cast<transport::UDPTransportDescriptor>(descriptor) != nullptr) {
            descriptor = std::make_shared<GateDescriptor>(descriptor, gate);
        }
    }
}

} // namespace zul
