#include "benchmarks/samples.h"

#include "middleware/base/heap.h"
#include "middleware/base/strings.h"

namespace samples {

void Deleter::operator()(Request* sample) const {
    ZUL_RoutingService_Administration_CommandRequestTypeSupport_delete_data(sample);
}
void Deleter::operator()(Response* sample) const {
    ZUL_RoutingService_Administration_CommandResponseTypeSupport_delete_data(sample);
}
void Deleter::operator()(ZULTypePlugin* plugin) const {
    ZULHeap_free(plugin);
}

namespace {

RequestPtr newRequest(DDS_Long id, ZUL_RoutingService_Administration_CommandKind kind) {
    RequestPtr request(ZUL_RoutingService_Administration_CommandRequestTypeSupport_create_data());
    if (request == nullptr) {
        raw::fail("create a request");
    }
    request->id = {.host = id, .app = id, .invocation = id};
    ZULString_copyBounded(request->target_router, admin::ENTITY_NAME_BOUND + 1, ROUTER);
    request->command._d = kind;
    return request;
}

} // namespace

RequestPtr enableRequest(DDS_Long id) {
    RequestPtr request = newRequest(id, ZUL_ROUTING_SERVICE_COMMAND_ENABLE);
    ZULString_copyBounded(request->command._u.entity_name, admin::ENTITY_NAME_BOUND + 1, ENTITY);
    return request;
}

RequestPtr loadRequest(DDS_Long id, std::string_view content, bool isFinal) {
    RequestPtr request = newRequest(id, ZUL_ROUTING_SERVICE_COMMAND_LOAD);
    auto& description = request->command._u.entity_desc;
    ZULString_copyBounded(description.name, admin::ENTITY_NAME_BOUND + 1, ENTITY);
    ZULString_copyBounded(description.xml_url.content, admin::XML_CONTENT_BOUND + 1, content);
    description.xml_url.is_final = isFinal ? 1 : 0;
    return request;
}

ResponsePtr response(DDS_Long id, std::string_view message) {
    ResponsePtr sample(ZUL_RoutingService_Administration_CommandResponseTypeSupport_create_data());
    if (sample == nullptr) {
        raw::fail("create a response");
    }
    sample->id = {.host = id, .app = id, .invocation = id};
    sample->kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    ZULString_copyBounded(sample->message, admin::XML_CONTENT_BOUND + 1, message);
    sample->is_final = 1;
    return sample;
}

Codec::Codec(ZULTypePlugin* plugin)
    : plugin_(plugin),
      participant_(plugin_->onParticipantAttached()),
      writer_(plugin_->onEndpointAttached(participant_, {ZUL_ENDPOINT_WRITER})),
      reader_(plugin_->onEndpointAttached(participant_, {ZUL_ENDPOINT_READER})) {
    if (writer_ == nullptr || reader_ == nullptr) {
        raw::fail("create endpoint data");
    }
}

Codec::~Codec() {
    plugin_->onEndpointDetached(reader_);
    plugin_->onEndpointDetached(writer_);
    plugin_->onParticipantDetached(participant_);
}

raw::Bytes encoded(const Request& request) {
    const Codec codec(ZUL_RoutingService_Administration_CommandRequestPlugin_new());
    raw::Bytes bytes(raw::PAYLOAD_MAX);
    bytes.resize(codec.encode(&request, bytes.data(), bytes.size()));
    return bytes;
}

} // namespace samples
