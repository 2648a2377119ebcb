// Pooled samples: a collection of the library's that owns samples of a type's pool. The library decodes into
// them and leaves out what it cannot decode; its own loans would hand out undecodable samples as valid.
#pragma once

#include "middleware/fastdds/type_adapter.h"

#include <algorithm>
#include <fastdds/dds/core/LoanableCollection.hpp>
#include <vector>

namespace zul {

class PooledSamples final : public eprosima::fastdds::dds::LoanableCollection {
public:
    // Room for `count` samples, or for as many as the pool has. `adapter` outlives the collection.
    PooledSamples(const TypeAdapter& adapter, DDS_Long count) : adapter_(adapter) {
        samples_.reserve(static_cast<std::size_t>(count));
        void* sample = nullptr;
        while (static_cast<DDS_Long>(samples_.size()) < count &&
               (sample = adapter.getReaderSample()) != nullptr) {
            samples_.push_back(sample);
        }
        elements_ = samples_.data();
        maximum_ = static_cast<size_type>(samples_.size());
    }
    ~PooledSamples() {
        std::for_each(samples_.begin(), samples_.end(),
                      [this](void* sample) { adapter_.returnReaderSample(sample); });
    }
    PooledSamples(const PooledSamples&) = delete;
    PooledSamples& operator=(const PooledSamples&) = delete;

    // Hands the filled samples over to a vector that has room for them; the others go back to the pool.
    void release(std::vector<void*>& filled) {
        filled.assign(samples_.begin(), samples_.begin() + length_);
        samples_.erase(samples_.begin(), samples_.begin() + length_);
    }

private:
    void resize(size_type /*newLength*/) override {} // never grows

    const TypeAdapter& adapter_;
    std::vector<void*> samples_;
};

} // namespace zul
