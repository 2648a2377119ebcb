// Serialized samples as Cyclone DDS carries them between the network and this program: whole payloads, from
// the encapsulation header to the padding, that the library neither interprets nor converts. Read with
// dds_takecdr, written with dds_writecdr.
#pragma once

#include <cstdint>
#include <dds/dds.h>
#include <dds/ddsi/ddsi_serdata.h>
#include <vector>

namespace interop {

using Bytes = std::vector<std::uint8_t>;

// Creates a keyless topic of raw samples, or returns a negative return code. `type` receives what
// newRawSample needs; the topic owns it.
dds_entity_t createRawTopic(dds_entity_t participant, const char* topicName, const char* typeName,
                            const ddsi_sertype*& type);

// A sample, padded to a multiple of 4 bytes, with one reference, which dds_writecdr takes.
ddsi_serdata* newRawSample(const ddsi_sertype* type, Bytes bytes);

// The payload of a sample; valid while the sample is referenced.
const Bytes& rawBytes(const ddsi_serdata* sample);

} // namespace interop
