// Largest and smallest encoded sizes, in bytes. Each function returns the position after a value that begins
// at `at`, counted from an alignment origin. Parameter headers count as 12 bytes, the extended form,
// whichever travels; in the smallest size only a discriminator's header and the end of a list count as 4. So
// a sample with short headers may be smaller than that.
#pragma once

#include "middleware/cdr/stream.h"
#include "middleware/idl/types.h"

#include <algorithm>

namespace zul::idl {

enum class Bound { MAXIMUM, MINIMUM };

constexpr std::size_t PARAMETER_HEADER_SIZE = 12; // oddity 24
constexpr std::size_t SHORT_PARAMETER_HEADER_SIZE = 4;

constexpr std::size_t aligned(std::size_t at) {
    return at + ZULCdr_padding(at, 4);
}
// After a header that is always written short; the maximum counts a long one all the same.
template <Bound bound>
constexpr std::size_t afterShortHeader(std::size_t at) {
    return aligned(at) + (bound == Bound::MAXIMUM ? PARAMETER_HEADER_SIZE : SHORT_PARAMETER_HEADER_SIZE);
}

template <Bound bound, Scalar IdlType>
constexpr std::size_t endOf(IdlType, std::size_t at) {
    return std::is_same_v<IdlType, Boolean> ? at + 1 : aligned(at) + 4;
}
template <Bound bound, std::uint32_t Length>
constexpr std::size_t endOf(String<Length>, std::size_t at) {
    return aligned(at) + 4 + (bound == Bound::MAXIMUM ? Length : 0) + 1;
}
template <Bound bound, std::uint32_t Elements, std::uint32_t Length>
constexpr std::size_t endOf(StringSequence<Elements, Length>, std::size_t at) {
    at = aligned(at) + 4;
    for (std::uint32_t i = 0; bound == Bound::MAXIMUM && i < Elements; ++i) {
        at = endOf<bound>(String<Length>{}, at);
    }
    return at;
}
template <Bound bound, class Record>
constexpr std::size_t endOf(Union<Record>, std::size_t at) {
    at = afterShortHeader<bound>(at) + 4; // the discriminator
    at = aligned(at) + PARAMETER_HEADER_SIZE;
    std::size_t end = 0;
    forEachMember<Record>([&end, at](auto type, const auto&) {
        const std::size_t branchEnd = endOf<bound>(type, at);
        const bool better = end == 0 || (bound == Bound::MAXIMUM ? branchEnd > end : branchEnd < end);
        end = better ? branchEnd : end;
    });
    return afterShortHeader<bound>(end); // the end of the list
}
template <Bound bound, class Record>
constexpr std::size_t endOf(Struct<Record>, std::size_t at) {
    constexpr bool isMutable = Description<Record>::form == WireForm::MUTABLE;
    forEachMember<Record>([&at](auto type, const auto&) {
        if (isMutable) {
            at = aligned(at) + PARAMETER_HEADER_SIZE;
        }
        at = endOf<bound>(type, at);
    });
    return isMutable ? afterShortHeader<bound>(at) : at;
}

// The size of a value from the given alignment; with an encapsulation header, that header (aligned to 2) and
// the value from alignment 0. An invalid identifier gives 1.
template <Bound bound, class IdlType>
constexpr std::size_t boundOf(IdlType type, bool includeEncapsulation, std::uint16_t encapsulationId,
                              std::size_t currentAlignment) {
    if (!includeEncapsulation) {
        return endOf<bound>(type, currentAlignment) - currentAlignment;
    }
    if (!ZULEncapsulation_isValid(encapsulationId)) {
        return 1; // oddity 25
    }
    return ZULCdr_padding(currentAlignment, ZUL_ENCAPSULATION_ALIGNMENT) + ZUL_ENCAPSULATION_SIZE +
           endOf<bound>(type, 0);
}

} // namespace zul::idl
