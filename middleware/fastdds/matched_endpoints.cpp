#include "middleware/fastdds/matched_endpoints.h"

namespace zul {

void MatchedEndpoints::update(const DDS_InstanceHandle_t& handle, std::int32_t change) {
    const std::lock_guard lock(mutex_);
    if (change == 0 && handle == last_) {
        return;
    }
    last_ = handle;
    const bool wasMatched = std::erase(handles_, handle) > 0;
    if (change > 0 || (change == 0 && !wasMatched)) {
        handles_.push_back(handle);
    }
}

DDS_ReturnCode_t MatchedEndpoints::copyTo(DDS_InstanceHandleSeq* handles) const {
    const std::lock_guard lock(mutex_);
    const auto count = static_cast<DDS_Long>(handles_.size());
    if (!ZULSequence::ensure_length(handles, count, count, __func__)) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    for (DDS_Long i = 0; i < count; ++i) {
        ZULSequence::at(*handles, i) = handles_[static_cast<std::size_t>(i)];
    }
    return DDS_RETCODE_OK;
}

} // namespace zul
