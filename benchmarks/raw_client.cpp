#include "benchmarks/raw_client.h"

#include "benchmarks/patience.h"

#include <ctime>

namespace raw {

Client::Client(int domainId, const Bytes& probe)
    : listener_([this](const Bytes&) { sem_post(&answered_); }),
      participant_(domainId),
      writer_(participant_.createWriter(BASELINE.request, BASELINE.requestType, {WRITE_SECONDS, 0})) {
    sem_init(&answered_, 0, 0);
    participant_.createReader(BASELINE.response, BASELINE.responseType, &listener_);
    for (int attempt = 0; attempt < PROBES; ++attempt) {
        if (write(probe) && awaitAnswer(PROBE_SECONDS)) {
            return;
        }
    }
    fail("the responder does not answer the baseline");
}

Client::~Client() = default; // the semaphore outlives the participant, which runs the listener

bool Client::write(const Bytes& request) {
    return raw::write(writer_, request);
}

bool Client::awaitAnswer(int seconds) {
    timespec until{};
    clock_gettime(CLOCK_MONOTONIC, &until);
    until.tv_sec += seconds;
    return sem_clockwait(&answered_, CLOCK_MONOTONIC, &until) == 0;
}

} // namespace raw
