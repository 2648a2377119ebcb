#include "benchmarks/connected_client.h"

#include "benchmarks/patience.h"
#include "benchmarks/samples.h"
#include "remote_config/entity_commands.h"
#include "remote_config/url_commands.h"

#include <cstring>

ConnectedClient::ConnectedClient(DDS_Long domainId)
    : client_(ROUTERRemoteConfigClient_new(domainId, PROBE_SECONDS)) {
    if (client_ == nullptr) {
        raw::fail("create the client");
    }
    ROUTERRemoteConfigResult_initialize(&result_);
    for (int attempt = 0; attempt < PROBES; ++attempt) {
        if (enable()) {
            client_->responseTimeout.sec = ANSWER_SECONDS;
            return;
        }
    }
    raw::fail("the responder does not answer the client");
}

ConnectedClient::~ConnectedClient() {
    ROUTERRemoteConfigClient_delete(client_);
}

bool ConnectedClient::enable() {
    const bool answered =
        ROUTERRemoteConfigClient_sendCommandEnable(client_, samples::ROUTER, samples::ENTITY, &result_);
    ROUTERRemoteConfigResult_finalize(&result_);
    return answered;
}

std::size_t ConnectedClient::getDocument() {
    const bool answered = ROUTERRemoteConfigClient_sendCommandGet(client_, samples::ROUTER, &result_);
    const std::size_t length = answered && result_.text != nullptr ? std::strlen(result_.text) : 0;
    ROUTERRemoteConfigResult_finalize(&result_);
    return length;
}

bool ConnectedClient::load(const char* path) {
    const auto status = ROUTERRemoteConfigClient_sendCommandLoad(client_, samples::ROUTER, samples::ENTITY,
                                                                 path, false, &result_);
    const bool taken =
        status == ROUTER_URL_COMMAND_OK && result_.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    ROUTERRemoteConfigResult_finalize(&result_);
    return taken;
}
