#include "remote_config/url_commands.h"

#include "remote_config/assignment.h"
#include "remote_config/command_request.h"
#include "remote_config/entity_commands.h"
#include "remote_config/exchange.h"
#include "remote_config/local_file.h"

#include <algorithm>
#include <string_view>

namespace {

using Kind = ZUL_RoutingService_Administration_CommandKind;
using Status = ROUTERUrlCommandStatus;

constexpr const char* CONTEXT = "ROUTERRemoteConfigClient_sendUrlCommand";
constexpr std::size_t PIECE = admin::XML_CONTENT_BOUND; // characters of one sample
constexpr std::string_view INLINE_SCHEME = "str://";
constexpr std::string_view FILE_SCHEME = "file://";
constexpr std::string_view INLINE_OPENING = "str://\"";
constexpr char CLOSING_QUOTE = '"';

// One upload under way.
struct Upload {
    ROUTERRemoteConfigClient& client;
    ROUTERRemoteConfigResult* result;
    bool wait;
    bool hasBegun = false; // something was sent already whose interrupt ends this upload

    ZUL_RoutingService_Administration_XmlUrl& xmlUrl() const {
        return client.commandSample->command._u.entity_desc.xml_url;
    }
    char* content() const { return xmlUrl().content; }
    void setContent(std::string_view text) const { ZULString_copyBounded(content(), PIECE + 1, text); }

    // Sends `content`. Any status but OK, or an interrupted upload, ends it.
    bool send(bool isFinal, Status& status) {
        if (hasBegun && ROUTERRemoteConfigClient_isInterrupted(&client)) {
            ROUTERRemoteConfigClient_reportInterrupted(result);
            status = ROUTER_URL_COMMAND_OK;
            return false;
        }
        xmlUrl().is_final = isFinal ? 1 : 0;
        const auto sendRequest = hasBegun ? ROUTERRemoteConfigClient_continueCommandRequest
                                          : ROUTERRemoteConfigClient_sendCommandRequest;
        hasBegun = true;
        const bool sent = sendRequest(&client, result, isFinal && wait);
        status = sent ? ROUTER_URL_COMMAND_OK : ROUTER_URL_COMMAND_SEND_ERROR;
        return sent;
    }
    Status sendFinal() {
        Status status = ROUTER_URL_COMMAND_OK;
        send(true, status);
        return status;
    }
};

Status sendText(Upload& upload, std::string_view text) {
    const bool isBarePath = !text.starts_with(INLINE_SCHEME) && !text.starts_with(FILE_SCHEME);
    if (text.size() < PIECE) {
        const std::string_view scheme = isBarePath ? FILE_SCHEME : "";
        if (scheme.size() + text.size() > PIECE) {
            refuseArgument(CONTEXT, "xmlUrl too long", upload.result);
            return ROUTER_URL_COMMAND_OK;
        }
        upload.setContent(scheme);
        ZULString_copyBounded(upload.content() + scheme.size(), PIECE + 1 - scheme.size(), text);
        return upload.sendFinal();
    }
    // A bare path this long goes without the scheme in front, deliberately.
    for (; text.size() >= PIECE; text.remove_prefix(PIECE)) {
        Status status = ROUTER_URL_COMMAND_OK;
        upload.setContent(text.substr(0, PIECE));
        if (!upload.send(false, status)) {
            return status;
        }
    }
    upload.setContent(text);
    return upload.sendFinal();
}

// The file's bytes go as they stand, in double quotes. It is taken as text: a NUL byte cuts the piece in
// which it stands.
Status sendFile(Upload& upload, const char* path) {
    upload.setContent(INLINE_OPENING);
    ROUTERLocalFile file(path, upload.client.responseTimeout);
    if (!file.isOpen()) {
        remoteConfigWarning(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "open file");
        remoteConfigWarning(CONTEXT, ZUL_LOG_ANY_FAILURE_s, path);
        return ROUTER_URL_COMMAND_FILE_OPEN_ERROR;
    }
    char* content = upload.content();
    Status status = ROUTER_URL_COMMAND_OK;
    for (;;) {
        std::size_t used = std::strlen(content);
        std::size_t added = 0;
        const ROUTERLocalFileStatus read = file.read({content + used, PIECE - used}, added);
        if (read == ROUTER_LOCAL_FILE_ERROR) {
            content[used] = '\0';
            return ROUTER_URL_COMMAND_FILE_READ_ERROR;
        }
        content[used + added] = '\0';
        if (read == ROUTER_LOCAL_FILE_END) {
            break;
        }
        if (!upload.send(false, status)) {
            return status;
        }
        content[0] = '\0';
    }
    // The end is only seen by a read that finds less than it asked for, so there is room for the quote.
    const std::size_t length = std::strlen(content);
    content[length] = CLOSING_QUOTE;
    content[length + 1] = '\0';
    return upload.sendFinal();
}

Status sendUpload(Upload upload, const char* xmlUrl, bool isRemote) {
    const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(xmlUrl));
    const std::string_view text = snippet != nullptr ? snippet.get() : xmlUrl;
    if (isRemote || text.starts_with(INLINE_SCHEME)) {
        return sendText(upload, text);
    }
    return sendFile(upload, text.data() + (text.starts_with(FILE_SCHEME) ? FILE_SCHEME.size() : 0));
}

// What one command of the family does.
struct UrlCommand {
    const char* context;
    Kind kind;
    std::size_t nameLimit; // a name of this length or more is refused
    const char* nameTooLong;
};
constexpr std::size_t WIRE_LIMIT = admin::ENTITY_NAME_BOUND + 1;

Status send(ROUTERRemoteConfigClient& client, const UrlCommand& command, const char* targetRouter,
            const char* name, const char* xmlUrl, bool isRemote, ROUTERRemoteConfigResult* result) {
    if (isTooLong(targetRouter, ROUTER_NAME_LIMIT)) {
        refuseArgument(command.context, "target router name too long", result);
        return ROUTER_URL_COMMAND_OK; // the caller prints the result, which holds the reason
    }
    if (isTooLong(name, command.nameLimit)) {
        refuseArgument(command.context, command.nameTooLong, result);
        return ROUTER_URL_COMMAND_OK;
    }
    auto& request = *client.commandSample;
    setName(request.target_router, targetRouter);
    request.command._d = command.kind;
    setName(request.command._u.entity_desc.name, name);
    ROUTERRemoteConfigClient_nextInvocation(&client);
    return ROUTERRemoteConfigClient_sendUrlCommand(&client, xmlUrl, isRemote, true, result);
}

} // namespace

ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendUrlCommand(ROUTERRemoteConfigClient* self,
                                                               const char* xmlUrl, bool isRemote, bool wait,
                                                               ROUTERRemoteConfigResult* result) {
    return sendUpload({.client = *self, .result = result, .wait = wait}, xmlUrl, isRemote);
}

#define ZUL_URL_COMMAND(Name, kind, limit, nameTooLong)                                                      \
    ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommand##Name(                                       \
        ROUTERRemoteConfigClient* self, const char* targetRouter, const char* name, const char* xmlUrl,      \
        bool isRemote, ROUTERRemoteConfigResult* result) {                                                   \
        return send(*self, {__func__, kind, limit, nameTooLong}, targetRouter, name, xmlUrl, isRemote,       \
                    result);                                                                                 \
    }

ZUL_URL_COMMAND(Load, ZUL_ROUTING_SERVICE_COMMAND_LOAD, WIRE_LIMIT, "cfgName too long")
ZUL_URL_COMMAND(Update, ZUL_ROUTING_SERVICE_COMMAND_UPDATE, WIRE_LIMIT, "entityName too long")
ZUL_URL_COMMAND(Create, ZUL_ROUTING_SERVICE_COMMAND_CREATE, ROUTER_NAME_LIMIT, "parentEntityName too long")

bool ROUTERRemoteConfigClient_sendCommandsDUE(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                              const char* entityName, const char* xmlUrl, bool isRemote,
                                              ROUTERRemoteConfigResult* result) {
    if (isTooLong(targetRouter, ROUTER_NAME_LIMIT)) {
        return refuseArgument(__func__, "target router name too long", result);
    }
    if (isTooLong(entityName, WIRE_LIMIT)) {
        return refuseArgument(__func__, "entityName too long", result);
    }
    auto& request = *self->commandSample;
    setName(request.target_router, targetRouter);
    request.command._d = ZUL_ROUTING_SERVICE_COMMAND_DISABLE;
    setName(request.command._u.entity_name, entityName);
    ROUTERRemoteConfigClient_nextInvocation(self);
    ROUTERRemoteConfigClient_sendCommandRequest(self, result, false);

    // An interrupt from here on drops the rest of the update. That, or a failed one, is followed by the
    // enable.
    if (!ROUTERRemoteConfigClient_isInterrupted(self)) {
        request.command._d = ZUL_ROUTING_SERVICE_COMMAND_UPDATE;
        setName(request.command._u.entity_desc.name, entityName);
        ROUTERRemoteConfigClient_nextInvocation(self);
        sendUpload({.client = *self, .result = result, .wait = false, .hasBegun = true}, xmlUrl, isRemote);
    }

    // Counts here and once more in the sender: the number in between is never sent, deliberately.
    ROUTERRemoteConfigClient_nextInvocation(self);
    return ROUTERRemoteConfigClient_sendCommandEnable(self, targetRouter, entityName, result);
}
