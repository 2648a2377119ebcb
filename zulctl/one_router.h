// One router, addressed by its name: its document, and commands, each answered before the next. Everything
// that is not one answer of that one router is a Failure.
#pragma once

#include "plan/document/xml.h"
#include "zulctl/progress.h"
#include "zulctl/session.h"

#include <optional>

namespace zul::ctl {

class OneRouter {
public:
    // Joins the domain and looks for the router. `isSure`: looks on for others of its name. The progress line
    // must outlive this.
    OneRouter(const Arguments& arguments, Session& session, ProgressLine& progress, bool isSure);

    const std::string& name() const { return name_; }
    // The document that it runs.
    std::string get();
    // What it answers.
    fleet::Result send(const fleet::Command& command);
    // Refuses two routers with one name: a command would go to both.
    void refuseSecond();

private:
    std::string name_;
    fleet::Domain& domain_;
    fleet::Settings settings_;
    fleet::Fleet fleet_;
    std::string guid_; // of the first answer
};

// A document for comparisons, of which `what` is the origin. Throws a Failure.
plan::XmlDocument parseDocument(const std::string& text, const std::string& what, int status);

// A local file as a document.
struct LocalDocument {
    explicit LocalDocument(const std::string& path);
    std::string text;
    plan::XmlDocument document;
};

// The name of the configuration that runs: the only one in the router's document, or the one that the
// arguments name. It is in `wanted`, too, or a Failure is thrown.
std::string configurationToCompare(const Arguments& arguments, const std::string& router,
                                   const xmlDoc* running, const xmlDoc* wanted);

} // namespace zul::ctl
