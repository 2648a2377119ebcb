#include "middleware/cdr/stream.h"

void ZULCdr_copyText(void* to, const char* from, std::size_t size) {
    std::memcpy(to, from, size);
}

bool ZULCdrInput_getEncapsulation(ZULCdrInput& stream) {
    const std::size_t padding = ZULCdr_padding(stream.position - stream.origin, ZUL_ENCAPSULATION_ALIGNMENT);
    if (stream.remaining() < padding + ZUL_ENCAPSULATION_SIZE) {
        return false;
    }
    const std::uint8_t* header = stream.data + stream.position + padding;
    const auto id = static_cast<std::uint16_t>(header[0] << 8 | header[1]);
    if (!ZULEncapsulation_isValid(id)) {
        return false;
    }
    stream.position += padding + ZUL_ENCAPSULATION_SIZE;
    stream.origin = stream.position;
    stream.bigEndian = ZULEncapsulation_isBigEndian(id);
    return true;
}
