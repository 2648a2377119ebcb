// Requests out and results in: what an outcome of the hand-over means to the sender. Who may claim a response
// when, and how a signal ends a wait, is in remote_config/hand_over.h.
#include "remote_config/exchange.h"

#include "middleware/base/strings.h"
#include "remote_config/hand_over.h"
#include "remote_config/log.h"
#include "remote_config/result_text.h"

using zul::remote_config::HandOver;
using zul::remote_config::Response;
using zul::remote_config::WaitEnd;

namespace {

constexpr const char* CONTEXT = "ROUTERRemoteConfigClient_sendEntityMessage"; // oddity 7

} // namespace

void ROUTERRemoteConfigClient_nextInvocation(ROUTERRemoteConfigClient* self) {
    HandOver(*self).nextRequest();
}

bool ROUTERRemoteConfigClient_sendCommandRequest(ROUTERRemoteConfigClient* self,
                                                 ROUTERRemoteConfigResult* result, bool wait) {
    HandOver(*self).begin();
    return ROUTERRemoteConfigClient_continueCommandRequest(self, result, wait);
}

bool ROUTERRemoteConfigClient_isInterrupted(ROUTERRemoteConfigClient* self) {
    return HandOver(*self).isInterrupted();
}

bool ROUTERRemoteConfigClient_continueCommandRequest(ROUTERRemoteConfigClient* self,
                                                     ROUTERRemoteConfigResult* result, bool wait) {
    result->kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT;
    result->textBuffer[0] = '\0';
    result->text = nullptr;
    if (DDS_DataWriter_write(self->commandWriter, self->commandSample, &DDS_HANDLE_NIL) != DDS_RETCODE_OK) {
        remoteConfigError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "write");
        return false; // oddity 17
    }
    if (!wait || self->noResponseWait) {
        return true; // still waiting: an early response is kept for the next waiting send of this request
    }
    zul::remote_config::ResultText text(*result);
    const WaitEnd end = HandOver(*self).await([result, &text](const Response& response) {
        if (!text.append(response.message, CONTEXT)) {
            return false;
        }
        result->kind = response.kind;
        return true;
    });
    switch (end) {
    case WaitEnd::ANSWERED:
        return true;
    case WaitEnd::INTERRUPTED:
        ROUTERRemoteConfigClient_reportInterrupted(result);
        return true;
    case WaitEnd::TAKE_FAILED:
        remoteConfigError(CONTEXT, ZUL_LOG_SEMAPHORE_TAKE_FAILURE);
        return false;
    case WaitEnd::TIMED_OUT:
        remoteConfigWarning(CONTEXT, ZUL_LOG_ANY_s, "No response received");
        return false;
    case WaitEnd::GIVE_FAILED:
    case WaitEnd::NOT_GATHERED:
        break; // logged where it happened
    }
    return false;
}

void ROUTERRemoteConfigClient_reportInterrupted(ROUTERRemoteConfigResult* result) {
    result->kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    ZULString_copyBounded(result->textBuffer, sizeof(result->textBuffer), "Response not received");
}

bool ROUTERRemoteConfigClient_sendCommandAnnounce(ROUTERRemoteConfigClient* self) {
    auto& request = *self->commandSample;
    ZULString_copyBounded(request.target_router, admin::ENTITY_NAME_BOUND + 1, "*");
    request.command._d = ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE;
    ROUTERRemoteConfigClient_nextInvocation(self);
    if (DDS_DataWriter_write(self->commandWriter, self->commandSample, &DDS_HANDLE_NIL) != DDS_RETCODE_OK) {
        remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "write");
        return false;
    }
    return true;
}

bool ROUTERRemoteConfigClient_abortResponseWait(ROUTERRemoteConfigClient* self) {
    HandOver(*self).abort();
    return true;
}

void ROUTERRemoteConfigClient_releaseResponses(ROUTERRemoteConfigClient* self) {
    HandOver(*self).close();
}

bool ROUTERRemoteConfigClient_isResponseDestination(ROUTERRemoteConfigClient* self,
                                                    const Response* response) {
    const auto& id = response->id;
    return HandOver(*self).isAnswer(*response) ||
           (id.host == 0 && id.app == 0 && id.invocation == 0 &&
            response->kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT);
}

bool ROUTERRemoteConfigClient_hasMatchingServer(ROUTERRemoteConfigClient* self) {
    DDS_InstanceHandleSeq handles{};
    const bool matched =
        DDS_DataReader_get_matched_publications(self->responseReader, &handles) == DDS_RETCODE_OK &&
        ZULSequence::get_length(&handles, __func__) > 0 &&
        DDS_DataWriter_get_matched_subscriptions(self->commandWriter, &handles) == DDS_RETCODE_OK &&
        ZULSequence::get_length(&handles, __func__) > 0;
    ZULSequence::finalize(&handles, __func__);
    return matched;
}
