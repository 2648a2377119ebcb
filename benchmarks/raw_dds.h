// The baseline's DDS: the library used directly, with an opaque payload. Endpoints have the QoS that the
// client gives its own (reliable, volatile, keep all, 32 samples, heartbeats every 100 ms, no delay before an
// acknowledgement), written out here once more so that a fault in the product's mapping shows as a
// difference instead of slowing both sides.
//
// A failure to create an entity ends the process with a message: a benchmark has nothing to fall back on.
#pragma once

#include <cstdint>
#include <fastdds/dds/domain/DomainParticipant.hpp>
#include <fastdds/dds/publisher/DataWriter.hpp>
#include <fastdds/dds/publisher/Publisher.hpp>
#include <fastdds/dds/subscriber/DataReader.hpp>
#include <fastdds/dds/subscriber/DataReaderListener.hpp>
#include <fastdds/dds/subscriber/Subscriber.hpp>
#include <functional>
#include <string>
#include <vector>

namespace raw {

constexpr std::size_t PAYLOAD_MAX = 8192; // bytes

// One sample: the bytes of its serialized payload, encapsulation header included.
using Bytes = std::vector<std::uint8_t>;

// A pair of topics that carry requests and responses, with their types' names.
struct TopicPair {
    const char* request;
    const char* requestType;
    const char* response;
    const char* responseType;
};
// The topics of the routing shell, and a pair of the baseline's own.
extern const TopicPair ADMINISTRATION;
extern const TopicPair BASELINE;

// Owns a participant, enabled, with the default profile of the library's profile file, and what is made
// in it.
class Participant {
public:
    // `receiveBuffer`: bytes of its sockets' receive buffers, 0 for the system's default.
    explicit Participant(int domainId, std::uint32_t receiveBuffer = 0);
    ~Participant();
    Participant(const Participant&) = delete;
    Participant& operator=(const Participant&) = delete;

    // The results live as long as the participant, and so must the listener. `blocking` is how long one write
    // of the library's waits for room.
    eprosima::fastdds::dds::DataWriter* createWriter(const char* topic, const char* type,
                                                     const eprosima::fastrtps::Duration_t& blocking);
    eprosima::fastdds::dds::DataReader* createReader(const char* topic, const char* type,
                                                     eprosima::fastdds::dds::DataReaderListener* listener);

private:
    eprosima::fastdds::dds::Topic* createTopic(const char* name, const char* type);

    eprosima::fastdds::dds::DomainParticipant* participant_ = nullptr;
    eprosima::fastdds::dds::Publisher* publisher_ = nullptr;
    eprosima::fastdds::dds::Subscriber* subscriber_ = nullptr;
};

// Takes every sample on the library's own thread and hands its bytes on; they are valid during the call.
class Listener final : public eprosima::fastdds::dds::DataReaderListener {
public:
    explicit Listener(std::function<void(const Bytes&)> handler) : handler_(std::move(handler)) {}
    void on_data_available(eprosima::fastdds::dds::DataReader* reader) override;

private:
    std::function<void(const Bytes&)> handler_;
    Bytes bytes_;
};

constexpr int WRITE_SECONDS = 60; // the client's longest wait for room

// Writes within WRITE_SECONDS; false when they run out. The library reports a time-out early when all
// unacknowledged samples are acknowledged at once, so this asks again until the time is really over.
bool write(eprosima::fastdds::dds::DataWriter* writer, const Bytes& bytes);

// Ends the process with status 1 and the message.
[[noreturn]] void fail(const char* what);

} // namespace raw
