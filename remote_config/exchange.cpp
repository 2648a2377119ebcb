// The sending thread's side of the hand-over. Three contexts meet: this thread S, the listener's thread L
// (response_listener.cpp), and a signal handler H on S.
//
// L publishes a sample in `currentResponse`, gives "ready" and waits for "taken". S, woken by "ready", claims
// the sample by exchanging `currentResponse` with null, so each claim answers exactly one publication and
// owes exactly one "taken". A "ready" without a sample is stray (L withdrew it, or H crossed a delivery): S
// waits on with the time that is left. H clears `waitingForResponse` and gives "ready". L publishes before it
// looks at `waitingForResponse` again, and S clears `waitingForResponse` before it looks for a last sample:
// one of them always sees the other, so no sample is left published with nobody to claim or withdraw it.
#include "remote_config/exchange.h"

#include "admin_types/type_support.h"
#include "middleware/strings.h"
#include "remote_config/log.h"

namespace {

using Response = ZUL_RoutingService_Administration_CommandResponse;

// The context of the exchange's log lines is deliberately an older name.
constexpr const char* CONTEXT = "ROUTERRemoteConfigClient_sendEntityMessage";

// The listener compares with this while the sender may already be counting on.
std::atomic_ref<DDS_Long> invocationOf(const ROUTERRemoteConfigClient& self) {
    return std::atomic_ref(self.commandSample->id.invocation);
}

bool isCurrentRequest(const ROUTERRemoteConfigClient& self,
                      const ZUL_RoutingService_Administration_CommandId& id) {
    const auto& current = self.commandSample->id;
    return id.host == current.host && id.app == current.app && id.invocation == invocationOf(self).load();
}

bool giveTaken(ROUTERRemoteConfigClient& self) {
    if (ZULSemaphore_give(self.responseTakenSemaphore) == ZUL_SEMAPHORE_OK) {
        return true;
    }
    remoteConfigError(CONTEXT, ZUL_LOG_SEMAPHORE_GIVE_FAILURE);
    return false;
}

// Lets a response that nobody will read go back to the listener.
void discardPublished(ROUTERRemoteConfigClient& self) {
    if (self.currentResponse.exchange(nullptr) != nullptr) {
        giveTaken(self);
    }
}

enum class Wait { RESPONSE, INTERRUPTED, TIMEOUT, ERROR };

// Waits for the next response to the current request. On RESPONSE, `response` is claimed and owes a "taken",
// and `waitingForResponse` stays true, so that an interrupt counts while the response is gathered. On any
// other outcome it is false, and nothing is owed.
Wait awaitResponse(ROUTERRemoteConfigClient& self, const Response*& response) {
    const ZULDeadline deadline = ZULDeadline_after(self.responseTimeout);
    for (;;) {
        const ZULSemaphoreStatus status = ZULSemaphore_take(self.responseReadySemaphore, deadline);
        response = self.currentResponse.exchange(nullptr);
        if (status == ZUL_SEMAPHORE_OK && self.waitingForResponse.load()) {
            if (response != nullptr && isCurrentRequest(self, response->id)) {
                return Wait::RESPONSE;
            }
            // A stray token, or an answer to an earlier request.
            if (response != nullptr) {
                giveTaken(self);
            }
            continue;
        }
        const bool wasWaiting = self.waitingForResponse.exchange(false);
        if (response != nullptr) {
            giveTaken(self);
        }
        discardPublished(self);
        if (!wasWaiting) {
            return Wait::INTERRUPTED;
        }
        return status == ZUL_SEMAPHORE_TIMEOUT ? Wait::TIMEOUT : Wait::ERROR;
    }
}

} // namespace

void ROUTERRemoteConfigClient_nextInvocation(ROUTERRemoteConfigClient* self) {
    const auto invocation = invocationOf(*self);
    // Counts as unsigned, so that the largest number is followed by the smallest.
    invocation.store(static_cast<DDS_Long>(static_cast<DDS_UnsignedLong>(invocation.load()) + 1));
}

bool ROUTERRemoteConfigClient_sendCommandRequest(ROUTERRemoteConfigClient* self,
                                                 ROUTERRemoteConfigResult* result, bool wait) {
    self->waitingForResponse.store(true);
    return ROUTERRemoteConfigClient_continueCommandRequest(self, result, wait);
}

bool ROUTERRemoteConfigClient_isInterrupted(const ROUTERRemoteConfigClient* self) {
    return !self->waitingForResponse.load(); // which nothing else ends between two sends
}

bool ROUTERRemoteConfigClient_continueCommandRequest(ROUTERRemoteConfigClient* self,
                                                     ROUTERRemoteConfigResult* result, bool wait) {
    result->kind = ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT;
    result->textBuffer[0] = '\0';
    result->text = nullptr;
    if (DDS_DataWriter_write(self->commandWriter, self->commandSample, &DDS_HANDLE_NIL) != DDS_RETCODE_OK) {
        remoteConfigError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "write");
        return false; // still waiting, deliberately
    }
    if (!wait || self->noResponseWait) {
        return true; // still waiting: an early response is kept for the next waiting send of this request
    }
    bool released = true;
    zul::remote_config::ResultText text(*result);
    for (;;) {
        const Response* response = nullptr;
        switch (awaitResponse(*self, response)) {
        case Wait::INTERRUPTED:
            ROUTERRemoteConfigClient_reportInterrupted(result);
            return true;
        case Wait::ERROR:
            remoteConfigError(CONTEXT, ZUL_LOG_SEMAPHORE_TAKE_FAILURE);
            return false;
        case Wait::TIMEOUT:
            remoteConfigWarning(CONTEXT, ZUL_LOG_ANY_s, "No response received");
            return false;
        case Wait::RESPONSE:
            break;
        }
        const bool gathered = text.append(response->message, CONTEXT);
        const bool isFinal = response->is_final != 0;
        if (gathered) {
            result->kind = response->kind;
        }
        if (isFinal || !gathered) {
            // Before the listener goes on, which drops what nobody waits for.
            self->waitingForResponse.store(false);
        }
        released = giveTaken(*self) && released;
        if (!gathered) {
            return false;
        }
        if (isFinal) {
            return released;
        }
    }
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
    if (self->waitingForResponse.exchange(false)) {
        ZULSemaphore_give(self->responseReadySemaphore);
    }
    return true;
}

void ROUTERRemoteConfigClient_releaseResponses(ROUTERRemoteConfigClient* self) {
    self->waitingForResponse.store(false);
    discardPublished(*self);
}

bool ROUTERRemoteConfigClient_isResponseDestination(const ROUTERRemoteConfigClient* self,
                                                    const Response* response) {
    const auto& id = response->id;
    return isCurrentRequest(*self, id) ||
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
