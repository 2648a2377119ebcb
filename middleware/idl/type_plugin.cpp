// The default endpoint data: pools of samples and buffers that grow on demand and shrink only when they are
// deleted. A pool knows what it has lent, so deleting it frees that, too.
#include "middleware/idl/type_plugin.h"

#include "middleware/base/heap.h"

#include <mutex>
#include <new>

struct ZULParticipantData {};

namespace {

// Objects of one kind, kept for reuse. Lent ones stay known, so that deleting the pool frees them too. What
// an object needs here is allocated before it is made: nothing can fail when it comes back.
template <class T>
class Pool {
public:
    // Null when memory is exhausted or `make` gives null.
    template <class Make>
    T* get(Make make) {
        const std::lock_guard lock(mutex_);
        Entry* entry = free_ != nullptr ? take(free_) : makeEntry(make);
        if (entry == nullptr) {
            return nullptr;
        }
        push(lent_, entry);
        return entry->object;
    }
    // Tolerates null and what is not lent.
    void put(const T* object) {
        const std::lock_guard lock(mutex_);
        for (Entry** link = &lent_; *link != nullptr; link = &(*link)->next) {
            if ((*link)->object == object) {
                push(free_, take(*link));
                return;
            }
        }
    }
    template <class Release>
    void clear(Release release) {
        for (Entry** list : {&lent_, &free_}) {
            while (*list != nullptr) {
                Entry* entry = take(*list);
                release(entry->object);
                ZULHeap_free(entry);
            }
        }
    }

private:
    struct Entry {
        T* object;
        Entry* next;
    };

    template <class Make>
    static Entry* makeEntry(Make make) {
        auto* entry = ZULHeap_allocate<Entry>();
        if (entry != nullptr && (entry->object = make()) == nullptr) {
            ZULHeap_free(entry);
            return nullptr;
        }
        return entry;
    }
    static void push(Entry*& list, Entry* entry) {
        entry->next = list;
        list = entry;
    }
    static Entry* take(Entry*& list) {
        Entry* entry = list;
        list = entry->next;
        return entry;
    }

    std::mutex mutex_;
    Entry* lent_ = nullptr; // the last one lent comes first
    Entry* free_ = nullptr;
};

} // namespace

struct ZULEndpointData {
    ZULEndpointInfo info;
    ZULEndpointDataOperations operations;
    std::size_t maxSerializedSize = 0;
    std::size_t bufferSize = 0;
    Pool<void> samples{};
    Pool<std::uint8_t> buffers{};
};

ZULParticipantData* ZULParticipantData_new() {
    return ZULHeap_allocate<ZULParticipantData>();
}

void ZULParticipantData_delete(ZULParticipantData* data) {
    ZULHeap_free(data);
}

ZULEndpointData* ZULEndpointData_new(const ZULEndpointInfo& info,
                                     const ZULEndpointDataOperations& operations) {
    void* memory = ZULHeap_allocate<ZULEndpointData>();
    return memory == nullptr ? nullptr : new (memory) ZULEndpointData{.info = info, .operations = operations};
}

void ZULEndpointData_delete(ZULEndpointData* data) {
    if (data != nullptr) {
        data->samples.clear(data->operations.destroyData);
        data->buffers.clear(ZULHeap_free);
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
    return size > data->bufferSize
               ? nullptr
               : data->buffers.get([data] { return ZULHeap_allocate<std::uint8_t>(data->bufferSize); });
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
