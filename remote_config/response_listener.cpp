#include "remote_config/response_listener.h"

#include "admin_types/type_support.h"
#include "remote_config/exchange.h"
#include "remote_config/log.h"

namespace {

using Response = ZUL_RoutingService_Administration_CommandResponse;

constexpr const char* CONTEXT = "ZUL_RoutingService_Administration_CommandResponseListener_on_data_available";
constexpr DDS_UnsignedLong HAND_OVER_PAUSE_NANOSECONDS = 1'000'000;

bool isWanted(const ROUTERRemoteConfigClient& client, const Response& response) {
    return client.waitingForResponse.load() &&
           ROUTERRemoteConfigClient_isResponseDestination(&client, &response) &&
           response.kind != ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT;
}

// Takes back a sample that nobody has claimed. False when it was claimed meanwhile.
bool withdraw(ROUTERRemoteConfigClient& client, const Response& response) {
    const Response* expected = &response;
    return client.currentResponse.compare_exchange_strong(expected, nullptr);
}

void awaitTaken(ROUTERRemoteConfigClient& client, const ZULDeadline& deadline, const Response& response) {
    const ZULSemaphoreStatus status = ZULSemaphore_take(client.responseTakenSemaphore, deadline);
    if (status == ZUL_SEMAPHORE_OK) {
        return;
    }
    if (status == ZUL_SEMAPHORE_ERROR) {
        remoteConfigError(CONTEXT, ZUL_LOG_SEMAPHORE_TAKE_FAILURE);
    } else {
        remoteConfigError(CONTEXT, ZUL_LOG_ANY_s, "timeout");
    }
    if (!withdraw(client, response)) {
        // The sending thread is reading it: the loan must wait, but not for long.
        ZULSemaphore_take(client.responseTakenSemaphore,
                          ZULDeadline_after({.sec = ZUL_TIME_FOREVER_SEC, .frac = 0}));
    }
}

void handOver(ROUTERRemoteConfigClient& client, const Response& response) {
    client.currentResponse.store(&response);
    // The wait may have ended since it was looked at; then nobody may be left to claim the sample.
    if (!client.waitingForResponse.load() && withdraw(client, response)) {
        return;
    }
    if (ZULSemaphore_give(client.responseReadySemaphore) != ZUL_SEMAPHORE_OK) {
        remoteConfigError(CONTEXT, ZUL_LOG_SEMAPHORE_GIVE_FAILURE);
    }
    ZULSleep(0, HAND_OVER_PAUSE_NANOSECONDS);
    awaitTaken(client, ZULDeadline_after(client.responseTimeout), response);
}

} // namespace

void ZUL_RoutingService_Administration_CommandResponseListener_on_data_available(void* listenerData,
                                                                                 DDS_DataReader* reader) {
    auto& client = *static_cast<ROUTERRemoteConfigClient*>(listenerData);
    auto* typed = ZUL_RoutingService_Administration_CommandResponseDataReader_narrow(reader);
    if (typed == nullptr) {
        remoteConfigError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "data reader narrow");
        return;
    }
    ZUL_RoutingService_Administration_CommandResponseSeq responses{};
    DDS_SampleInfoSeq infos{};
    const DDS_ReturnCode_t code = ZUL_RoutingService_Administration_CommandResponseDataReader_take(
        typed, &responses, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
        DDS_ANY_INSTANCE_STATE);
    if (code == DDS_RETCODE_OK) {
        const DDS_Long count = ZUL_RoutingService_Administration_CommandResponseSeq_get_length(&responses);
        for (DDS_Long i = 0; i < count; ++i) {
            const auto& response =
                *ZUL_RoutingService_Administration_CommandResponseSeq_get_reference(&responses, i);
            if (ZULSequence::at(infos, i).valid_data != 0 && isWanted(client, response)) {
                handOver(client, response);
            }
        }
        if (ZUL_RoutingService_Administration_CommandResponseDataReader_return_loan(
                typed, &responses, &infos) != DDS_RETCODE_OK) {
            remoteConfigError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "return loan");
        }
    } else if (code != DDS_RETCODE_NO_DATA) {
        remoteConfigError(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "take");
    }
}

// Statuses that the client has no use for.
#define ZUL_IGNORED_STATUS(status)                                                                           \
    static void ZUL_RoutingService_Administration_CommandResponseListener_##status(void*, DDS_DataReader*) {}
ZUL_IGNORED_STATUS(on_requested_deadline_missed)
ZUL_IGNORED_STATUS(on_requested_incompatible_qos)
ZUL_IGNORED_STATUS(on_sample_rejected)
ZUL_IGNORED_STATUS(on_liveliness_changed)
ZUL_IGNORED_STATUS(on_sample_lost)
ZUL_IGNORED_STATUS(on_subscription_matched)
#undef ZUL_IGNORED_STATUS

#define ZUL_CALLBACK(status) .status = ZUL_RoutingService_Administration_CommandResponseListener_##status
DDS_DataReaderListener ROUTERRemoteConfigClient_responseListener(ROUTERRemoteConfigClient* client) {
    return {
        .listener_data = client,
        ZUL_CALLBACK(on_requested_deadline_missed),
        ZUL_CALLBACK(on_requested_incompatible_qos),
        ZUL_CALLBACK(on_sample_rejected),
        ZUL_CALLBACK(on_liveliness_changed),
        ZUL_CALLBACK(on_data_available),
        ZUL_CALLBACK(on_subscription_matched),
        ZUL_CALLBACK(on_sample_lost),
    };
}
