// Matched endpoints: those that one endpoint is matched with. The library reports each change and cannot be
// asked later. Any thread.
#pragma once

#include "middleware/dds/dds.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace zul {

class MatchedEndpoints {
public:
    // `change` is above 0 for an endpoint that is matched now, and below 0 for one that is no longer. The
    // library writes all changes into one record, without a lock, so of changes at the same time it may say
    // 0: then one that was not matched has come, and one that was has left. Or it may tell twice of the last
    // one, and the second time say 0.
    void update(const DDS_InstanceHandle_t& handle, std::int32_t change);
    // OUT_OF_RESOURCES when the sequence cannot hold them all.
    DDS_ReturnCode_t copyTo(DDS_InstanceHandleSeq* handles) const;
    template <class Test>
    bool any(Test test) const {
        const std::lock_guard lock(mutex_);
        return std::any_of(handles_.begin(), handles_.end(), test);
    }

private:
    mutable std::mutex mutex_;
    std::vector<DDS_InstanceHandle_t> handles_;
    DDS_InstanceHandle_t last_{}; // that was told of
};

} // namespace zul
