// CDR streams: encoding and decoding of OMG CDR with the XTypes version 1 parameter lists, over a caller's
// buffer. No allocation, no I/O. Bytes are built with shifts. Alignment counts from `origin`, the first byte
// after the encapsulation header. Every operation returns false, having consumed or written nothing, when it
// does not fit. (OMG DDS-RTPS 2.3, 9.4.2 and 10; OMG DDS XTypes 1.2, 7.4.1 and 7.4.3.)
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

// Encapsulation identifiers.
enum ZULEncapsulation : std::uint16_t {
    ZUL_ENCAPSULATION_CDR_BE = 0,
    ZUL_ENCAPSULATION_CDR_LE = 1,
    ZUL_ENCAPSULATION_PL_CDR_BE = 2,
    ZUL_ENCAPSULATION_PL_CDR_LE = 3,
};
constexpr std::size_t ZUL_ENCAPSULATION_SIZE = 4;
constexpr std::size_t ZUL_ENCAPSULATION_ALIGNMENT = 2;
constexpr bool ZULEncapsulation_isValid(std::uint16_t id) {
    return id <= ZUL_ENCAPSULATION_PL_CDR_LE;
}
constexpr bool ZULEncapsulation_isBigEndian(std::uint16_t id) {
    return (id & 1) == 0;
}
constexpr std::uint16_t ZULEncapsulation_toParameterList(std::uint16_t id) {
    return static_cast<std::uint16_t>(id | 2);
}

// Parameter headers (XTypes version 1).
constexpr std::uint16_t ZUL_PARAMETER_ID_MASK = 0x3FFF;
constexpr std::uint16_t ZUL_PARAMETER_MUST_UNDERSTAND = 0x4000;
constexpr std::uint16_t ZUL_PARAMETER_EXTENDED = 0x3F01; // followed by a 32-bit id and a 32-bit length
constexpr std::uint16_t ZUL_PARAMETER_LIST_END = 0x3F02;
constexpr std::uint16_t ZUL_PARAMETER_IGNORE = 0x3F03;
constexpr std::uint16_t ZUL_PARAMETER_EXTENDED_LENGTH = 8;
constexpr std::size_t ZUL_PARAMETER_SHORT_HEADER_SIZE = 4; // bytes
constexpr std::size_t ZUL_PARAMETER_LONG_HEADER_SIZE =
    ZUL_PARAMETER_SHORT_HEADER_SIZE + ZUL_PARAMETER_EXTENDED_LENGTH;
constexpr std::uint32_t ZUL_PARAMETER_EXTENDED_ID_MASK = 0x0FFFFFFF;
constexpr std::uint32_t ZUL_PARAMETER_EXTENDED_MUST_UNDERSTAND = 0x40000000;

enum ZULParameterForm : std::uint8_t { ZUL_PARAMETER_SHORT, ZUL_PARAMETER_LONG };

// Bytes from `position`, counted from an alignment origin, to the next multiple of a power of two.
constexpr std::size_t ZULCdr_padding(std::size_t position, std::size_t alignment) {
    return (0 - position) & (alignment - 1);
}

// Copies a text of any length. Not inline, so that the C library copies it: the string instruction that the
// compiler would put here takes longer to start, on some processors, than a text takes to be copied.
void ZULCdr_copyText(void* to, const char* from, std::size_t size);

// What encoding needs to know about where the bytes go. With `data` null nothing is stored and only
// `position` advances, which is how an exact size is counted by the very code that writes.
struct ZULCdrOutput {
    static constexpr std::size_t PADDING_STORE = 4; // bytes; padding is shorter

    std::uint8_t* data = nullptr;
    std::size_t capacity = 0; // bytes of `data`; SIZE_MAX when counting
    std::size_t position = 0;
    std::size_t origin = 0;
    bool bigEndian = false;

    // Moves to the next multiple (of at most 4), over zeroes, when `size` bytes fit after the padding.
    bool reserve(std::size_t alignment, std::size_t size) {
        const std::size_t room = capacity - position;
        const std::size_t padding = ZULCdr_padding(position - origin, alignment);
        if (padding > room || size > room - padding) {
            return false;
        }
        if (data != nullptr && room >= PADDING_STORE) {
            std::memset(data + position, 0,
                        PADDING_STORE); // one store; what comes next overwrites the excess
        } else if (data != nullptr) {
            std::memset(data + position, 0, padding);
        }
        position += padding;
        return true;
    }
    bool put8(std::uint8_t value) {
        if (capacity - position < 1) {
            return false;
        }
        if (data != nullptr) {
            data[position] = value;
        }
        ++position;
        return true;
    }
    bool put32(std::uint32_t value) {
        if (!reserve(4, 4)) {
            return false;
        }
        if (data != nullptr) {
            store32(position, value);
        }
        position += 4;
        return true;
    }
    // A string: its length with the terminator, the characters, the terminator.
    bool putString(std::string_view text) {
        const std::size_t start = position;
        const std::size_t size = text.size() + 1;
        if (size > UINT32_MAX || !put32(static_cast<std::uint32_t>(size)) || size > capacity - position) {
            position = start;
            return false;
        }
        if (data != nullptr) {
            ZULCdr_copyText(data + position, text.data(), text.size());
            data[position + text.size()] = 0;
        }
        position += size;
        return true;
    }
    // Overwrites bytes that were put before; `at` is a position that this stream has passed.
    void store16(std::size_t at, std::uint16_t value) const {
        if (bigEndian) {
            value = __builtin_bswap16(value);
        }
        std::uint8_t* to = data + at;
        to[0] = static_cast<std::uint8_t>(value);
        to[1] = static_cast<std::uint8_t>(value >> 8);
    }
    void store32(std::size_t at, std::uint32_t value) const {
        if (bigEndian) {
            value = __builtin_bswap32(value);
        }
        std::uint8_t* to = data + at;
        to[0] = static_cast<std::uint8_t>(value);
        to[1] = static_cast<std::uint8_t>(value >> 8);
        to[2] = static_cast<std::uint8_t>(value >> 16);
        to[3] = static_cast<std::uint8_t>(value >> 24);
    }
};

struct ZULCdrInput {
    const std::uint8_t* data = nullptr;
    std::size_t size = 0;
    std::size_t position = 0;
    std::size_t origin = 0;
    bool bigEndian = false;
    bool unknownEnumerator = false; // an enumeration outside its enumerators was met

    std::size_t remaining() const { return size - position; }

    // Moves to the next multiple; fails when that lies past the end.
    bool align(std::size_t alignment) {
        const std::size_t padding = ZULCdr_padding(position - origin, alignment);
        if (padding > remaining()) {
            return false;
        }
        position += padding;
        return true;
    }
    bool get8(std::uint8_t& value) {
        if (remaining() < 1) {
            return false;
        }
        value = data[position++];
        return true;
    }
    bool get16(std::uint16_t& value) {
        const std::size_t padding = ZULCdr_padding(position - origin, 2);
        if (remaining() < 2 || remaining() - 2 < padding) {
            return false;
        }
        const std::uint8_t* at = data + position + padding;
        value = static_cast<std::uint16_t>(bigEndian ? at[0] << 8 | at[1] : at[1] << 8 | at[0]);
        position += padding + 2;
        return true;
    }
    bool get32(std::uint32_t& value) {
        const std::size_t padding = ZULCdr_padding(position - origin, 4);
        if (remaining() < 4 || remaining() - 4 < padding) {
            return false;
        }
        const std::uint8_t* at = data + position + padding;
        value = std::uint32_t{at[0]} | std::uint32_t{at[1]} << 8 | std::uint32_t{at[2]} << 16 |
                std::uint32_t{at[3]} << 24;
        if (bigEndian) {
            value = __builtin_bswap32(value);
        }
        position += padding + 4;
        return true;
    }
    // A string of at most `limit` bytes with its terminator, which must be its last byte. `bytes` refers to
    // the buffer and counts the terminator; it is valid as long as the buffer.
    bool getString(std::string_view& bytes, std::size_t limit) {
        const std::size_t start = position;
        std::uint32_t length = 0;
        if (get32(length) && length != 0 && length <= limit && length <= remaining() &&
            data[position + length - 1] == 0) {
            bytes = {reinterpret_cast<const char*>(data + position), length};
            position += length;
            return true;
        }
        position = start;
        return false;
    }
};

// Encapsulation header: identifier and options, two aligned 16-bit words, most significant byte first,
// whatever the byte order of what follows; sets byte order and origin. Fails for an identifier outside 0..3.
inline bool ZULCdrOutput_putEncapsulation(ZULCdrOutput& stream, std::uint16_t id) {
    if (!ZULEncapsulation_isValid(id) ||
        !stream.reserve(ZUL_ENCAPSULATION_ALIGNMENT, ZUL_ENCAPSULATION_SIZE)) {
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
// Options are read and ignored: other stacks put a padding count there.
bool ZULCdrInput_getEncapsulation(ZULCdrInput& stream);
