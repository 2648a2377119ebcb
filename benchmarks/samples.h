// Typical samples of the administration types, and their bytes as the product's own codec writes them, so
// that a baseline sends exactly what the client sends.
#pragma once

#include "admin_types/type_support.h"
#include "benchmarks/raw_dds.h"

#include <memory>
#include <string_view>

namespace samples {

using Request = ZUL_RoutingService_Administration_CommandRequest;
using Response = ZUL_RoutingService_Administration_CommandResponse;

constexpr const char* ROUTER = "router1";
constexpr const char* ENTITY = "DefaultDomainRoute";

struct Deleter {
    void operator()(Request* sample) const;
    void operator()(Response* sample) const;
    void operator()(ZULTypePlugin* plugin) const;
};
using RequestPtr = std::unique_ptr<Request, Deleter>;
using ResponsePtr = std::unique_ptr<Response, Deleter>;

// `id` tells one request from another; any value will do.
RequestPtr enableRequest(DDS_Long id);
// One piece of an upload, `content` of at most 4096 characters.
RequestPtr loadRequest(DDS_Long id, std::string_view content, bool isFinal);
ResponsePtr response(DDS_Long id, std::string_view message);

// A type plugin with a writer's and a reader's endpoint data: encodes and decodes as the middleware does.
class Codec {
public:
    explicit Codec(ZULTypePlugin* plugin); // takes it over
    ~Codec();
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;

    // Bytes written into `buffer`, encapsulation included; 0 when they do not fit.
    std::size_t encode(const void* sample, std::uint8_t* buffer, std::size_t size) const {
        ZULCdrOutput stream{.data = buffer, .capacity = size};
        return plugin_->serialize(writer_, sample, &stream, true, ZUL_ENCAPSULATION_CDR_LE, true, nullptr)
                   ? stream.position
                   : 0;
    }
    bool decode(const std::uint8_t* buffer, std::size_t size, void* sample) const {
        ZULCdrInput stream{.data = buffer, .size = size};
        return plugin_->deserialize(reader_, sample, &stream, true, true, nullptr);
    }

private:
    std::unique_ptr<ZULTypePlugin, Deleter> plugin_;
    ZULParticipantData* participant_;
    ZULEndpointData* writer_;
    ZULEndpointData* reader_;
};

raw::Bytes encoded(const Request& request);

} // namespace samples
