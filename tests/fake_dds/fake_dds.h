// A DDS without a network, for tests: implements middleware/dds/dds.h for one participant at a time, notes
// every call, fails the one it is told to fail, keeps written requests, and delivers responses to the
// reader's listener from a thread of its own. A released loan is poisoned and freed, so that whoever still
// reads it is found.
//
// Everything lives in the one `world()`, emptied by `reset()`. The free functions may be called from any
// thread; the plain settings are changed only while no delivery is under way.
#pragma once

#include "admin_types/type_support.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace fake_dds {

using Request = ZUL_RoutingService_Administration_CommandRequest;
using RequestId = ZUL_RoutingService_Administration_CommandId;
using Response = ZUL_RoutingService_Administration_CommandResponse;

// One response to deliver. The message may be longer than what fits on the wire.
struct Answer {
    RequestId id{};
    DDS_Long kind = 0;
    std::string message{};
    bool isFinal = true;
    bool isValid = true; // false: a sample without data
};

// Called at points of a test's choosing; empty ones are skipped.
struct Hooks {
    std::function<void(const Request&)> onWrite{}; // writing thread, after the request was noted and kept
    std::function<void()> onReturnLoan{};          // delivery thread, the loan is still good
};

using RequestCopy = std::unique_ptr<Request, DDS_ReturnCode_t (*)(Request*)>;

} // namespace fake_dds

struct DDS_Entity {};
struct DDS_Publisher {};
struct DDS_Subscriber {};
struct DDS_Topic {};
struct DDS_DataWriter {};
struct DDS_DataReader {
    struct Sample {
        fake_dds::Response* response; // owned
        bool isValid;
    };
    DDS_DataReaderListener listener;
    std::vector<Sample> available{};
    std::vector<void*> loan{};
    std::vector<DDS_SampleInfo> loanInfos{};
    bool isPending = false;
    bool isBusy = false;
    std::condition_variable_any change{};
    // Its end waits for a running callback; samples and loans stay.
    std::jthread thread{[this](const std::stop_token& stop) {
        run(stop);
    }};

    void run(const std::stop_token& stop);
    ~DDS_DataReader();
};
struct DDS_DomainParticipant : DDS_Entity {
    std::unique_ptr<DDS_DataReader> reader{};
    bool isEmpty = true;
};

namespace fake_dds {

struct World {
    // Settings: matched endpoints.
    int publications = 0;
    int subscriptions = 0;
    std::atomic<int> openLoans = 0;
    // Of the writing thread: requests in order, and the QoS that the entities were created with.
    std::vector<RequestCopy> written{};
    DDS_Duration_t cleanupPeriod{};
    DDS_DataWriterQos writerQos{};
    DDS_DataReaderQos readerQos{};
    DDS_StatusMask readerMask = 0;

    std::mutex mutex{};               // guards what follows and all entities while a delivery is under way
    std::vector<std::string> calls{}; // in order, without "DDS_" and the entity's name
    std::string failingCall{};
    int callsUntilFailure = 0; // counted down to the call that fails; 0 for none
    std::unique_ptr<DDS_DomainParticipant> participant{};
    Hooks hooks{};

    // Notes the call; an error when it is to fail.
    DDS_ReturnCode_t note(const std::string& name);
    Hooks currentHooks();
    // With the mutex held; null when there is none.
    DDS_DataReader* reader() const { return participant != nullptr ? participant->reader.get() : nullptr; }
};
World& world();

// Ends the delivery thread and forgets everything.
void reset();
void setHooks(const Hooks& hooks);
// The n-th call of that name from now on fails, or of any when it is empty; none for 0.
void fail(const std::string& name, int n);
void forget(); // calls and requests; the entities stay

// Makes the samples available at once, in one batch, and notes it for the listener, if there is one.
void deliver(const std::vector<Answer>& answers);
// Waits until the listener has nothing left to do. False after 30 s.
bool awaitIdle();

} // namespace fake_dds
