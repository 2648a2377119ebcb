// Sequences: an owned or loaned, bounded array of elements (OMG IDL to C mapping, sequences). One record
// shape and one implementation serve every element type; the named operations of a type forward to these
// templates. A record of zeroes is a valid, not yet initialised sequence: every operation initialises it on
// first use. Operations refuse bad arguments, log why under `context`, and leave the sequence as it was.
#pragma once

#include "middleware/base/basic_types.h"
#include "middleware/base/heap.h"
#include "middleware/base/log.h"
#include "middleware/base/strings.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

// How a sequence treats one element. The primary template suits elements without owned memory; a type with
// strings or nested sequences specialises it. `prepare` makes room in `destination` for `source`, or for any
// value when it is null, and leaves its value as it was; a copy of that value then succeeds.
template <class T>
struct ZULSequenceElement {
    static bool initialize(T& element, const DDS_TypeAllocationParams_t&) {
        element = T{};
        return true;
    }
    static void finalize(T&, const DDS_TypeDeallocationParams_t&) {}
    static bool prepare(T&, const T*) { return true; }
    static bool copy(T& destination, const T& source) {
        destination = source;
        return true;
    }
};

// Strings start absent. A copy of a text keeps a buffer that has room for it; a copy of null frees it. They
// are the platform's own strings (DDS_String_alloc, DDS_String_dup) or null; a source may be any text.
template <>
struct ZULSequenceElement<char*> {
    static bool initialize(char*& element, const DDS_TypeAllocationParams_t&) {
        element = nullptr;
        return true;
    }
    static void finalize(char*& element, const DDS_TypeDeallocationParams_t&) {
        DDS_String_free(element);
        element = nullptr;
    }
    static bool prepare(char*& destination, char* const* source) {
        const char* text = source != nullptr ? *source : nullptr;
        return text == nullptr || makeRoom(destination, std::strlen(text));
    }
    static bool copy(char*& destination, char* const& source) {
        if (source == nullptr) {
            DDS_String_free(std::exchange(destination, nullptr));
        } else if (!prepare(destination, &source)) {
            return false;
        } else {
            std::memmove(destination, source, std::strlen(source) + 1);
        }
        return true;
    }
    // Makes room for `length` characters, keeping the text. False when memory is exhausted.
    static bool makeRoom(char*& element, std::size_t length) {
        if (element != nullptr && ZULString_room(element) >= length) {
            return true;
        }
        char* roomy = DDS_String_alloc(length);
        if (roomy == nullptr) {
            return false;
        }
        if (element != nullptr) {
            std::memcpy(roomy, element, std::strlen(element) + 1); // shorter than the room it had
        }
        DDS_String_free(std::exchange(element, roomy));
        return true;
    }
};

template <class T, class Traits = ZULSequenceElement<T>>
struct DDS_Sequence {
    using Element = T;
    std::int32_t marker; // ZUL_SEQUENCE_MARKER once initialised
    bool owned;          // the buffer belongs to this sequence
    T* contiguous;       // elements, or
    T** discontiguous;   // (loaned only) pointers to elements
    DDS_Long maximum;
    DDS_Long length; // 0..maximum
    DDS_TypeAllocationParams_t elementAllocation;
    DDS_TypeDeallocationParams_t elementDeallocation;
    void* readToken1; // kept for the caller; the middleware does not use them
    void* readToken2;
};
constexpr std::int32_t ZUL_SEQUENCE_MARKER = 29508;

using DDS_StringSeq = DDS_Sequence<char*>;
using DDS_InstanceHandleSeq = DDS_Sequence<DDS_InstanceHandle_t>;

namespace ZULSequence {

template <class T, class Traits>
void reset(DDS_Sequence<T, Traits>& self) {
    self = DDS_Sequence<T, Traits>{};
    self.marker = ZUL_SEQUENCE_MARKER;
    self.owned = true;
    self.elementAllocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    self.elementDeallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
}

inline bool refuse(const char* context, const ZULLogTemplate& message, const char* argument) {
    ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, message, argument);
    return false;
}
inline bool refuseSpace(const char* context, DDS_Long available, DDS_Long needed) {
    ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_INSUFFICIENT_SPACE_dd, available, needed);
    return false;
}

// Every operation's first step: refuse null, initialise lazily. A caller cannot see the lazy write, so a
// sequence that is const gets it too.
template <class T, class Traits>
bool open(const DDS_Sequence<T, Traits>* self, const char* context) {
    if (self == nullptr) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "self");
    }
    if (self->marker != ZUL_SEQUENCE_MARKER) {
        reset(const_cast<DDS_Sequence<T, Traits>&>(*self));
    }
    return true;
}

template <class T, class Traits>
T& at(const DDS_Sequence<T, Traits>& self, DDS_Long index) {
    return self.discontiguous != nullptr ? *self.discontiguous[index] : self.contiguous[index];
}

template <class Traits, class T>
void freeElements(T* elements, DDS_Long count, const DDS_TypeDeallocationParams_t& params) {
    for (DDS_Long i = 0; elements != nullptr && i < count; ++i) {
        Traits::finalize(elements[i], params);
    }
    ZULHeap_free(elements);
}

template <class T, class Traits>
bool initialize(DDS_Sequence<T, Traits>* self, const char* context) {
    if (self == nullptr) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "self");
    }
    reset(*self);
    return true;
}

template <class T, class Traits>
DDS_Long get_maximum(const DDS_Sequence<T, Traits>* self, const char* context) {
    return open(self, context) ? self->maximum : 0;
}

template <class T, class Traits>
DDS_Long get_length(const DDS_Sequence<T, Traits>* self, const char* context) {
    return open(self, context) ? self->length : 0;
}

template <class T, class Traits>
bool has_ownership(const DDS_Sequence<T, Traits>* self, const char* context) {
    return open(self, context) && self->owned;
}

// `maximum` initialised elements; null when there are to be none, or memory is exhausted, which is logged.
template <class T, class Traits>
T* makeElements(const DDS_Sequence<T, Traits>& self, DDS_Long maximum, const char* context) {
    if (maximum == 0) {
        return nullptr;
    }
    auto* fresh = ZULHeap_allocate<T>(static_cast<std::size_t>(maximum));
    DDS_Long built = 0;
    while (fresh != nullptr && built < maximum && Traits::initialize(fresh[built], self.elementAllocation)) {
        ++built;
    }
    if (built < maximum) {
        freeElements<Traits>(fresh, built, self.elementDeallocation);
        ZULLog_middleware(ZUL_LOG_LEVEL_ERROR, context, ZUL_LOG_ALLOCATION_FAILURE_d,
                          static_cast<unsigned long>(maximum) * sizeof(T));
        return nullptr;
    }
    return fresh;
}

// Replaces the owned buffer; the elements that fit move over.
template <class T, class Traits>
void adoptElements(DDS_Sequence<T, Traits>& self, T* fresh, DDS_Long maximum) {
    const bool hasBoth = fresh != nullptr && self.contiguous != nullptr;
    const DDS_Long kept = hasBoth ? std::min(self.length, maximum) : 0;
    std::swap_ranges(fresh, fresh + kept, self.contiguous);
    freeElements<Traits>(self.contiguous, self.maximum, self.elementDeallocation);
    self.contiguous = fresh;
    self.maximum = maximum;
    self.length = kept;
}

template <class T, class Traits>
bool checkMaximum(const DDS_Sequence<T, Traits>* self, DDS_Long maximum, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (maximum < 0) {
        return refuse(context, ZUL_LOG_ASSERTION_s, "max size must be positive");
    }
    return self->owned || refuse(context, ZUL_LOG_ASSERTION_s, "buffer must not be loaned");
}

// Replaces the owned buffer by one of `maximum` elements that keeps the elements that fit. All or nothing.
template <class T, class Traits>
bool set_maximum(DDS_Sequence<T, Traits>* self, DDS_Long maximum, const char* context) {
    if (!checkMaximum(self, maximum, context)) {
        return false;
    }
    if (maximum == self->maximum) {
        return true;
    }
    T* fresh = makeElements(*self, maximum, context);
    if (fresh == nullptr && maximum > 0) {
        return false;
    }
    adoptElements(*self, fresh, maximum);
    return true;
}

template <class T, class Traits>
bool set_length(DDS_Sequence<T, Traits>* self, DDS_Long length, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (length < 0 || length > self->maximum) {
        return refuseSpace(context, self->maximum, length);
    }
    self->length = length;
    return true;
}

// Sets the length, growing an owned buffer to `maximum` when it is too small. 0 <= length <= maximum.
template <class T, class Traits>
bool ensure_length(DDS_Sequence<T, Traits>* self, DDS_Long length, DDS_Long maximum, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (length < 0 || length > maximum) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "length");
    }
    return (length <= self->maximum || set_maximum(self, maximum, context)) &&
           set_length(self, length, context);
}

template <class T, class Traits>
T* get_reference(const DDS_Sequence<T, Traits>* self, DDS_Long index, const char* context) {
    if (!open(self, context)) {
        return nullptr;
    }
    if (index < 0 || index >= self->length) {
        refuse(context, ZUL_LOG_ASSERTION_s, "index out of bounds");
        return nullptr;
    }
    return &at(*self, index);
}

// Installs a buffer of the caller's, which must outlive the loan: of elements or, if that is null, of
// pointers to them.
template <class T, class Traits>
bool loan(DDS_Sequence<T, Traits>* self, std::type_identity_t<T>* contiguous,
          std::type_identity_t<T>** discontiguous, DDS_Long length, DDS_Long maximum, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (self->maximum > 0) {
        return refuse(context, ZUL_LOG_ASSERTION_s, "max size must be 0");
    }
    if (length < 0 || maximum < 0) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "negative argument");
    }
    if (length > maximum) {
        return refuseSpace(context, maximum, length);
    }
    if (contiguous == nullptr && discontiguous == nullptr && maximum > 0) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "NULL buffer can't have non-zero maximum");
    }
    self->contiguous = contiguous;
    self->discontiguous = discontiguous;
    self->maximum = maximum;
    self->length = length;
    self->owned = false;
    return true;
}

// Detaches a loaned buffer: the sequence is owned and empty again.
template <class T, class Traits>
bool unloan(DDS_Sequence<T, Traits>* self, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (self->owned) {
        return refuse(context, ZUL_LOG_ASSERTION_s, "buffer must be loaned");
    }
    self->contiguous = nullptr;
    self->discontiguous = nullptr;
    self->maximum = 0;
    self->length = 0;
    self->owned = true;
    return true;
}

// Releases an owned buffer. A loaned one must be unloaned first.
template <class T, class Traits>
bool finalize(DDS_Sequence<T, Traits>* self, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (!self->owned) {
        return refuse(context, ZUL_LOG_ASSERTION_s, "buffer must not be loaned");
    }
    return set_maximum(self, 0, context);
}

// Copies into elements that are ready for it; whatever is refused, the old elements stay as they are. `fresh`
// holds those from `self->length` on while `self` is about to grow; null otherwise.
template <class T, class Traits>
bool prepareElements(DDS_Sequence<T, Traits>& self, const DDS_Sequence<T, Traits>& source, T* fresh) {
    for (DDS_Long i = 0; i < source.length; ++i) {
        T& element = fresh != nullptr && i >= self.length ? fresh[i] : at(self, i);
        if (!Traits::prepare(element, &at(source, i))) {
            return false;
        }
    }
    return true;
}
template <class T, class Traits>
bool copyElements(DDS_Sequence<T, Traits>& self, const DDS_Sequence<T, Traits>& source) {
    bool copied = true;
    for (DDS_Long i = 0; copied && i < source.length; ++i) {
        copied = Traits::copy(at(self, i), at(source, i));
    }
    self.length = source.length;
    return copied;
}

template <class T, class Traits>
bool openForCopy(DDS_Sequence<T, Traits>* self, const DDS_Sequence<T, Traits>* source, const char* context) {
    return open(self, context) &&
           (source != nullptr ? open(source, context) : refuse(context, ZUL_LOG_BAD_PARAMETER_s, "src"));
}

// Copies the elements; the destination must have room for them. All or nothing.
template <class T, class Traits>
bool copy_no_alloc(DDS_Sequence<T, Traits>* self, const DDS_Sequence<T, Traits>* source,
                   const char* context) {
    if (!openForCopy(self, source, context)) {
        return false;
    }
    if (source->length > self->maximum) {
        return refuseSpace(context, self->maximum, source->length);
    }
    return prepareElements<T, Traits>(*self, *source, nullptr) && copyElements(*self, *source);
}

// The same, growing an owned destination when needed.
template <class T, class Traits>
bool copy(DDS_Sequence<T, Traits>* self, const DDS_Sequence<T, Traits>* source, const char* context) {
    if (!openForCopy(self, source, context)) {
        return false;
    }
    const DDS_Long length = source->length;
    if (length <= self->maximum) {
        return copy_no_alloc(self, source, context);
    }
    T* fresh = checkMaximum(self, length, context) ? makeElements(*self, length, context) : nullptr;
    if (fresh == nullptr) {
        return false;
    }
    if (!prepareElements(*self, *source, fresh)) {
        freeElements<Traits>(fresh, length, self->elementDeallocation);
        return false;
    }
    adoptElements(*self, fresh, length);
    return copyElements(*self, *source);
}

// ---- arrays ----

// Runs a copy from or to an array of `length` elements: `copyView(view)` gets the array as a sequence.
template <class T, class Traits, class CopyView>
bool copyArray(const DDS_Sequence<T, Traits>* self, T* array, DDS_Long length, const char* context,
               CopyView copyView) {
    if (!open(self, context)) {
        return false;
    }
    DDS_Sequence<T, Traits> view{};
    if (!loan(&view, array, nullptr, length, length, context)) {
        return refuse(context, ZUL_LOG_ANY_FAILURE_s, "loan contiguous array");
    }
    const bool copied = copyView(view) || refuse(context, ZUL_LOG_ANY_FAILURE_s, "copying array sequence");
    return (unloan(&view, context) || refuse(context, ZUL_LOG_ANY_FAILURE_s, "unloan contiguous array")) &&
           copied;
}
// Copies `length` elements of an array into the sequence, or the sequence into an array with room for
// `length` elements, which must be initialised records. All or nothing.
template <class T, class Traits>
bool from_array(DDS_Sequence<T, Traits>* self, const T* array, DDS_Long length, const char* context) {
    return copyArray(self, const_cast<T*>(array), length, context,
                     [self, context](const auto& view) { return copy(self, &view, context); });
}
template <class T, class Traits>
bool to_array(const DDS_Sequence<T, Traits>* self, T* array, DDS_Long length, const char* context) {
    return copyArray(self, array, length, context,
                     [self, context](auto& view) { return copy_no_alloc(&view, self, context); });
}

// ---- parameters and internals ----

// A shallow copy of an element, whose memory stays the sequence's; empty when the index is out of bounds.
template <class T, class Traits>
T get(const DDS_Sequence<T, Traits>* self, DDS_Long index, const char* context) {
    const T* element = get_reference(self, index, context);
    return element != nullptr ? *element : T{};
}

// Reads or sets how elements are allocated or deallocated. Allocation can be set only while the sequence has
// no elements.
template <class Params, class T, class Traits>
bool get_params(const DDS_Sequence<T, Traits>* self, Params DDS_Sequence<T, Traits>::*field, Params* params,
                const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (params == nullptr) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "params");
    }
    *params = self->*field;
    return true;
}
template <class Params, class T, class Traits>
bool set_params(DDS_Sequence<T, Traits>* self, Params DDS_Sequence<T, Traits>::*field, const Params* params,
                const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (params == nullptr) {
        return refuse(context, ZUL_LOG_BAD_PARAMETER_s, "params");
    }
    if (std::is_same_v<Params, DDS_TypeAllocationParams_t> && self->maximum != 0) {
        return refuse(
            context, ZUL_LOG_ASSERTION_s,
            "Member allocation parameters can be configured only when the maximum size of the sequence is 0");
    }
    self->*field = *params;
    return true;
}
template <class T, class Traits>
bool set_pointers_allocation(DDS_Sequence<T, Traits>* self, bool allocatePointers, const char* context) {
    if (!open(self, context)) {
        return false;
    }
    if (self->maximum != 0) {
        return refuse(
            context, ZUL_LOG_ASSERTION_s,
            "Pointers allocation policy can be configured only when the maximum size of the sequence is 0");
    }
    self->elementAllocation.allocate_pointers = allocatePointers ? 1 : 0;
    return true;
}

} // namespace ZULSequence
