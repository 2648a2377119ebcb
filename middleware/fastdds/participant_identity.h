// Participant identity: the two words by which requests name the participant that sent them.
#pragma once

#include "middleware/dds/qos.h"

#include <fastdds/rtps/common/GuidPrefix_t.hpp>

namespace zul {

// The words of a new participant with the final GUID prefix `prefix` (OMG DDS-RTPS 2.3, 9.3.1.5). The first
// word, which names the host, is the prefix's own. No other participant that is alive, or has just gone, has
// the same pair, though a profile file may give them the same prefix: an answer to one must not be taken for
// an answer to the other.
DDS_WireProtocolQosPolicy identifyParticipant(const eprosima::fastrtps::rtps::GuidPrefix_t& prefix);

} // namespace zul
