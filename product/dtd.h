// The document type definitions of configuration documents, embedded from resource/dtd. Each is an ordered
// array of chunks of 1024 characters (the last one shorter): join them, never read one alone.
#pragma once

#include <cstdint>

constexpr std::int32_t ROUTER_DTD_CHUNK_COUNT = 57;
constexpr std::int32_t FEDERATION_DTD_CHUNK_COUNT = 53;

extern const char* const ROUTER_DTD[ROUTER_DTD_CHUNK_COUNT];
extern const char* const FEDERATION_DTD[FEDERATION_DTD_CHUNK_COUNT];
