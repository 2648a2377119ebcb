// Basic types of the platform: the OMG IDL primitive mappings, return codes, durations and handles that the
// types and the DDS API build on. (OMG DDS 1.4, 2.3.3; OMG IDL to C mapping.)
#pragma once

#include <cstdint>

using DDS_Boolean = std::uint8_t; // 0 or 1
using DDS_Long = std::int32_t;
using DDS_UnsignedLong = std::uint32_t;

// DDS ReturnCode_t (OMG DDS 1.4, 2.2.1.1).
enum DDS_ReturnCode_t : std::int32_t {
    DDS_RETCODE_OK = 0,
    DDS_RETCODE_ERROR = 1,
    DDS_RETCODE_UNSUPPORTED = 2,
    DDS_RETCODE_BAD_PARAMETER = 3,
    DDS_RETCODE_PRECONDITION_NOT_MET = 4,
    DDS_RETCODE_OUT_OF_RESOURCES = 5,
    DDS_RETCODE_NOT_ENABLED = 6,
    DDS_RETCODE_IMMUTABLE_POLICY = 7,
    DDS_RETCODE_INCONSISTENT_POLICY = 8,
    DDS_RETCODE_ALREADY_DELETED = 9,
    DDS_RETCODE_TIMEOUT = 10,
    DDS_RETCODE_NO_DATA = 11,
    DDS_RETCODE_ILLEGAL_OPERATION = 12,
};

constexpr DDS_Long DDS_LENGTH_UNLIMITED = -1;

// Duration_t: whole seconds plus nanoseconds (0..999'999'999).
struct DDS_Duration_t {
    DDS_Long sec;
    DDS_UnsignedLong nanosec;
};
constexpr DDS_Duration_t DDS_DURATION_ZERO{0, 0};
constexpr DDS_Duration_t DDS_DURATION_INFINITE{0x7FFFFFFF, 0x7FFFFFFF};

// Time_t: seconds and nanoseconds (0..999'999'999) since the epoch of the platform's clock.
struct DDS_Time_t {
    DDS_Long sec;
    DDS_UnsignedLong nanosec;
};
constexpr DDS_Time_t DDS_TIME_INVALID{-1, 0xFFFFFFFF};

// InstanceHandle_t: opaque 16 bytes; only equality and "nil" mean anything to a caller.
struct DDS_InstanceHandle_t {
    std::uint8_t value[16];
    DDS_Boolean isValid;
    bool operator==(const DDS_InstanceHandle_t&) const = default;
};
constexpr DDS_InstanceHandle_t DDS_HANDLE_NIL{};

// How a data-type operation treats pointers, optional members and owned memory of a sample.
struct DDS_TypeAllocationParams_t {
    DDS_Boolean allocate_pointers;
    DDS_Boolean allocate_optional_members;
    DDS_Boolean allocate_memory;
};
struct DDS_TypeDeallocationParams_t {
    DDS_Boolean delete_pointers;
    DDS_Boolean delete_optional_members;
};
constexpr DDS_TypeAllocationParams_t DDS_TYPE_ALLOCATION_PARAMS_DEFAULT{1, 0, 1};
constexpr DDS_TypeDeallocationParams_t DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT{1, 1};
