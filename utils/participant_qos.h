// Helpers that edit a participant QoS in place, shared with the service programs.
#pragma once

#include "middleware/dds/qos.h"

// Names the participant "<product>: <name>", with ".<qualifier><suffix>" behind it when both are given; the
// product name alone when all of it, counted with three separators, would exceed 254 characters. No argument
// may be null; "" is none. False when memory is exhausted.
bool ROUTERUtils_setParticipantName(DDS_DomainParticipantQos* qos, const char* name, const char* qualifier,
                                    const char* suffix);

// Adds the service-version property, which other participants see in discovery. False when it cannot be
// added.
bool ROUTERUtils_setServiceVersion(DDS_DomainParticipantQos* qos);
