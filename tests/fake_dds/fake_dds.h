// A DDS without a network, for tests: implements middleware/dds/dds.h for one participant at a time, notes
// every call, fails the one it is told to fail, keeps written requests, and delivers responses to the
// reader's listener from a thread of its own. A released loan is poisoned and freed, so that whoever still
// reads it is found.
//
// Everything is in the one `world()`, emptied by `reset()`. Any thread may call `deliver` and `awaitIdle`.
#pragma once

#include "admin_types/type_support.h"

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace fake_dds {

using Request = ZUL_RoutingService_Administration_CommandRequest;
using RequestId = ZUL_RoutingService_Administration_CommandId;
using Response = ZUL_RoutingService_Administration_CommandResponse;

// One response to the last request. The message may be longer than what fits on the wire.
struct Answer {
    std::string message{};
    bool isFinal = true;
    DDS_Long kind = 0;
    RequestId strayBy{}; // added to the request's id
    bool isValid = true; // false: a sample without data
};
// What a request is answered with. Called on the writing thread, after the request was kept.
using Router = std::function<std::vector<Answer>(const Request&)>;
using RequestCopy = std::unique_ptr<Request, DDS_ReturnCode_t (*)(Request*)>;

// What the reader has lent: one entry a sample in each list.
struct Loan {
    std::deque<std::string> messages{};
    std::deque<Response> responses{};
    std::vector<void*> samples{};
    std::vector<DDS_SampleInfo> infos{};
};

struct World {
    int publications = 0, subscriptions = 0; // matched endpoints
    Router router{};
    // What the entities were created with, and what was written.
    DDS_Duration_t cleanupPeriod{};
    DDS_DataWriterQos writerQos{};
    DDS_DataReaderQos readerQos{};
    DDS_StatusMask readerMask = 0;
    DDS_DataReaderListener listener{};
    std::vector<RequestCopy> written{};
    bool isConnected = false; // there is a participant

    std::mutex mutex{};               // guards what follows
    std::vector<std::string> calls{}; // in order, without "DDS_" and the entity's name
    std::string failingCall{};
    int callsUntilFailure = 0; // counted down to the call that fails; 0 for none
    std::vector<std::pair<RequestId, Answer>> available{};
    std::vector<std::jthread> deliveries{};
    std::mutex turn{}; // the listener's, which has the loan
    std::optional<Loan> loan{};
};
World& world();

void reset();
void answerWith(const std::vector<Answer>& answers); // every request
// The n-th call of that name from now on fails, or of any when it is empty; none for 0.
void fail(const std::string& name, int n);
void forget(); // calls and requests; the entities stay

// Makes the answers available in one batch, and tells the listener.
void deliver(const std::vector<Answer>& answers);
void awaitIdle(); // until the listener has returned

} // namespace fake_dds
