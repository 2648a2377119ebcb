// Requests to actions: one table row for each kind of request.
#include "practice_router/actions/router.h"

#include "practice_router/actions/save_file.h"
#include "practice_router/actions/xml_url.h"

namespace {

// What an action works on. `xml` is the text behind an XML URL, for the kinds that carry one.
struct Task {
    PracticeRouter& router;
    const PracticeRequest& request;
    const std::string& entity;
    std::string_view xml;
};

PracticeAnswer announce(const Task& task) {
    return {ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_ANNOUNCEMENT, task.router.name};
}

PracticeAnswer load(const Task& task) {
    return PracticeConfiguration_load(task.router.configuration, task.xml, task.entity);
}

PracticeAnswer update(const Task& task) {
    return PracticeConfiguration_update(task.router.configuration, task.entity, task.xml);
}

PracticeAnswer create(const Task& task) {
    return PracticeConfiguration_create(task.router.configuration, task.entity, task.xml);
}

PracticeAnswer refuseInsert(const Task&) {
    return PracticeAnswer_error("insert is not supported by this router; use create");
}

PracticeAnswer unload(const Task& task) {
    return PracticeConfiguration_unload(task.router.configuration);
}

PracticeAnswer remove(const Task& task) {
    return PracticeConfiguration_remove(task.router.configuration, task.entity);
}

PracticeAnswer get(const Task& task) {
    return PracticeAnswer_ok(PracticeConfiguration_text(task.router.configuration));
}

PracticeAnswer save(const Task& task) {
    return PracticeSaveFile_write(task.router.saveDirectory, task.router.name,
                                  PracticeConfiguration_text(task.router.configuration));
}

PracticeAnswer addPeer(const Task& task) {
    return PracticeConfiguration_addPeers(task.router.configuration, task.entity,
                                          task.request.isFirstParticipant, task.request.peers);
}

template <PracticeStateChange change>
PracticeAnswer changeState(const Task& task) {
    return PracticeConfiguration_changeState(task.router.configuration, change, task.entity);
}

struct Action {
    ZUL_RoutingService_Administration_CommandKind kind;
    bool carriesXml;         // the request, or several of them, hold an XML URL
    bool needsConfiguration; // refused while none is loaded
    PracticeAnswer (*act)(const Task&);
};
constexpr Action ACTIONS[] = {
    {ZUL_ROUTING_SERVICE_COMMAND_LOAD, true, false, load},
    {ZUL_ROUTING_SERVICE_COMMAND_UNLOAD, false, true, unload},
    {ZUL_ROUTING_SERVICE_COMMAND_INSERT, true, true, refuseInsert},
    {ZUL_ROUTING_SERVICE_COMMAND_UPDATE, true, true, update},
    {ZUL_ROUTING_SERVICE_COMMAND_PAUSE, false, true, changeState<PracticeStateChange::PAUSE>},
    {ZUL_ROUTING_SERVICE_COMMAND_RESUME, false, true, changeState<PracticeStateChange::RESUME>},
    {ZUL_ROUTING_SERVICE_COMMAND_ENABLE, false, true, changeState<PracticeStateChange::ENABLE>},
    {ZUL_ROUTING_SERVICE_COMMAND_DISABLE, false, true, changeState<PracticeStateChange::DISABLE>},
    {ZUL_ROUTING_SERVICE_COMMAND_ANNOUNCE, false, false, announce},
    {ZUL_ROUTING_SERVICE_COMMAND_CREATE, true, true, create},
    {ZUL_ROUTING_SERVICE_COMMAND_DELETE, false, true, remove},
    {ZUL_ROUTING_SERVICE_COMMAND_SAVE, false, true, save},
    {ZUL_ROUTING_SERVICE_COMMAND_GET, false, true, get},
    {ZUL_ROUTING_SERVICE_COMMAND_ADD_PEER, false, true, addPeer},
};

const Action* findAction(ZUL_RoutingService_Administration_CommandKind kind) {
    for (const Action& action : ACTIONS) {
        if (action.kind == kind) {
            return &action;
        }
    }
    return nullptr;
}

PracticeAnswer actOnUpload(PracticeRouter& self, const Action& action, const PracticeRequest& request,
                           const PracticeUpload& upload) {
    if (self.uploads.countsOnly) {
        return PracticeAnswer_ok("counted " + std::to_string(upload.bytes) + " bytes in " +
                                 std::to_string(upload.pieces) + " pieces");
    }
    if (upload.isTooLarge) {
        return PracticeAnswer_error("the XML has " + std::to_string(upload.bytes) + " bytes; at most " +
                                    std::to_string(PRACTICE_UPLOAD_MAX_SIZE) + " are accepted");
    }
    std::string error;
    const std::optional<std::string> xml = PracticeXmlUrl_read(upload.text, error);
    return xml ? action.act({self, request, upload.entity, *xml}) : PracticeAnswer_error(error);
}

} // namespace

bool PracticeRouter_isAddressed(const PracticeRouter& self, const PracticeRequest& request) {
    return request.target == self.name || request.target == PRACTICE_EVERY_ROUTER;
}

void PracticeRouter_overhear(PracticeRouter& self, const PracticeRequest& request) {
    PracticeUploads_interrupt(self.uploads, request);
}

std::optional<PracticeAnswer> PracticeRouter_handle(PracticeRouter& self, const PracticeRequest& request) {
    const Action* action = findAction(request.kind);
    std::optional<PracticeUpload> upload;
    if (action != nullptr && action->carriesXml) {
        upload = PracticeUploads_add(self.uploads, request);
        if (!upload) {
            return std::nullopt;
        }
    } else {
        PracticeUploads_interrupt(self.uploads, request);
    }
    if (action == nullptr) {
        return PracticeAnswer_error("unknown command " + std::to_string(request.kind));
    }
    if (action->needsConfiguration && self.configuration.document == nullptr) {
        return PracticeAnswer_error("no configuration is loaded; load one first");
    }
    return upload ? actOnUpload(self, *action, request, *upload)
                  : action->act({self, request, request.entity, {}});
}
