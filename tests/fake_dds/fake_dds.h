// A DDS without a network, for tests: implements middleware/dds.h for one participant at a time, notes every
// call in order as one line of text, fails the calls it is told to fail, keeps written requests, and delivers
// responses to the reader's listener from a thread of its own, which blocks all signals. A released loan is
// poisoned and freed, so that whoever still reads it is found.
//
// Everything lives in the one `world()`, emptied by `reset()`. The free functions may be called from any
// thread; the plain settings are changed only while no delivery is under way.
#pragma once

#include "admin_types/type_support.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <map>
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

struct RequestDeleter {
    void operator()(Request* request) const {
        ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data(request);
    }
};

} // namespace fake_dds

struct DDS_Entity {};
struct DDS_Publisher {};
struct DDS_Subscriber {};
struct DDS_DataWriter {};
struct DDS_Topic {
    std::string name;
};
struct DDS_DataReader {
    struct Sample {
        fake_dds::Response* response; // owned
        bool isValid;
    };
    DDS_DataReaderListener listener;
    std::vector<Sample> available{};
    std::vector<void*> loan{};
    bool isPending = false;
    bool isBusy = false;
    std::condition_variable_any change{};
    std::jthread thread{}; // its end waits for a running callback; samples and loans stay

    void start();
    void run(const std::stop_token& stop);
    ~DDS_DataReader();
};
struct DDS_DomainParticipant : DDS_Entity {
    DDS_UnsignedLong number = 0;
    DDS_Publisher publisher{};
    DDS_Subscriber subscriber{};
    std::map<std::string, DDS_Topic> topics{}; // by name
    DDS_DataWriter writer{};
    std::unique_ptr<DDS_DataReader> reader{};
    std::size_t contained = 0; // entities
};

namespace fake_dds {

struct World {
    // Settings: matched endpoints.
    int publications = 0;
    int subscriptions = 0;
    std::atomic<int> openLoans = 0;

    std::mutex mutex{}; // guards what follows and all entities
    std::vector<std::string> calls{};
    std::vector<std::unique_ptr<Request, RequestDeleter>> written{};
    std::map<std::string, std::pair<int, DDS_ReturnCode_t>> failures{}; // occurrence and code, by call
    std::unique_ptr<DDS_DomainParticipant> participant{};
    DDS_UnsignedLong participantsMade = 0;
    Hooks hooks{};

    // Notes the call "name arguments"; what it is told to fail with, or OK.
    DDS_ReturnCode_t note(const std::string& name, const std::string& arguments = "");
    template <class Hook, class... Arguments>
    void call(Hook Hooks::*which, const Arguments&... arguments) {
        std::unique_lock lock(mutex);
        const Hook hook = hooks.*which;
        lock.unlock();
        if (hook) {
            hook(arguments...);
        }
    }
    // With the mutex held; null when there is none.
    DDS_DataReader* reader() const { return participant != nullptr ? participant->reader.get() : nullptr; }
};
World& world();

// Ends the delivery thread and forgets everything.
void reset();
void setHooks(const Hooks& hooks);
// The `occurrence`-th call from now on of that name (without "DDS_" and the entity's name, as in `calls`)
// fails: it returns null or `code`.
void fail(const std::string& name, int occurrence = 1, DDS_ReturnCode_t code = DDS_RETCODE_ERROR);
// Calls so far, "name argument...", those during a delivery in its order.
std::vector<std::string> calls();
// Requests written so far, in order; valid until `forget` or `reset`.
std::vector<const Request*> written();
void forget(); // calls and requests; the entities stay
std::size_t liveEntities();

// Makes the samples available at once, in one batch, and notes it for the listener, if there is one.
void deliver(const std::vector<Answer>& answers);
// Waits until the listener has nothing left to do. False after 30 s.
bool awaitIdle();

} // namespace fake_dds
