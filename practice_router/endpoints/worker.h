// The one thread that acts: takes requests from the queue, lets the router handle them, logs a line for each
// on standard output, and sends the answers.
#pragma once

#include "practice_router/actions/router.h"
#include "practice_router/endpoints/endpoints.h"
#include "practice_router/endpoints/options.h"
#include "practice_router/endpoints/request_queue.h"

// Runs until the queue is closed.
void PracticeWorker_run(PracticeRouter& router, PracticeRequestQueue& queue, PracticeEndpoints& endpoints,
                        const PracticeOptions& options);
