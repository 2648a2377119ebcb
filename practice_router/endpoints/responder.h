// Sends answers: in parts, and with the faults that were asked for. Used by the worker thread.
#pragma once

#include "practice_router/actions/answer.h"
#include "practice_router/endpoints/endpoints.h"
#include "practice_router/endpoints/garbage.h"
#include "practice_router/endpoints/options.h"

#include <set>

namespace zul::practice {

class Responder {
public:
    // All must outlive this. Closing the queue, at the end of the program, ends every wait here.
    Responder(Endpoints& endpoints, RequestQueue& queue, const Faults& faults)
        : endpoints_(endpoints), queue_(queue), faults_(faults) {}

    // False when the answer was not sent whole: nobody acknowledged, or the program ends.
    bool send(const Request& request, const Answer& answer);

private:
    void awaitReader(const WriterGuid& client);
    template <class Write>
    bool writePatiently(Write write);
    bool write(const RequestId& id, ZUL_RoutingService_Administration_CommandResponseKind kind,
               std::string_view text, bool isFinal);
    bool writeFaultsAhead(const RequestId& id);

    Endpoints& endpoints_;
    RequestQueue& queue_;
    const Faults& faults_;
    Garbage garbage_;
    std::set<WriterGuid> writersOnly_; // of clients whose reader was waited for in vain
};

} // namespace zul::practice
