// The router itself: what it does for each kind of request. Knows nothing of DDS. One thread at a time.
#pragma once

#include "practice_router/actions/answer.h"
#include "practice_router/actions/configuration.h"
#include "practice_router/actions/request.h"
#include "practice_router/actions/upload.h"

#include <optional>
#include <string>

namespace zul::practice {

class Router {
public:
    // `saveDirectory` is where save writes its file. Asked to stop, what is under way gives up soon.
    Router(std::string name, std::string saveDirectory, bool countsOnly = false, std::stop_token stop = {})
        : name_(std::move(name)),
          saveDirectory_(std::move(saveDirectory)),
          configuration_(std::move(stop)),
          uploads_(countsOnly) {}

    bool isAddressed(const Request& request) const {
        return request.target == name_ || request.target == EVERY_ROUTER;
    }
    // Acts on a request addressed to this router. Nothing: it was a piece of a text that is not complete yet.
    std::optional<Answer> handle(const Request& request);
    // To be told of a request addressed to another router: its client has begun something new.
    void overhear(const Request& request) { uploads_.interrupt(request); }

    const std::string& name() const { return name_; }
    const std::string& saveDirectory() const { return saveDirectory_; }
    Configuration& configuration() { return configuration_; }
    const Uploads& uploads() const { return uploads_; }

private:
    std::optional<Answer> act(const Request& request);

    std::string name_;
    std::string saveDirectory_;
    Configuration configuration_;
    Uploads uploads_;
};

} // namespace zul::practice
