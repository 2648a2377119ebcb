// The administration requests and responses as bytes, written from the OMG standards alone: DDS-RTPS 2.3 (10,
// serialized payload) and XTypes 1.2 (7.4, XCDR version 1). It shares nothing with the encoding of the shell,
// so that a byte that the shell's two ends would both misread shows here. Stricter than the standard on
// reading: each member once, each length exact.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace interop {

using Bytes = std::vector<std::uint8_t>;

// Who asks, and which of its requests it is: host, app, invocation.
using RequestId = std::array<std::int32_t, 3>;

// Which member of the union a request carries; the values are the member ids.
enum class Branch : std::uint32_t { NONE = 0, DESCRIPTION = 1, DUMMY = 2, NAME = 3, PEERS = 4 };

struct Request {
    RequestId id{};
    std::string target;
    std::int32_t kind = 0;
    Branch branch = Branch::NONE;
    std::string name; // entity, configuration or domain route, as the branch says
    bool isFinal = false;
    std::string content;
    std::int32_t dummy = 0;
    bool isFirstParticipant = false;
    std::vector<std::string> peers;
};

struct Response {
    RequestId id{};
    std::int32_t kind = 0;
    std::string message; // at most 4096 characters
    bool isFinal = true;
};

// Reads a payload with its encapsulation header, either byte order. Returns null, or what is wrong with it.
const char* decodeRequest(const Bytes& payload, Request& request);

// A payload with its encapsulation header, padded to 4 bytes; the options tell the padding.
Bytes encodeResponse(const Response& response, bool isBigEndian);

} // namespace interop
