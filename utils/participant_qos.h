// Helpers that edit a participant QoS in place, shared with the service programs.
#pragma once

#include "middleware/dds/qos.h"

// Names the participant "<product>: <name>", followed by ".<qualifier><suffix>" when both are given; by the
// product's name alone when all of it, counted with three separators, exceeds 254 characters (oddity 36). No
// argument may be null; "" is none. False when memory is exhausted.
bool ROUTERUtils_setParticipantName(DDS_DomainParticipantQos* qos, const char* name, const char* qualifier,
                                    const char* suffix);

// Adds the service-version property, which other participants see in discovery. False when that fails.
bool ROUTERUtils_setServiceVersion(DDS_DomainParticipantQos* qos);
