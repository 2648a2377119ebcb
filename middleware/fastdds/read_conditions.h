// Read conditions: those that a reader has created, which alone may be used with it (OMG DDS 1.4,
// 2.2.2.5.3.3). Any thread.
#pragma once

#include "middleware/dds/dds.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <vector>

struct DDS_ReadCondition {
    DDS_SampleStateMask sampleStates;
    DDS_ViewStateMask viewStates;
    DDS_InstanceStateMask instanceStates;
};

namespace zul {

class ReadConditions {
public:
    DDS_ReadCondition* create(const DDS_ReadCondition& states) {
        const std::lock_guard lock(mutex_);
        return conditions_.emplace_back(std::make_unique<DDS_ReadCondition>(states)).get();
    }
    // False when it is none of the reader's.
    bool remove(const DDS_ReadCondition* condition) {
        const std::lock_guard lock(mutex_);
        return std::erase_if(conditions_, [condition](const auto& own) { return own.get() == condition; }) >
               0;
    }
    // Copies the states of a condition. False when it is none of the reader's.
    bool find(const DDS_ReadCondition* condition, DDS_ReadCondition& states) const {
        const std::lock_guard lock(mutex_);
        for (const auto& own : conditions_) {
            if (own.get() == condition) {
                states = *own;
                return true;
            }
        }
        return false;
    }

private:
    mutable std::mutex mutex_;
    std::vector<std::unique_ptr<DDS_ReadCondition>> conditions_;
};

} // namespace zul
