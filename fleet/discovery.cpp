// An endpoint may be heard of before its participant; both orders lead to one entry.
#include "fleet/discovery.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace zul::fleet {

namespace {

// What is kept of one participant, and of those that have gone: anybody can announce more.
constexpr std::size_t MAX_ENDPOINTS = 16;
constexpr std::size_t MAX_GONE = 256;

constexpr std::string_view NAME_SEPARATOR = ": "; // between a product and the name of one of its services

struct AdministrationTopic {
    Product product;
    Topic topic;
};

std::optional<AdministrationTopic> administrationTopic(std::string_view name) {
    for (const Product product : PRODUCTS) {
        if (name == infoOf(product).administrationRequestTopicName) {
            return AdministrationTopic{product, Topic::REQUEST};
        }
        if (name == infoOf(product).administrationResponseTopicName) {
            return AdministrationTopic{product, Topic::RESPONSE};
        }
    }
    return std::nullopt;
}

// The part of a participant's name after a product's; null when it does not begin with one.
std::optional<std::string> nameAfterProduct(std::string_view name) {
    for (const Product product : PRODUCTS) {
        const std::string begin = std::string(infoOf(product).productName).append(NAME_SEPARATOR);
        if (name.starts_with(begin) && name.size() > begin.size()) {
            return std::string(name.substr(begin.size()));
        }
    }
    return std::nullopt;
}

} // namespace

const Endpoint* Participant::find(Product product, Topic topic) const {
    const auto found = std::ranges::find_if(endpoints, [&](const Endpoint& endpoint) {
        return endpoint.isThere && endpoint.product == product && endpoint.topic == topic &&
               endpoint.isOfRouter();
    });
    return found != endpoints.end() ? &*found : nullptr;
}

bool Participant::mayBeRouter() const {
    return std::ranges::any_of(endpoints, &Endpoint::isOfRouter) ||
           (isSecured && endpoints.empty() && nameAfterProduct(name).has_value());
}

std::string Participant::routerName() const {
    return !answersTo.empty() ? answersTo : nameAfterProduct(name).value_or(announced);
}

DDS_DomainParticipantListener Discovery::listener() {
    return {
        .listener_data = this,
        .on_participant = [](void* self, const DDS_ParticipantBuiltinTopicData* data,
                             DDS_UnsignedLong state) { static_cast<Discovery*>(self)->note(*data, state); },
        .on_publication =
            [](void* self, const DDS_PublicationBuiltinTopicData* data, DDS_UnsignedLong state) {
                static_cast<Discovery*>(self)->note(*data, false, state);
            },
        .on_subscription =
            [](void* self, const DDS_SubscriptionBuiltinTopicData* data, DDS_UnsignedLong state) {
                static_cast<Discovery*>(self)->note(*data, true, state);
            }};
}

void Discovery::note(const DDS_ParticipantBuiltinTopicData& data, DDS_UnsignedLong instanceState) {
    const GuidPrefix prefix = prefixOf(guidOf(data.key.value));
    {
        const std::lock_guard lock(mutex_);
        Participant& participant = entry(prefix);
        const bool isHere = instanceState == DDS_ALIVE_INSTANCE_STATE;
        if (isHere) {
            if (participant.presence != Presence::HERE) { // it is back, and will tell of its endpoints again
                participant = {.prefix = prefix, .since = Clock::now()};
            }
            participant.name = data.participant_name.name;
            participant.host = data.default_unicast_address;
            participant.vendor =
                static_cast<std::uint16_t>(data.rtps_vendor_id[0] << 8 | data.rtps_vendor_id[1]);
            participant.isSecured = data.has_identity_token != 0;
            participant.lease = data.lease_duration;
        } else if (!participant.mayBeRouter()) {
            participants_.erase(prefix);
        } else {
            participant.presence = instanceState == DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE
                                       ? Presence::LEASE_RAN_OUT
                                       : Presence::LEFT;
            participant.since = Clock::now();
            if (gone_.size() == MAX_GONE) {
                gone_.erase(gone_.begin()); // a wait for it ends by its time-out
            }
            gone_.push_back(prefix);
            forgetOldest();
        }
    }
    wakeup_.notify();
}

// With the mutex held. Makes the entry of one that is not known.
Participant& Discovery::entry(const GuidPrefix& prefix) {
    return participants_.try_emplace(prefix, Participant{.prefix = prefix, .since = Clock::now()})
        .first->second;
}

// With the mutex held.
void Discovery::forgetOldest() {
    const auto isGone = [](const auto& entry) {
        return !entry.second.isHere();
    };
    if (static_cast<std::size_t>(std::ranges::count_if(participants_, isGone)) > MAX_GONE) {
        participants_.erase(std::ranges::min_element(participants_, {}, [&](const auto& entry) {
            return isGone(entry) ? entry.second.since : Clock::time_point::max();
        }));
    }
}

void Discovery::note(const DDS_EndpointBuiltinTopicData& data, bool isReader,
                     DDS_UnsignedLong instanceState) {
    const auto topic = administrationTopic(data.topic_name);
    if (!topic) {
        return;
    }
    const Guid guid = guidOf(data.key.value);
    {
        const std::lock_guard lock(mutex_);
        Participant& participant = entry(prefixOf(guid));
        // One that was deleted is kept until there is another: a router
        // that leaves deletes its endpoints first.
        for (Endpoint& known : participant.endpoints) {
            known.isThere = known.isThere && known.guid != guid;
        }
        if (instanceState == DDS_ALIVE_INSTANCE_STATE) {
            std::erase_if(participant.endpoints, [&](const Endpoint& known) {
                return !known.isThere && known.topic == topic->topic && known.isReader == isReader;
            });
        }
        if (instanceState == DDS_ALIVE_INSTANCE_STATE && participant.endpoints.size() < MAX_ENDPOINTS) {
            Endpoint endpoint{.guid = guid,
                              .product = topic->product,
                              .topic = topic->topic,
                              .isReader = isReader,
                              .type = data.type_name,
                              .qos = data};
            endpoint.qos.topic_name = nullptr;
            endpoint.qos.type_name = nullptr;
            participant.endpoints.push_back(std::move(endpoint));
        }
    }
    wakeup_.notify();
}

std::vector<Participant> Discovery::participants() const {
    const std::lock_guard lock(mutex_);
    std::vector<Participant> all;
    for (const auto& [prefix, participant] : participants_) {
        all.push_back(participant);
    }
    return all;
}

std::vector<GuidPrefix> Discovery::takeGone() {
    const std::lock_guard lock(mutex_);
    return std::exchange(gone_, {});
}

void Discovery::noteName(const GuidPrefix& prefix, const std::string& name,
                         std::string Participant::*source) {
    const std::lock_guard lock(mutex_);
    if (const auto found = participants_.find(prefix); found != participants_.end()) {
        found->second.*source = name;
    }
}

} // namespace zul::fleet
