#include "middleware/cdr_stream.h"

bool ZULCdrOutput_putEncapsulation(ZULCdrOutput& stream, std::uint16_t id) {
    if (!ZULEncapsulation_isValid(id) || stream.capacity - stream.position < ZUL_ENCAPSULATION_SIZE) {
        return false;
    }
    const std::uint8_t header[ZUL_ENCAPSULATION_SIZE] = {0, static_cast<std::uint8_t>(id), 0, 0};
    if (stream.data != nullptr) {
        std::memcpy(stream.data + stream.position, header, sizeof(header));
    }
    stream.position += sizeof(header);
    stream.bigEndian = ZULEncapsulation_isBigEndian(id);
    stream.origin = stream.position;
    return true;
}

bool ZULCdrInput_getEncapsulation(ZULCdrInput& stream) {
    if (stream.remaining() < ZUL_ENCAPSULATION_SIZE) {
        return false;
    }
    const std::uint8_t* header = stream.data + stream.position;
    const auto id = static_cast<std::uint16_t>(header[0] << 8 | header[1]);
    if (!ZULEncapsulation_isValid(id)) {
        return false;
    }
    stream.position += ZUL_ENCAPSULATION_SIZE;
    stream.origin = stream.position;
    stream.bigEndian = ZULEncapsulation_isBigEndian(id);
    return true;
}
