// Samples of the two travelling types: creation, encoding into and decoding from buffers of the exact size
// (so that the address sanitizer sees any byte beyond it), and a text form for comparisons and messages.
#pragma once

#include "admin_types/descriptions.h"
#include "admin_types/type_support.h"
#include "middleware/idl/plugin_operations.h"

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
auto newSample() {
    using Plugin = zul::idl::PluginOperations<zul::idl::Struct<T>>;
    return std::unique_ptr<T, void (*)(T*)>(Plugin::createData(DDS_TYPE_ALLOCATION_PARAMS_DEFAULT),
                                            Plugin::destroyData);
}
template <class T>
const ZULTypePlugin& plugin() {
    static const std::unique_ptr<ZULTypePlugin, void (*)(ZULTypePlugin*)> instance(
        isRequest<T> ? ZUL_RoutingService_Administration_CommandRequestPlugin_new()
                     : ZUL_RoutingService_Administration_CommandResponsePlugin_new(),
        isRequest<T> ? ZUL_RoutingService_Administration_CommandRequestPlugin_delete
                     : ZUL_RoutingService_Administration_CommandResponsePlugin_delete);
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
Decoded decode(T& sample, std::span<const std::uint8_t> bytes) {
    const auto exact = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), exact.get());
    ZULCdrInput stream{.data = exact.get(), .size = bytes.size()};
    const bool accepted = plugin<T>().deserialize(nullptr, &sample, &stream, true, true, nullptr);
    return {accepted, stream.position};
}

inline void set(char* buffer, std::string_view text) {
    std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
}

// "host.app.invocation"
inline std::string text(const decltype(Request::id)& id) {
    return std::to_string(id.host) + "." + std::to_string(id.app) + "." + std::to_string(id.invocation);
}
// Identity, target and kind, then every branch that is not in its initial state.
inline std::string text(const Request& request) {
    const auto& [desc, dummy, name, peer] = request.command._u;
    const auto& [isFinal, content] = desc.xml_url;
    std::string peers = std::string(peer.domain_route_name) + "," + std::to_string(peer.is_first_participant);
    for (DDS_Long i = 0; i < peer.peer_list.length; ++i) {
        peers += std::string(",") + ZULSequence::at(peer.peer_list, i);
    }
    const std::string description = std::string(desc.name) + "," + std::to_string(isFinal) + "," + content;
    return text(request.id) + " " + request.target_router + " " + std::to_string(request.command._d) +
           (description == ",0," ? "" : " desc{" + description + "}") +
           (dummy == 0 ? "" : " dummy=" + std::to_string(dummy)) +
           (*name == '\0' ? "" : std::string(" name=") + name) +
           (peers == ",0" ? "" : " peer{" + peers + "}");
}
inline std::string text(const Response& response) {
    return text(response.id) + " " + std::to_string(response.kind) + " " + response.message +
           (response.is_final != 0 ? " final" : "");
}
