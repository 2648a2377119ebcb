// The standard's communication status bits that readers deliver (OMG DDS 1.4, 2.2.4.1).
#pragma once

#include "middleware/dds/dds.h"

namespace zul {
constexpr DDS_StatusMask STATUS_REQUESTED_DEADLINE_MISSED = 1U << 2;
constexpr DDS_StatusMask STATUS_REQUESTED_INCOMPATIBLE_QOS = 1U << 6;
constexpr DDS_StatusMask STATUS_SAMPLE_LOST = 1U << 7;
constexpr DDS_StatusMask STATUS_SAMPLE_REJECTED = 1U << 8;
constexpr DDS_StatusMask STATUS_LIVELINESS_CHANGED = 1U << 12;
} // namespace zul
