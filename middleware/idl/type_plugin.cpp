// The default endpoint data: pools of samples and buffers that grow on demand and shrink only when they are
// deleted. A pool knows what it has lent, so deleting it frees that, too.
#include "middleware/idl/type_plugin.h"

#include "middleware/base/heap.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <new>

struct ZULParticipantData {};

namespace {

// Objects of one kind, kept for reuse. Lent ones stay known, so that deleting the pool frees them too. What
// an object needs here is allocated before it is made: nothing can fail when it comes back.
class Pool {
public:
    // Null when memory is exhausted or `make` gives null.
    template <class Make>
    void* get(Make make) {
        const std::lock_guard lock(mutex_);
        if (free_.empty() && !add(make)) {
            return nullptr;
        }
        lent_.splice(lent_.begin(), free_, free_.begin());
        return lent_.front();
    }
    // Tolerates null and what is not lent.
    void put(const void* object) {
        const std::lock_guard lock(mutex_);
        const auto place = std::ranges::find(lent_, object);
        if (place != lent_.end()) {
            free_.splice(free_.begin(), lent_, place);
        }
    }
    // Only the deletion of the pool may follow.
    template <class Release>
    void releaseAll(Release release) {
        std::ranges::for_each(lent_, release);
        std::ranges::for_each(free_, release);
    }

private:
    template <class Make>
    bool add(Make make) {
        try {
            free_.push_front(nullptr);
        } catch (const std::bad_alloc&) {
            return false;
        }
        free_.front() = make();
        if (free_.front() == nullptr) {
            free_.pop_front();
        }
        return !free_.empty();
    }

    using Objects = std::list<void*, ZULHeapAllocator<void*>>;
    std::mutex mutex_;
    Objects lent_; // the last one lent comes first
    Objects free_;
};

} // namespace

struct ZULEndpointData {
    ZULEndpointDataOperations operations;
    std::size_t maxSerializedSize = 0;
    std::size_t bufferSize = 0;
    Pool samples{};
    Pool buffers{};
};

ZULParticipantData* ZULParticipantData_new() {
    return ZULHeap_allocate<ZULParticipantData>();
}

void ZULParticipantData_delete(ZULParticipantData* data) {
    ZULHeap_free(data);
}

ZULEndpointData* ZULEndpointData_new(const ZULEndpointDataOperations& operations) {
    void* memory = ZULHeap_allocate<ZULEndpointData>();
    return memory == nullptr ? nullptr : new (memory) ZULEndpointData{.operations = operations};
}

void ZULEndpointData_delete(ZULEndpointData* data) {
    if (data != nullptr) {
        data->samples.releaseAll(data->operations.destroyData);
        data->buffers.releaseAll(ZULHeap_free);
        data->~ZULEndpointData();
        ZULHeap_free(data);
    }
}

void* ZULEndpointData_createSample(ZULEndpointData* data) {
    return data->operations.createData();
}

void ZULEndpointData_deleteSample(ZULEndpointData* data, void* sample) {
    data->operations.destroyData(sample);
}

void* ZULEndpointData_getSample(ZULEndpointData* data) {
    return data->samples.get(data->operations.createData);
}

void ZULEndpointData_returnSample(ZULEndpointData* data, void* sample) {
    data->samples.put(sample);
}

bool ZULEndpointData_createBufferPool(ZULEndpointData* data, std::size_t maximumSize) {
    data->bufferSize = maximumSize;
    std::uint8_t* first = ZULEndpointData_getBuffer(data, maximumSize);
    ZULEndpointData_returnBuffer(data, first);
    return first != nullptr;
}

std::uint8_t* ZULEndpointData_getBuffer(ZULEndpointData* data, std::size_t size) {
    const auto make = [data] {
        return ZULHeap_allocate<std::uint8_t>(data->bufferSize);
    };
    return size > data->bufferSize ? nullptr : static_cast<std::uint8_t*>(data->buffers.get(make));
}

void ZULEndpointData_returnBuffer(ZULEndpointData* data, std::uint8_t* buffer) {
    data->buffers.put(buffer);
}

std::size_t ZULEndpointData_maxSerializedSize(const ZULEndpointData* data) {
    return data == nullptr ? 0 : data->maxSerializedSize;
}

void ZULEndpointData_setMaxSerializedSize(ZULEndpointData* data, std::size_t size) {
    data->maxSerializedSize = size;
}
