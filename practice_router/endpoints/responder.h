// Sends answers: in parts, and with the faults that were asked for. Used by the worker thread.
#pragma once

#include "practice_router/actions/answer.h"
#include "practice_router/actions/request.h"
#include "practice_router/endpoints/endpoints.h"
#include "practice_router/endpoints/garbage.h"
#include "practice_router/endpoints/options.h"
#include "practice_router/endpoints/request_queue.h"

#include <set>

struct PracticeResponder {
    PracticeEndpoints& endpoints;
    PracticeRequestQueue& queue; // closed: the program ends, and so does every wait here
    const PracticeFaults& faults;
    PracticeGarbage garbage{};
    std::set<PracticeWriterGuid> writersOnly{}; // of clients whose reader was waited for in vain
};

// False when the answer was not sent whole: nobody acknowledged, or the program ends.
bool PracticeResponder_send(PracticeResponder& self, const PracticeRequest& request,
                            const PracticeAnswer& answer);
