// Parameter lists over CDR streams, writing and reading, in both header forms (OMG DDS XTypes 1.2, 7.4.1.2,
// version 1 encoding). In a header because every member of every request passes through here. What fails
// leaves the stream where it stopped.
#pragma once

#include "middleware/cdr/stream.h"

// One parameter: its header, the value that `putValue` writes, and then, in the header, the value's exact
// length. Fails when a short header cannot hold the id or the length.
template <class PutValue>
bool ZULCdrOutput_putParameter(ZULCdrOutput& stream, std::uint32_t id, ZULParameterForm form,
                               PutValue putValue) {
    const bool isShort = form == ZUL_PARAMETER_SHORT;
    const std::size_t headerSize = isShort ? ZUL_PARAMETER_SHORT_HEADER_SIZE : ZUL_PARAMETER_LONG_HEADER_SIZE;
    if ((isShort && id >= ZUL_PARAMETER_EXTENDED) || !stream.reserve(4, headerSize)) {
        return false;
    }
    if (stream.data != nullptr && isShort) {
        stream.store16(stream.position, static_cast<std::uint16_t>(id));
    } else if (stream.data != nullptr) {
        stream.store16(stream.position, ZUL_PARAMETER_EXTENDED | ZUL_PARAMETER_MUST_UNDERSTAND);
        stream.store16(stream.position + 2, ZUL_PARAMETER_EXTENDED_LENGTH);
        stream.store32(stream.position + 4, id);
    }
    stream.position += headerSize;
    const std::size_t start = stream.position;
    if (!putValue()) {
        return false;
    }
    const std::size_t length = stream.position - start;
    if (length > (isShort ? UINT16_MAX : UINT32_MAX)) {
        return false;
    }
    if (stream.data != nullptr && isShort) {
        stream.store16(start - 2, static_cast<std::uint16_t>(length));
    } else if (stream.data != nullptr) {
        stream.store32(start - 4, static_cast<std::uint32_t>(length));
    }
    return true;
}

inline bool ZULCdrOutput_putListEnd(ZULCdrOutput& stream) {
    if (!stream.reserve(4, ZUL_PARAMETER_SHORT_HEADER_SIZE)) {
        return false;
    }
    if (stream.data != nullptr) {
        stream.store16(stream.position, ZUL_PARAMETER_LIST_END | ZUL_PARAMETER_MUST_UNDERSTAND);
        stream.store16(stream.position + 2, 0);
    }
    stream.position += ZUL_PARAMETER_SHORT_HEADER_SIZE;
    return true;
}

struct ZULParameterHeader {
    std::uint32_t id;
    std::uint32_t length;
    bool mustUnderstand;
    bool isShort;
};

inline bool ZULCdrInput_getParameterHeader(ZULCdrInput& list, ZULParameterHeader& header) {
    std::uint16_t word = 0;
    std::uint16_t length = 0;
    if (!list.get16(word) || !list.get16(length)) {
        return false;
    }
    header = {.id = static_cast<std::uint32_t>(word & ZUL_PARAMETER_ID_MASK),
              .length = length,
              .mustUnderstand = (word & ZUL_PARAMETER_MUST_UNDERSTAND) != 0,
              .isShort = true};
    if (header.id != ZUL_PARAMETER_EXTENDED) {
        return true;
    }
    std::uint32_t id = 0;
    if (length < ZUL_PARAMETER_EXTENDED_LENGTH || !list.get32(id) || !list.get32(header.length)) {
        return false;
    }
    const std::size_t surplus = length - ZUL_PARAMETER_EXTENDED_LENGTH; // what a later revision may add
    if (surplus > list.remaining()) {
        return false;
    }
    list.position += surplus;
    // The flags of the extended id count; those of the escape word only announce the escape itself.
    header.mustUnderstand = (id & ZUL_PARAMETER_EXTENDED_MUST_UNDERSTAND) != 0;
    header.id = id & ZUL_PARAMETER_EXTENDED_ID_MASK;
    header.isShort = false;
    return true;
}

enum ZULParameterStep {
    ZUL_PARAMETER_MEMBER, // a member: `value` holds exactly its bytes; the list is now after them
    ZUL_PARAMETER_END,    // the list has ended, by its sentinel or by the end of the bytes
    ZUL_PARAMETER_BROKEN, // a header is cut short or a length exceeds what is there
};
struct ZULParameter {
    std::uint32_t id;
    bool mustUnderstand;
    ZULCdrInput value; // same alignment origin and byte order as the list
};

// Advances to the next member of a parameter list, passing over ignored entries.
inline ZULParameterStep ZULCdrInput_nextParameter(ZULCdrInput& list, ZULParameter& parameter) {
    for (;;) {
        // A last value may go without the padding that a next header would need.
        if (list.remaining() == 0 || !list.align(4) || list.remaining() == 0) {
            list.position = list.size;
            return ZUL_PARAMETER_END;
        }
        ZULParameterHeader header{};
        if (!ZULCdrInput_getParameterHeader(list, header)) {
            return ZUL_PARAMETER_BROKEN;
        }
        if (header.isShort && header.id == ZUL_PARAMETER_LIST_END) {
            return ZUL_PARAMETER_END;
        }
        if (header.length > list.remaining()) {
            return ZUL_PARAMETER_BROKEN;
        }
        // Field by field: a copy of the whole stream costs a third of a small request's decoding.
        parameter.id = header.id;
        parameter.mustUnderstand = header.mustUnderstand;
        parameter.value.data = list.data;
        parameter.value.position = list.position;
        parameter.value.size = list.position + header.length;
        parameter.value.origin = list.origin;
        parameter.value.bigEndian = list.bigEndian;
        parameter.value.unknownEnumerator = false;
        list.position += header.length;
        if (!(header.isShort && header.id == ZUL_PARAMETER_IGNORE)) {
            return ZUL_PARAMETER_MEMBER;
        }
    }
}
