// GUIDs of entities, and their form as a key of the builtin topics.
#pragma once

#include <cstdint>

struct ROUTERUtilsGuid {
    std::uint32_t host; // each in network byte order
    std::uint32_t application;
    std::uint32_t instance;
    std::uint32_t object;
};

struct ROUTERUtilsBuiltinTopicKey {
    std::uint32_t value[4];
};

// Fills the GUID from words in the order of this machine.
void ROUTERUtils_calculateGUID(ROUTERUtilsGuid* guid, std::uint32_t host, std::uint32_t application,
                               std::uint32_t instance, std::uint32_t object);
// Each word of the GUID, converted to network byte order once more: on a little-endian machine, the words
// that it was made of.
void ROUTERUtils_guidToBuiltinTopicKey(ROUTERUtilsBuiltinTopicKey* key, const ROUTERUtilsGuid* guid);
