// The router's DDS entities: one participant, the reader of requests and the writer of responses, with the
// names of the selected product. Requests go into the queue on the reader's delivery thread; writing is for
// one thread at a time.
#pragma once

#include "admin_types/type_support.h"
#include "middleware/dds/dds.h"
#include "practice_router/endpoints/options.h"
#include "practice_router/endpoints/request_queue.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace zul::practice {

// What is written to the response topic: the record, or bytes in its place. The type plugin is handed the
// record, which is therefore the first member.
struct OutgoingSample {
    ZUL_RoutingService_Administration_CommandResponse response{};
    std::span<const std::uint8_t> raw{}; // not empty: written as they are, the encapsulation included
};

class Endpoints {
public:
    Endpoints() = default;
    Endpoints(const Endpoints&) = delete;
    Endpoints& operator=(const Endpoints&) = delete;
    // The queue must have been closed and the writing thread ended before.
    ~Endpoints();

    // Creates everything and enables it, with the faults that concern endpoints: from then on requests
    // arrive. False with `error` naming the step that failed. The queue must outlive the endpoints. Without a
    // writer of responses nothing may be written.
    bool open(std::int32_t domain, const std::string& routerName, const Faults& faults, RequestQueue& queue,
              std::string& error);

    // Whether a reader of responses in that writer's participant is known.
    bool knowsReader(const WriterGuid& writer) const;

    // Writes a response with a text within the bound of the type. TIMEOUT: readers have not acknowledged
    // enough of the earlier samples for a while, and nothing was written.
    DDS_ReturnCode_t write(const RequestId& id, ZUL_RoutingService_Administration_CommandResponseKind kind,
                           std::string_view text, bool isFinal);
    // Writes any bytes, encapsulation included, as a sample of the response topic.
    DDS_ReturnCode_t writeRaw(std::span<const std::uint8_t> bytes);

private:
    bool createParticipant(std::int32_t domain, const std::string& routerName);
    DDS_Topic* createTopic(ZULTypePlugin* plugin, const DDS_TypeCode* federationType, const char* typeName,
                           const char* topicName);
    bool createReader(DDS_Topic* topic, RequestQueue& queue, DDS_ReliabilityQosPolicyKind reliability);
    bool createWriter(DDS_Topic* topic, DDS_ReliabilityQosPolicyKind reliability);
    DDS_ReturnCode_t writeOutgoing();

    DDS_DomainParticipant* participant_ = nullptr;
    ZULTypePlugin* requestPlugin_ = nullptr;
    ZULTypePlugin* responsePlugin_ = nullptr;
    DDS_DataWriter* responseWriter_ = nullptr;
    OutgoingSample outgoing_; // the one sample, reused
};

} // namespace zul::practice
