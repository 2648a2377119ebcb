// The one thread that acts: takes requests from the queue, lets the router handle them, logs a line for each
// on standard output, and sends the answers.
#pragma once

#include "practice_router/actions/router.h"
#include "practice_router/endpoints/responder.h"

namespace zul::practice {

class Worker {
public:
    // All must outlive this.
    Worker(Router& router, RequestQueue& queue, Endpoints& endpoints, const Options& options)
        : router_(router), queue_(queue), options_(options), responder_(endpoints, queue, options) {}

    // Runs until the queue is closed.
    void run();

private:
    void turn(const Request& request);
    void log(const Request& request, const std::string& outcome);

    Router& router_;
    RequestQueue& queue_;
    const Options& options_;
    Responder responder_;
};

} // namespace zul::practice
