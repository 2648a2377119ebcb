// Samples of the two travelling types: creation, encoding into and decoding from buffers of the exact size
// (so that the address sanitizer sees every byte too far), and a text form to compare and to read in a
// failure.
#pragma once

#include "admin_types/derive/plugin.h"
#include "admin_types/descriptions.h"
#include "admin_types/type_support.h"

#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using Request = ZUL_RoutingService_Administration_CommandRequest;
using Response = ZUL_RoutingService_Administration_CommandResponse;
using Bytes = std::vector<std::uint8_t>;

template <class T>
constexpr bool isRequest = std::is_same_v<T, Request>;

template <class T>
struct Named;
template <>
struct Named<Request> {
    static constexpr auto create = ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data;
    static constexpr auto destroy = ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data;
    static constexpr auto newPlugin = ZUL_RoutingService_Administration_CommandRequestPlugin_new;
    static constexpr auto deletePlugin = ZUL_RoutingService_Administration_CommandRequestPlugin_delete;
};
template <>
struct Named<Response> {
    static constexpr auto create = ZUL_RoutingService_Administration_CommandResponseTypeSupport_create_data;
    static constexpr auto destroy = ZUL_RoutingService_Administration_CommandResponseTypeSupport_delete_data;
    static constexpr auto newPlugin = ZUL_RoutingService_Administration_CommandResponsePlugin_new;
    static constexpr auto deletePlugin = ZUL_RoutingService_Administration_CommandResponsePlugin_delete;
};

template <class T>
struct SampleDeleter {
    void operator()(T* sample) const { Named<T>::destroy(sample); }
};
template <class T>
using SamplePtr = std::unique_ptr<T, SampleDeleter<T>>;
template <class T>
SamplePtr<T> newSample() {
    return SamplePtr<T>(Named<T>::create());
}

template <class T>
const ZULTypePlugin& plugin() {
    struct Deleter {
        void operator()(ZULTypePlugin* p) const { Named<T>::deletePlugin(p); }
    };
    static const std::unique_ptr<ZULTypePlugin, Deleter> instance(Named<T>::newPlugin());
    return *instance;
}

// Nothing when the sample is refused or does not fit `capacity`.
template <class T>
std::optional<Bytes> encode(const T& sample, std::uint16_t id, std::size_t capacity,
                            ZULEndpointData* endpoint = nullptr) {
    Bytes bytes(capacity);
    ZULCdrOutput stream{.data = bytes.data(), .capacity = capacity};
    if (!plugin<T>().serialize(endpoint, &sample, &stream, true, id, true, nullptr)) {
        return std::nullopt;
    }
    bytes.resize(stream.position);
    return bytes;
}

struct Decoded {
    bool accepted;
    std::size_t consumed;
};
template <class T>
Decoded decode(T& sample, const std::uint8_t* bytes, std::size_t size) {
    const auto exact = std::make_unique<std::uint8_t[]>(size);
    std::copy_n(bytes, size, exact.get());
    ZULCdrInput stream{.data = exact.get(), .size = size};
    const bool accepted = plugin<T>().deserialize(nullptr, &sample, &stream, true, true, nullptr);
    return {accepted, stream.position};
}
template <class T>
Decoded decode(T& sample, const Bytes& bytes) {
    return decode(sample, bytes.data(), bytes.size());
}

inline void set(char* buffer, std::string_view text) {
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
}

// "host.app.invocation target kind", then every branch that is not in its initial state.
inline std::string text(const Request& request) {
    const auto& [id, target, command] = request;
    const auto& [desc, dummy, name, peer] = command._u;
    std::string out = std::to_string(id.host) + "." + std::to_string(id.app) + "." +
                      std::to_string(id.invocation) + " " + target + " " + std::to_string(command._d);
    if (*desc.name != '\0' || desc.xml_url.is_final != 0 || *desc.xml_url.content != '\0') {
        out += std::string(" desc{") + desc.name + "," + std::to_string(desc.xml_url.is_final) + "," +
               desc.xml_url.content + "}";
    }
    if (dummy != 0) {
        out += " dummy=" + std::to_string(dummy);
    }
    if (*name != '\0') {
        out += std::string(" name=") + name;
    }
    if (*peer.domain_route_name != '\0' || peer.is_first_participant != 0 || peer.peer_list.length != 0) {
        out +=
            std::string(" peer{") + peer.domain_route_name + "," + std::to_string(peer.is_first_participant);
        for (DDS_Long i = 0; i < peer.peer_list.length; ++i) {
            out += std::string(",") + ZULSequence::at(peer.peer_list, i);
        }
        out += "}";
    }
    return out;
}
inline std::string text(const Response& response) {
    return std::to_string(response.id.host) + "." + std::to_string(response.id.app) + "." +
           std::to_string(response.id.invocation) + " " + std::to_string(response.kind) + " " +
           response.message + (response.is_final != 0 ? " final" : "");
}
