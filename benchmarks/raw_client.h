// The baseline's client: writes request bytes and waits for the answer to the last one, with nothing in
// between that a program on the bare library would not have: its listener takes the answer and wakes the
// waiting thread by a semaphore. One thread sends.
#pragma once

#include "benchmarks/raw_dds.h"

#include <semaphore.h>

namespace raw {

class Client {
public:
    // Returns once a responder in the domain has answered `probe`.
    Client(int domainId, const Bytes& probe);
    ~Client();
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    // False when the bytes could not be written within the writer's blocking time.
    bool write(const Bytes& request);
    // False when no answer came within `seconds`.
    bool awaitAnswer(int seconds);

private:
    sem_t answered_{};
    Listener listener_;
    Participant participant_;
    eprosima::fastdds::dds::DataWriter* writer_;
};

} // namespace raw
