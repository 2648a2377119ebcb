// The router itself: what it does for each kind of request. Knows nothing of DDS. One thread at a time.
#pragma once

#include "practice_router/actions/answer.h"
#include "practice_router/actions/configuration.h"
#include "practice_router/actions/request.h"
#include "practice_router/actions/upload.h"

#include <optional>
#include <string>

struct PracticeRouter {
    std::string name;
    std::string saveDirectory; // where save writes its file
    PracticeConfiguration configuration;
    PracticeUploads uploads;
};

bool PracticeRouter_isAddressed(const PracticeRouter& self, const PracticeRequest& request);

// Acts on a request addressed to this router. Nothing: it was a piece of a text that is not complete yet.
std::optional<PracticeAnswer> PracticeRouter_handle(PracticeRouter& self, const PracticeRequest& request);

// To be told of a request addressed to another router: its client has begun something new.
void PracticeRouter_overhear(PracticeRouter& self, const PracticeRequest& request);
