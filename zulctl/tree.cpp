// Names in a configuration come from elsewhere: each form of output shows them on the line they belong to.
#include "zulctl/tree.h"

#include "plan/document/outline.h"
#include "plan/document/text.h"
#include "zulctl/commands.h"

namespace zul::ctl {

using fleet::Result;
using plan::OutlineEntry;

namespace {

using Outline = std::vector<OutlineEntry>;

// A document does not say whether the service itself is enabled.
const char* stateOf(const OutlineEntry& entry) {
    return entry.level == plan::EntityLevel::SERVICE ? "unknown" : entry.isEnabled ? "enabled" : "disabled";
}

void printText(const std::string& router, const Outline& outline, Output& output) {
    std::vector<const OutlineEntry*> around; // the entities that the present one is in
    for (const OutlineEntry& entry : outline) {
        while (!around.empty() && around.back()->level >= entry.level) {
            around.pop_back();
        }
        if (around.empty()) {
            output.printLine(oneLine(router) + ": " + entry.tag + " " + oneLine(entry.name));
        } else {
            std::string line;
            for (std::size_t i = 1; i < around.size(); ++i) {
                line += around[i]->isLast ? "    " : "|   ";
            }
            line += entry.isLast ? "`-- " : "|-- ";
            output.printLine(line + entry.tag + " " + oneLine(entry.name) + " [" + stateOf(entry) + "]");
        }
        around.push_back(&entry);
    }
}

// A string of the graph language, in which a backslash has a meaning even before another one.
std::string quotedForDot(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : oneLine(text)) {
        if (character == '"' || character == '\\') {
            quoted += '\\';
        }
        quoted += character;
    }
    return quoted + '"';
}

// A cluster a router. Nodes are numbered, because names repeat.
class Graph {
public:
    explicit Graph(Output& output) : output_(output) {
        output_.printLine("digraph routers {");
        output_.printLine("    rankdir=LR;");
        output_.printLine("    node [shape=box];");
    }
    void add(const Result& result, const Outline& outline);
    void end() { output_.printLine("}"); }

private:
    std::string nodeName(std::size_t number) const {
        return "r" + std::to_string(routers_) + "_" + std::to_string(number);
    }

    Output& output_;
    std::size_t routers_ = 0;
};

void Graph::add(const Result& result, const Outline& outline) {
    output_.printLine("    subgraph cluster_" + std::to_string(routers_) + " {");
    output_.printLine("        label=" + quotedForDot(result.router) +
                      "; tooltip=" + quotedForDot(result.guid) + ";");
    std::vector<std::size_t> around; // as above, by number
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const OutlineEntry& entry = outline[i];
        while (!around.empty() && outline[around.back()].level >= entry.level) {
            around.pop_back();
        }
        output_.printLine("        " + nodeName(i) + " [label=" + quotedForDot(entry.tag + " " + entry.name) +
                          (entry.isEnabled ? "" : ", style=dashed, color=gray, fontcolor=gray") + "];");
        if (!around.empty()) {
            output_.printLine("        " + nodeName(around.back()) + " -> " + nodeName(i) + ";");
        }
        around.push_back(i);
    }
    output_.printLine("    }");
    ++routers_;
}

void printRows(const Result& result, const Outline& outline, Output& output) {
    for (const OutlineEntry& entry : outline) {
        output.printLine(jsonRow(EntityRow{.router = result.router,
                                           .guid = result.guid,
                                           .path = entry.path,
                                           .kind = entry.tag,
                                           .name = entry.name,
                                           .state = stateOf(entry)}));
    }
}

} // namespace

int showTrees(const Arguments& arguments, Session& session, Output& output) {
    if (arguments.isDot && arguments.isJson) {
        throw Failure{EXIT_USAGE, "--dot or --json, not both"};
    }
    const fleet::Command command{.kind = ZUL_ROUTING_SERVICE_COMMAND_GET};
    refuseBadNames(command, arguments.routers);
    fleet::Domain& domain = session.domain(arguments.domain, arguments.settings.product);
    fleet::Fleet fleet(domain, session.wakeup(), arguments.settings);
    fleet.onProgress(output.progress().callback());
    const std::vector<std::string> names = findRouters(fleet, arguments);
    refuseBadNames(command, names);
    Outcome outcome;
    std::optional<Graph> graph;
    if (arguments.isDot) {
        graph.emplace(output);
    }
    fleet.ask(names, command, [&](Result&& result) {
        Outline outline;
        if (result.status == fleet::Status::OK) {
            try {
                outline = plan::outline(result.message);
            } catch (const plan::Refusal& refusal) {
                result.status = fleet::Status::ERROR;
                result.message = "what it sent is no configuration: " + refusal.why;
            }
        }
        outcome.add(result.status);
        if (result.status != fleet::Status::OK) {
            output.printText(result, false);
        } else if (graph) {
            graph->add(result, outline);
        } else if (output.isJson()) {
            printRows(result, outline, output);
        } else {
            printText(result.router, outline, output);
        }
    });
    if (graph) {
        graph->end();
    }
    return outcome.status();
}

} // namespace zul::ctl
