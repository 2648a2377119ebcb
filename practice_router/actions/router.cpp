// Requests to actions: one table row for each kind of request.
#include "practice_router/actions/router.h"

#include "practice_router/actions/save_file.h"
#include "practice_router/actions/xml_url.h"

#include <algorithm>

namespace zul::practice {

using namespace plan;

namespace {

// What an action works on. `xml` is the text that an XML URL stands for, for the kinds that carry one.
struct Task {
    Router& router;
    Configuration& configuration; // the router's
    const Request& request;
    const std::string& entity;
    std::string_view xml;
};

Answer save(const Task& task) {
    return writeSaveFile(task.router.saveDirectory(), task.router.name(), task.configuration.text());
}

template <StateChange change>
Answer changeState(const Task& task) {
    return task.configuration.changeState(change, task.entity);
}

struct Action {
    ZUL_RoutingService_Administration_CommandKind kind;
    bool needsConfiguration; // refused while none is loaded
    Answer (*act)(const Task&);
};
// clang-format off
constexpr Action ACTIONS[] = {
    {ZUL_ROUTING_SERVICE_COMMAND_LOAD, false,
     [](const Task& task) { return task.configuration.load(task.xml, task.entity); }},
    {ZUL_ROUTING_SERVICE_COMMAND_UNLOAD, true,
     [](const Task& task) { return task.configuration.unload(); }},
    {ZUL_ROUTING_SERVICE_COMMAND_INSERT, true,
     [](const Task&) { return Answer::error("insert is not supported by this router; use create"); }},
    {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, true,
     [](const Task& task) { return task.configuration.update(task.entity, task.xml); }},
    {ZUL_ROUTING_SERVICE_COMMAND_PAUSE, true, changeState<StateChange::PAUSE>},
    {ZUL_ROUTING_SERVICE_COMMAND_RESUME, true, changeState<StateChange::RESUME>},
    {ZUL_ROUTING_SERVICE_COMMAND_ENABLE, true, changeState<StateChange::ENABLE>},
    {ZUL_ROUTING_SERVICE_COMMAND_DISABLE, true, changeState<StateChange::DISABLE>},
    {ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE, false,
     [](const Task& task) {
         return Answer{ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT, task.router.name()};
     }},
    {ZUL_ROUTING_SERVICE_COMMAND_CREATE, true,
     [](const Task& task) { return task.configuration.create(task.entity, task.xml); }},
    {ZUL_ROUTING_SERVICE_COMMAND_DELETE, true,
     [](const Task& task) { return task.configuration.remove(task.entity); }},
    {ZUL_ROUTING_SERVICE_COMMAND_SAVE, true, save},
    {ZUL_ROUTING_SERVICE_COMMAND_GET, true,
     [](const Task& task) { return Answer::ok(task.configuration.text()); }},
    {ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, true,
     [](const Task& task) {
         return task.configuration.addPeers(task.entity, task.request.isFirstParticipant, task.request.peers);
     }},
};
// clang-format on

Answer actOnUpload(const Action& action, Task task, const Upload& upload, bool countsOnly) {
    if (countsOnly) {
        return Answer::ok("counted " + std::to_string(upload.bytes) + " bytes in " +
                          std::to_string(upload.pieces) + " pieces");
    }
    if (upload.isTooLarge) {
        throw Refusal{"the XML has " + std::to_string(upload.bytes) + " bytes; at most " +
                      std::to_string(MAX_UPLOAD_SIZE) + " are accepted"};
    }
    const std::string xml = readXmlUrl(upload.text);
    task.xml = xml;
    return action.act(task);
}

} // namespace

std::optional<Answer> Router::handle(const Request& request) {
    return answered([&] { return act(request); });
}

std::optional<Answer> Router::act(const Request& request) {
    const auto* action = std::ranges::find(ACTIONS, request.kind, &Action::kind);
    const bool isKnown = action != std::end(ACTIONS);
    std::optional<Upload> upload;
    if (isKnown && admin::findCommand(request.kind)->branch == admin::CommandBranch::ENTITY_DESC) {
        upload = uploads_.add(request);
        if (!upload) {
            return std::nullopt;
        }
    } else {
        uploads_.interrupt(request);
    }
    if (!isKnown) {
        throw Refusal{"unknown command " + std::to_string(request.kind)};
    }
    if (action->needsConfiguration && !configuration_.isLoaded()) {
        throw Refusal{"no configuration is loaded; load one first"};
    }
    const Task task{*this, configuration_, request, upload ? upload->entity : request.entity, {}};
    return upload ? actOnUpload(*action, task, *upload, uploads_.countsOnly()) : action->act(task);
}

} // namespace zul::practice
