// Who is in a domain: what participants and endpoints have told of themselves, and which of them are routers.
//
// Only what bears on administration is kept: participants, and their endpoints on the administration topics
// of both products. Filled from threads of the DDS library, read as copies.
#pragma once

#include "fleet/identity.h"
#include "fleet/wakeup.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace zul::fleet {

// A router reads requests and writes responses; who administers it does the reverse.
enum class Topic { REQUEST, RESPONSE };

struct Endpoint {
    Guid guid{};
    Product product{};
    Topic topic{};
    bool isReader = false;
    bool isThere = true; // false: deleted
    std::string type{};
    DDS_EndpointBuiltinTopicData qos{}; // without its texts, which are null

    bool isOfRouter() const { return isReader == (topic == Topic::REQUEST); }
};

enum class Presence { HERE, LEFT, LEASE_RAN_OUT };

struct Participant {
    GuidPrefix prefix{};
    std::string name{};       // of the participant
    std::string host{};       // its address; empty when not told
    std::uint16_t vendor = 0; // of its DDS library
    bool isSecured = false;
    DDS_Duration_t lease{};
    Presence presence = Presence::HERE;
    Clock::time_point since{};         // of its presence
    std::vector<Endpoint> endpoints{}; // on the administration topics; kept when it has gone
    std::string answersTo{};           // a name under which it has answered
    std::string announced{};           // what it has said its name is

    bool isHere() const { return presence == Presence::HERE; }
    // Its endpoint as a router of that product; null when it has none, or no longer.
    const Endpoint* requestReader(Product product) const { return find(product, Topic::REQUEST); }
    const Endpoint* responseWriter(Product product) const { return find(product, Topic::RESPONSE); }
    bool isRouter(Product product) const {
        return requestReader(product) != nullptr || responseWriter(product) != nullptr;
    }
    // It has or had a router's endpoints; or it is secured, shows none, and its name
    // says that it is a router.
    bool mayBeRouter() const;
    // The name to ask it by: one that it answers to, or what the participant's name says after the product,
    // or what it has announced. Empty when nothing tells.
    std::string routerName() const;

private:
    const Endpoint* find(Product product, Topic topic) const;
};

class Discovery {
public:
    // Each change notifies `wakeup`, which must outlive this.
    explicit Discovery(Wakeup& wakeup) : wakeup_(wakeup) {}
    Discovery(const Discovery&) = delete;
    Discovery& operator=(const Discovery&) = delete;

    // For a participant, which this must outlive.
    DDS_DomainParticipantListener listener();

    // In the order of their prefixes. Of those that have gone, only routers.
    std::vector<Participant> participants() const;
    // Those that have gone since the last call.
    std::vector<GuidPrefix> takeGone();
    void noteName(const GuidPrefix& prefix, const std::string& name, std::string Participant::*source);

    void note(const DDS_ParticipantBuiltinTopicData& data, DDS_UnsignedLong instanceState);
    void note(const DDS_EndpointBuiltinTopicData& data, bool isReader, DDS_UnsignedLong instanceState);

private:
    Participant& entry(const GuidPrefix& prefix);
    void forgetOldest();

    Wakeup& wakeup_;
    mutable std::mutex mutex_;
    std::map<GuidPrefix, Participant> participants_;
    std::vector<GuidPrefix> gone_; // not yet taken
};

} // namespace zul::fleet
