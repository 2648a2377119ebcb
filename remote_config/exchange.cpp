// Requests out and results in: what an outcome of the hand-over means to the sender. Who may claim a response
// when, and how a signal ends a wait, is in remote_config/hand_over.h.
#include "remote_config/exchange.h"

#include "admin_types/requests.h"
#include "middleware/base/strings.h"
#include "remote_config/hand_over.h"
#include "remote_config/log.h"
#include "remote_config/result_text.h"

using namespace zul::remote_config;

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
        remoteConfigError(SEND, ZUL_LOG_ANY_FAILURE_s, "write");
        return false; // oddity 17
    }
    if (!wait || self->noResponseWait) {
        // Still waiting: an early response is kept for `responseTimeout`, for the next send that waits.
        return true;
    }
    ResultText text(*result);
    const WaitEnd end = HandOver(*self).await([result, &text](const Response& response) {
        if (!text.append(response.message, SEND)) {
            return false;
        }
        result->kind = response.kind;
        return true;
    });
    if (end == WaitEnd::INTERRUPTED) {
        ROUTERRemoteConfigClient_reportInterrupted(result);
    } else if (end == WaitEnd::TIMED_OUT) {
        remoteConfigWarning(SEND, ZUL_LOG_ANY_s, "No response received");
    }
    return end == WaitEnd::ANSWERED || end == WaitEnd::INTERRUPTED;
}

void ROUTERRemoteConfigClient_reportInterrupted(ROUTERRemoteConfigResult* result) {
    result->kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    ZULString_copyBounded(result->textBuffer, sizeof(result->textBuffer), "Response not received");
}

bool ROUTERRemoteConfigClient_sendCommandAnnounce(ROUTERRemoteConfigClient* self) {
    admin::fillNames(*self->commandSample, *admin::findCommand(ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE), "*",
                     "");
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
