// A joined domain: one participant, and for each product wanted a writer of requests and a reader of
// responses with the topics, types and policies that every client of the routers has. One thread, except
// where it says otherwise.
#pragma once

#include "fleet/command.h"
#include "fleet/discovery.h"
#include "fleet/response_queue.h"

#include <functional>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

namespace zul::fleet {

enum class Sent { YES, INTERRUPTED, NO_ROOM, FAILED };

class Domain {
public:
    // Null, with `error` filled, when it cannot be joined. `wakeup` must outlive the domain; it is notified
    // when a response arrives or discovery changes something.
    static std::unique_ptr<Domain> join(std::int32_t id, std::span<const Product> products, Wakeup& wakeup,
                                        std::string& error);
    ~Domain();
    Domain(const Domain&) = delete;
    Domain& operator=(const Domain&) = delete;

    std::int32_t id() const { return id_; }
    Clock::time_point joined() const { return joined_; }
    Discovery& discovery() { return discovery_; }

    // The endpoints of others that those of this participant have matched.
    std::set<Guid> matched() const;

    // Sends a command to the router of that name, in as many samples as it takes, under a number that no
    // other request has, which is returned in `invocation`. Waits for room up to `patience` for each sample,
    // if routers do not acknowledge. `onPiece`, if there is one, is told of each sample of several, and again
    // while it waits: bytes of the URL sent so far, and of all of it.
    using OnPiece = std::function<void(std::size_t sent, std::size_t total)>;
    Sent send(Product product, const Command& command, const std::string& router, Clock::duration patience,
              std::int32_t& invocation, const OnPiece& onPiece = {});

    // The responses to requests of this participant that have arrived since the last call.
    ResponseQueue::Batch takeResponses() { return responses_.take(); }

private:
    struct Link;
    Domain(std::int32_t id, Wakeup& wakeup);
    bool createParticipant(std::string& error);
    Link* open(Product product, std::string& error);
    static void onData(void* self, DDS_DataReader* reader);
    void receive(const ZUL_RoutingService_Administration_CommandResponse& response, const Guid& writer);

    std::int32_t id_;
    Clock::time_point joined_ = Clock::now();
    Wakeup& wakeup_;
    Discovery discovery_;
    DDS_DomainParticipant* participant_ = nullptr;
    std::vector<std::unique_ptr<Link>> links_;
    std::int32_t host_ = 0; // of the ids of all requests
    std::int32_t application_ = 0;
    std::int32_t lastInvocation_ = 0;
    ResponseQueue responses_;
};

} // namespace zul::fleet
