// The requests that wait for the worker: filled by the middleware's delivery thread, emptied by the worker,
// closed by the main thread. Bounded: a full queue holds the delivery thread back, and with it, in the end,
// the writers; no piece of an upload is lost.
#pragma once

#include "practice_router/actions/request.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>

constexpr std::size_t PRACTICE_QUEUE_MAX = 64; // requests

struct PracticeRequestQueue {
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<PracticeRequest> requests;
    bool isClosed = false;
    std::stop_source ending{}; // for work in progress; asked to stop when the queue is closed
};

// Waits for room. False when the queue is closed: the request is dropped.
bool PracticeRequestQueue_push(PracticeRequestQueue& self, PracticeRequest request);
// Waits for a request. Nothing when the queue is closed, whatever is still in it.
std::optional<PracticeRequest> PracticeRequestQueue_pop(PracticeRequestQueue& self);
// Ends every wait, now and from now on.
void PracticeRequestQueue_close(PracticeRequestQueue& self);
bool PracticeRequestQueue_isClosed(PracticeRequestQueue& self);
// Lets time pass, unless the queue is closed. True when all of it has passed.
bool PracticeRequestQueue_pause(PracticeRequestQueue& self, std::chrono::milliseconds span);
