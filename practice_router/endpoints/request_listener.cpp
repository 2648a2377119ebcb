// What each kind of command carries is in the branch of the union that the kind selects.
#include "practice_router/endpoints/request_listener.h"

#include "admin_types/type_support.h"

#include <algorithm>
#include <new>

namespace zul::practice {

namespace {

using Sample = ZUL_RoutingService_Administration_CommandRequest;

Request copyOf(const Sample& sample, const DDS_SampleInfo& info) {
    Request request{.id = {sample.id.host, sample.id.app, sample.id.invocation},
                    .target = sample.target_router,
                    .kind = sample.command._d,
                    .entity = {},
                    .content = {},
                    .peers = {}};
    std::copy_n(static_cast<const std::uint8_t*>(info.publication_handle.value), request.writer.size(),
                request.writer.begin());
    const auto& branches = sample.command._u;
    const admin::Command* command = admin::findCommand(request.kind);
    const auto branch = command != nullptr ? command->branch : admin::CommandBranch::DUMMY;
    if (const char* name = admin::findName(branches, branch)) {
        request.entity = name;
    }
    if (branch == admin::CommandBranch::ENTITY_DESC) {
        request.isFinal = branches.entity_desc.xml_url.is_final != 0;
        request.content = branches.entity_desc.xml_url.content;
    } else if (branch == admin::CommandBranch::PEER_DESC) {
        const auto& peers = branches.peer_desc;
        request.isFirstParticipant = peers.is_first_participant != 0;
        for (DDS_Long i = 0; i < peers.peer_list.length; ++i) {
            const char* peer = ZULSequence::at(peers.peer_list, i);
            request.peers.emplace_back(peer != nullptr ? peer : "");
        }
    }
    return request;
}

void queueRequests(void* listenerData, DDS_DataReader* reader) {
    auto& queue = *static_cast<RequestQueue*>(listenerData);
    auto* typed = ZUL_RoutingService_Administration_CommandRequestDataReader_narrow(reader);
    ZUL_RoutingService_Administration_CommandRequestSeq samples{};
    DDS_SampleInfoSeq infos{};
    if (ZUL_RoutingService_Administration_CommandRequestDataReader_take(
            typed, &samples, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
            DDS_ANY_INSTANCE_STATE) != DDS_RETCODE_OK) {
        return;
    }
    const DDS_Long count = ZUL_RoutingService_Administration_CommandRequestSeq_get_length(&samples);
    for (DDS_Long i = 0; i < count; ++i) {
        const DDS_SampleInfo& info = ZULSequence::at(infos, i);
        const auto* sample = ZUL_RoutingService_Administration_CommandRequestSeq_get_reference(&samples, i);
        try {
            if (info.valid_data != 0) {
                queue.push(copyOf(*sample, info));
            }
        } catch (const std::bad_alloc&) {
            // The request is lost, as on a bad network, and the client waits until its time-out.
            queue.noteLoss();
        }
    }
    ZUL_RoutingService_Administration_CommandRequestDataReader_return_loan(typed, &samples, &infos);
}

} // namespace

DDS_DataReaderListener requestListener(RequestQueue& queue) {
    DDS_DataReaderListener listener{};
    listener.listener_data = &queue;
    listener.on_data_available = queueRequests;
    return listener;
}

} // namespace zul::practice
