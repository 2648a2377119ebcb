#include "middleware/cdr_stream.h"

bool ZULCdrOutput_putEncapsulation(ZULCdrOutput& stream, std::uint16_t id) {
    if (!ZULEncapsulation_isValid(id) || stream.capacity - stream.position < ZUL_ENCAPSULATION_SIZE) {
        return false;
    }
    stream.put8(0);
    stream.put8(static_cast<std::uint8_t>(id));
    stream.put8(0);
    stream.put8(0);
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

bool ZULCdrOutput_beginParameter(ZULCdrOutput& stream, std::uint32_t id, ZULParameterForm form,
                                 ZULParameterMark& mark) {
    mark.form = form;
    bool written = stream.align(4);
    if (form == ZUL_PARAMETER_SHORT) {
        written = written && id < ZUL_PARAMETER_EXTENDED && stream.put16(static_cast<std::uint16_t>(id)) &&
                  stream.put16(0);
        mark.lengthAt = stream.position - 2;
    } else {
        written = written && stream.put16(ZUL_PARAMETER_EXTENDED | ZUL_PARAMETER_MUST_UNDERSTAND) &&
                  stream.put16(ZUL_PARAMETER_EXTENDED_LENGTH) && stream.put32(id) && stream.put32(0);
        mark.lengthAt = stream.position - 4;
    }
    mark.valueAt = stream.position;
    return written;
}

bool ZULCdrOutput_endParameter(ZULCdrOutput& stream, const ZULParameterMark& mark) {
    const std::size_t length = stream.position - mark.valueAt;
    if (length > (mark.form == ZUL_PARAMETER_SHORT ? UINT16_MAX : UINT32_MAX)) {
        return false;
    }
    if (stream.data != nullptr) {
        if (mark.form == ZUL_PARAMETER_SHORT) {
            stream.store16(mark.lengthAt, static_cast<std::uint16_t>(length));
        } else {
            stream.store32(mark.lengthAt, static_cast<std::uint32_t>(length));
        }
    }
    return true;
}

bool ZULCdrOutput_putListEnd(ZULCdrOutput& stream) {
    return stream.align(4) && stream.put16(ZUL_PARAMETER_LIST_END | ZUL_PARAMETER_MUST_UNDERSTAND) &&
           stream.put16(0);
}

namespace {

struct Header {
    std::uint32_t id;
    std::uint32_t length;
    bool mustUnderstand;
    bool isShort;
};

bool getHeader(ZULCdrInput& list, Header& header) {
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
    // The flags of the extended id count; those of the escape word only announce the escape itself.
    header.mustUnderstand = (id & ZUL_PARAMETER_EXTENDED_MUST_UNDERSTAND) != 0;
    header.id = id & ZUL_PARAMETER_EXTENDED_ID_MASK;
    header.isShort = false;
    return true;
}

} // namespace

ZULParameterStep ZULCdrInput_nextParameter(ZULCdrInput& list, ZULParameter& parameter) {
    for (;;) {
        // A last value may go without the padding that a next header would need.
        if (list.remaining() == 0 || !list.align(4) || list.remaining() == 0) {
            list.position = list.size;
            return ZUL_PARAMETER_END;
        }
        Header header{};
        if (!getHeader(list, header)) {
            return ZUL_PARAMETER_BROKEN;
        }
        if (header.isShort && header.id == ZUL_PARAMETER_LIST_END) {
            return ZUL_PARAMETER_END;
        }
        if (header.length > list.remaining()) {
            return ZUL_PARAMETER_BROKEN;
        }
        parameter = {.id = header.id, .mustUnderstand = header.mustUnderstand, .value = list};
        parameter.value.size = list.position + header.length;
        list.position += header.length;
        if (!(header.isShort && header.id == ZUL_PARAMETER_IGNORE)) {
            return ZUL_PARAMETER_MEMBER;
        }
    }
}
