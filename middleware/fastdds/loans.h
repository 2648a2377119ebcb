// Loans: what a reader has lent to its callers, samples of its type's pool with their infos. Any thread.
#pragma once

#include "middleware/dds/dds.h"
#include "middleware/fastdds/type_adapter.h"

#include <list>
#include <mutex>
#include <vector>

namespace zul {

struct Loan {
    std::vector<void*> samples; // its address is what was handed out
    std::vector<DDS_SampleInfo> infos;
};

class Loans {
public:
    // Keeps a loan, the one element of `loan`, which was made before samples were taken: nothing here fails.
    void keep(std::list<Loan>& loan) {
        const std::lock_guard lock(mutex_);
        loans_.splice(loans_.end(), loan);
    }
    // Gives the samples of the loan with these addresses back to the pool, and forgets it. False when there
    // is no such loan.
    bool giveBack(void** samples, const DDS_SampleInfo* infos, const TypeAdapter& adapter) {
        const std::lock_guard lock(mutex_);
        for (auto loan = loans_.begin(); loan != loans_.end(); ++loan) {
            if (loan->samples.data() == samples && loan->infos.data() == infos) {
                for (void* sample : loan->samples) {
                    adapter.returnReaderSample(sample);
                }
                loans_.erase(loan);
                return true;
            }
        }
        return false;
    }

private:
    std::mutex mutex_;
    std::list<Loan> loans_;
};

} // namespace zul
