// The library's prefix is host and maker, process, participant. Only the last word tells two participants of
// one process apart, and no word tells two runs apart whose profile file fixes the prefix. So a number of
// this process and a count of its participants are added to the last word, and that is mixed into the second.
#include "middleware/fastdds/participant_identity.h"

#include <atomic>
#include <random>

namespace zul {

namespace {

// A bijection: different numbers stay different. (The constants are those of the usual 32-bit finalisers.)
std::uint32_t scramble(std::uint32_t number) {
    number = (number ^ number >> 16) * 0x85EBCA6BU;
    number = (number ^ number >> 13) * 0xC2B2AE35U;
    return number ^ number >> 16;
}

} // namespace

DDS_WireProtocolQosPolicy identifyParticipant(const eprosima::fastrtps::rtps::GuidPrefix_t& prefix) {
    static const std::uint32_t ofThisProcess = std::random_device{}();
    static std::atomic<std::uint32_t> count{0};
    const auto word = [&prefix](int first) {
        return std::uint32_t{prefix.value[first]} << 24 | std::uint32_t{prefix.value[first + 1]} << 16 |
               std::uint32_t{prefix.value[first + 2]} << 8 | std::uint32_t{prefix.value[first + 3]};
    };
    return {.rtps_host_id = word(0), .rtps_app_id = word(4) ^ scramble(word(8) + ofThisProcess + count++)};
}

} // namespace zul
