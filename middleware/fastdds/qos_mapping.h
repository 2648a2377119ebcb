// Mapping of this system's QoS records, return codes and handles to the library's and back.
#pragma once

#include "middleware/dds/dds.h"

#include <fastdds/dds/domain/qos/DomainParticipantQos.hpp>
#include <fastdds/dds/publisher/qos/DataWriterQos.hpp>
#include <fastdds/dds/subscriber/SampleInfo.hpp>
#include <fastdds/dds/subscriber/qos/DataReaderQos.hpp>
#include <fastrtps/types/TypesBase.h>

namespace zul {

// `library` holds the library's defaults, with what its profile file says.
void applyParticipantQos(const DDS_DomainParticipantQos& qos,
                         eprosima::fastdds::dds::DomainParticipantQos& library);
eprosima::fastdds::dds::DataWriterQos toLibrary(const DDS_DataWriterQos& qos);
eprosima::fastdds::dds::DataReaderQos toLibrary(const DDS_DataReaderQos& qos);

// The library uses the standard's numbers.
inline DDS_ReturnCode_t toReturnCode(const eprosima::fastrtps::types::ReturnCode_t& code) {
    return static_cast<DDS_ReturnCode_t>(code());
}
DDS_InstanceHandle_t toHandle(const eprosima::fastrtps::rtps::InstanceHandle_t& handle);
DDS_SampleInfo toSampleInfo(const eprosima::fastdds::dds::SampleInfo& info);

} // namespace zul
