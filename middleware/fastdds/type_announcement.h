// Type announcement: a type code as the library's own type description, which it announces with an endpoint
// so that a participant that knows nothing of the type can list its members.
#pragma once

#include "middleware/idl/type_code.h"

#include <fastdds/dds/topic/TopicDataType.hpp>

namespace zul {

// Attaches the description to a type before it is registered. A type that the library cannot describe gets
// none: it works as well, but its members are not listed.
void announceType(eprosima::fastdds::dds::TopicDataType& type, const DDS_TypeCode& code);

} // namespace zul
