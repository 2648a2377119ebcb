// What a word at the prompt may become: commands, options, names of routers, paths of entities, files.
#pragma once

#include "zulctl/prompt/editor.h"
#include "zulctl/session.h"

#include <map>

namespace zul::ctl {

class Completion {
public:
    // All must outlive this. Nothing but what the session has joined is asked.
    Completion(const Arguments& defaults, Session& session) : defaults_(defaults), session_(session) {}

    prompt::Completions complete(const std::string& typed);
    // A command may have changed what routers run.
    void forget() { paths_.clear(); }

private:
    struct Place;
    struct Paths {
        std::vector<std::string> paths{};
        fleet::Clock::time_point at{};
    };
    std::vector<std::string> candidates(const Place& place, const std::string& word);
    std::vector<std::string> routers(const Place& place) const;
    const std::vector<std::string>& paths(const Place& place);

    const Arguments& defaults_;
    Session& session_;
    std::map<std::string, Paths> paths_; // by domain, product and router
};

} // namespace zul::ctl
