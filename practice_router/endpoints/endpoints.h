// The router's DDS entities: one participant, the reader of requests and the writer of responses, with the
// names of the selected product. Requests go into the queue on the reader's delivery thread; writing is for
// one thread at a time.
#pragma once

#include "admin_types/type_support.h"
#include "middleware/dds/dds.h"
#include "practice_router/endpoints/request_queue.h"

#include <cstdint>
#include <span>
#include <string>

struct PracticeEndpoints {
    DDS_DomainParticipant* participant = nullptr;
    ZULTypePlugin* requestPlugin = nullptr;
    ZULTypePlugin* responsePlugin = nullptr;
    DDS_DataWriter* responseWriter = nullptr;
    ZUL_RoutingService_Administration_CommandResponse* response = nullptr; // the one sample, reused
};

// Creates everything, disabled. False with `error` naming the step; what exists is then still to be closed.
// The queue must outlive the endpoints.
bool PracticeEndpoints_create(PracticeEndpoints& self, std::int32_t domain, const std::string& routerName,
                              PracticeRequestQueue& queue, std::string& error);
// From here on requests arrive.
bool PracticeEndpoints_enable(PracticeEndpoints& self, std::string& error);
// Takes everything down. The queue must have been closed and the writing thread ended before.
void PracticeEndpoints_close(PracticeEndpoints& self);

// Whether a reader of responses in that writer's participant is known.
bool PracticeEndpoints_knowsReader(const PracticeEndpoints& self, const PracticeWriterGuid& writer);

// Writes `response`. TIMEOUT: readers have not acknowledged enough of the earlier samples for a while, and
// nothing was written.
DDS_ReturnCode_t PracticeEndpoints_writeResponse(PracticeEndpoints& self);
// Writes any bytes, encapsulation included, as a sample of the response topic.
DDS_ReturnCode_t PracticeEndpoints_writeRaw(PracticeEndpoints& self, std::span<const std::uint8_t> bytes);
