// All text goes out through Upload, which stops when a write fails or an interrupt comes between two pieces.
#include "remote_config/url_commands.h"

#include "middleware/base/strings.h"
#include "product/vocabulary.h"
#include "remote_config/assignment.h"
#include "remote_config/command_request.h"
#include "remote_config/entity_commands.h"
#include "remote_config/exchange.h"
#include "remote_config/local_file.h"
#include "remote_config/log.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>

using namespace zul::product;
using namespace zul::remote_config;

namespace {

using Status = ROUTERUrlCommandStatus;

constexpr const char* CONTEXT = "ROUTERRemoteConfigClient_sendUrlCommand";
constexpr std::size_t PIECE = admin::XML_CONTENT_BOUND; // characters of one sample
constexpr char QUOTE = '"';

// One upload under way.
struct Upload {
    ROUTERRemoteConfigClient& client;
    ROUTERRemoteConfigResult* result;
    bool wait;
    bool hasBegun = false; // an earlier send belongs to this upload: an interrupt since then ends it
    Status status = ROUTER_URL_COMMAND_OK;

    ZUL_RoutingService_Administration_XmlUrl& xmlUrl() const {
        return client.commandSample->command._u.entity_desc.xml_url;
    }
    char* content() const { return xmlUrl().content; }
    void setContent(std::string_view text) const { ZULString_copyBounded(content(), PIECE + 1, text); }

    // Sends `content`. False: the upload ends, interrupted or with a bad status.
    bool send(bool isFinal) {
        if (hasBegun && ROUTERRemoteConfigClient_isInterrupted(&client)) {
            ROUTERRemoteConfigClient_reportInterrupted(result);
            return false;
        }
        xmlUrl().is_final = isFinal ? 1 : 0;
        const auto sendRequest = hasBegun ? ROUTERRemoteConfigClient_continueCommandRequest
                                          : ROUTERRemoteConfigClient_sendCommandRequest;
        hasBegun = true;
        if (!sendRequest(&client, result, isFinal && wait)) {
            status = ROUTER_URL_COMMAND_SEND_ERROR;
        }
        return status == ROUTER_URL_COMMAND_OK;
    }
    Status sendFinal() {
        send(true);
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
    // oddity 11: a bare path this long
    for (; text.size() >= PIECE; text.remove_prefix(PIECE)) {
        upload.setContent(text.substr(0, PIECE));
        if (!upload.send(false)) {
            return upload.status;
        }
    }
    upload.setContent(text);
    return upload.sendFinal();
}

// The file's bytes go unchanged, in double quotes. A NUL byte cuts the piece that holds it: the file is text.
Status sendFile(Upload& upload, const char* path) {
    upload.setContent(std::string(INLINE_SCHEME) + QUOTE);
    ROUTERLocalFile file(path, upload.client.responseTimeout);
    if (!file.isOpen()) {
        remoteConfigWarning(CONTEXT, ZUL_LOG_ANY_FAILURE_s, "open file");
        remoteConfigWarning(CONTEXT, ZUL_LOG_ANY_FAILURE_s, path);
        return ROUTER_URL_COMMAND_FILE_OPEN_ERROR;
    }
    char* content = upload.content();
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
        if (!upload.send(false)) {
            return upload.status;
        }
        content[0] = '\0';
    }
    // The end is only seen by a read that finds less than it asked for, so there is room for the quote.
    const std::size_t length = std::strlen(content);
    content[length] = QUOTE;
    content[length + 1] = '\0';
    return upload.sendFinal();
}

Status sendUpload(Upload upload, const char* xmlUrl, bool isRemote) {
    errno = 0;
    const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(xmlUrl));
    if (snippet == nullptr && errno == ENOMEM) {
        return ROUTER_URL_COMMAND_SEND_ERROR; // an assignment is no path
    }
    const std::string_view text = snippet != nullptr ? snippet.get() : xmlUrl;
    if (isRemote || text.starts_with(INLINE_SCHEME)) {
        return sendText(upload, text);
    }
    return sendFile(upload, text.data() + (text.starts_with(FILE_SCHEME) ? FILE_SCHEME.size() : 0));
}

Status send(ROUTERRemoteConfigClient& client, const Sender& sender, const char* targetRouter,
            const char* name, const char* xmlUrl, bool isRemote, ROUTERRemoteConfigResult* result) {
    return prepareRequest(client, sender, targetRouter, name, result)
               ? ROUTERRemoteConfigClient_sendUrlCommand(&client, xmlUrl, isRemote, true, result)
               : ROUTER_URL_COMMAND_OK; // oddity 6
}

} // namespace

ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendUrlCommand(ROUTERRemoteConfigClient* self,
                                                               const char* xmlUrl, bool isRemote, bool wait,
                                                               ROUTERRemoteConfigResult* result) {
    return sendUpload({.client = *self, .result = result, .wait = wait}, xmlUrl, isRemote);
}

ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommandLoad(ROUTERRemoteConfigClient* self,
                                                                const char* targetRouter, const char* cfgName,
                                                                const char* xmlUrl, bool isRemote,
                                                                ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_LOAD}, targetRouter, cfgName, xmlUrl, isRemote,
                result);
}
ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommandUpdate(ROUTERRemoteConfigClient* self,
                                                                  const char* targetRouter,
                                                                  const char* entityName, const char* xmlUrl,
                                                                  bool isRemote,
                                                                  ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_UPDATE}, targetRouter, entityName, xmlUrl,
                isRemote, result);
}
ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommandCreate(ROUTERRemoteConfigClient* self,
                                                                  const char* targetRouter,
                                                                  const char* parentEntityName,
                                                                  const char* xmlUrl, bool isRemote,
                                                                  ROUTERRemoteConfigResult* result) {
    return send(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_CREATE}, targetRouter, parentEntityName, xmlUrl,
                isRemote, result);
}

bool ROUTERRemoteConfigClient_sendCommandsDUE(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                              const char* entityName, const char* xmlUrl, bool isRemote,
                                              ROUTERRemoteConfigResult* result) {
    const Sender disable(__func__, ZUL_ROUTING_SERVICE_COMMAND_DISABLE);
    if (!prepareRequest(*self, disable, targetRouter, entityName, result)) {
        return false;
    }
    ROUTERRemoteConfigClient_sendCommandRequest(self, result, false);

    // An interrupt from here on drops the rest of the update; the enable follows in any case.
    if (!ROUTERRemoteConfigClient_isInterrupted(self)) {
        prepareRequest(*self, {__func__, ZUL_ROUTING_SERVICE_COMMAND_UPDATE}, targetRouter, entityName,
                       result);
        sendUpload({.client = *self, .result = result, .wait = false, .hasBegun = true}, xmlUrl, isRemote);
    }

    ROUTERRemoteConfigClient_nextInvocation(self); // oddity 4
    return ROUTERRemoteConfigClient_sendCommandEnable(self, targetRouter, entityName, result);
}
