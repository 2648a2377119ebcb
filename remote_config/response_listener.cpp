// Takes all that has arrived as one loan, offers each sample for the hand-over, then returns the loan.
#include "remote_config/response_listener.h"

#include "admin_types/type_support.h"
#include "remote_config/hand_over.h"
#include "remote_config/log.h"

void ZUL_RoutingService_Administration_CommandResponseListener_on_data_available(void* listenerData,
                                                                                 DDS_DataReader* reader) {
    auto& client = *static_cast<ROUTERRemoteConfigClient*>(listenerData);
    auto* typed = ZUL_RoutingService_Administration_CommandResponseDataReader_narrow(reader);
    if (typed == nullptr) {
        remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "data reader narrow");
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
            if (ZULSequence::at(infos, i).valid_data != 0) {
                zul::remote_config::HandOver(client).publish(response);
            }
        }
        if (ZUL_RoutingService_Administration_CommandResponseDataReader_return_loan(
                typed, &responses, &infos) != DDS_RETCODE_OK) {
            remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "return loan");
        }
    } else if (code != DDS_RETCODE_NO_DATA) {
        remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "take");
    }
}

#define ZUL_LISTENER(status) ZUL_RoutingService_Administration_CommandResponseListener_##status

// Statuses that the client has no use for.
static void ZUL_LISTENER(on_requested_deadline_missed)(void*, DDS_DataReader*) {}
static void ZUL_LISTENER(on_requested_incompatible_qos)(void*, DDS_DataReader*) {}
static void ZUL_LISTENER(on_sample_rejected)(void*, DDS_DataReader*) {}
static void ZUL_LISTENER(on_liveliness_changed)(void*, DDS_DataReader*) {}
static void ZUL_LISTENER(on_sample_lost)(void*, DDS_DataReader*) {}
static void ZUL_LISTENER(on_subscription_matched)(void*, DDS_DataReader*) {}

DDS_DataReaderListener ROUTERRemoteConfigClient_responseListener(ROUTERRemoteConfigClient* client) {
    return {
        .listener_data = client,
        .on_requested_deadline_missed = ZUL_LISTENER(on_requested_deadline_missed),
        .on_requested_incompatible_qos = ZUL_LISTENER(on_requested_incompatible_qos),
        .on_sample_rejected = ZUL_LISTENER(on_sample_rejected),
        .on_liveliness_changed = ZUL_LISTENER(on_liveliness_changed),
        .on_data_available = ZUL_LISTENER(on_data_available),
        .on_subscription_matched = ZUL_LISTENER(on_subscription_matched),
        .on_sample_lost = ZUL_LISTENER(on_sample_lost),
    };
}
