// The router's configuration: the active document and which service element of it is in force. The state of
// an entity belongs to its element and stays with it when that is renamed. Every operation answers as a
// router does and leaves the configuration whole when it fails. One thread at a time.
#pragma once

#include "plan/document/xml.h"
#include "practice_router/actions/answer.h"

#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace zul::practice {

constexpr std::size_t MAX_PEERS = 256; // of one participant

enum class StateChange { ENABLE, DISABLE, PAUSE, RESUME };

class Configuration {
public:
    // Asked to stop, every operation gives up soon and fails.
    explicit Configuration(std::stop_token stop = {}) : stop_(std::move(stop)) {}

    // Takes a document as the active one, with the service element of that name in force. All state is reset.
    Answer load(std::string_view xml, std::string_view configurationName);
    // The same with the document's first service element.
    Answer loadFirst(std::string_view xml);
    // Whether there is an active document, which everything below needs.
    bool isLoaded() const { return document_ != nullptr; }
    Answer unload();

    // Changes the state of one entity; an empty path is the router itself. Of the state, the document shows
    // only the enabled attribute.
    Answer changeState(StateChange change, std::string_view path);
    // Merges a snippet into the entity at a path.
    Answer update(std::string_view path, std::string_view snippet);
    // Adds the entity that the snippet holds to the entity at a path.
    Answer create(std::string_view parentPath, std::string_view snippet);
    Answer remove(std::string_view path);
    // Adds to the initial peers of a domain route's participant, in the document.
    Answer addPeers(std::string_view domainRoutePath, bool isFirstParticipant,
                    const std::vector<std::string>& peers);

    // The active document as text.
    std::string text() const { return plan::writeXml(document_.get()); }

private:
    friend class Draft;
    Answer take(std::string_view xml, std::string_view configurationName, const plan::Refusal& whenMissing);

    plan::XmlDocument document_; // null while none is loaded
    xmlNode* service_ = nullptr; // in the document
    std::stop_token stop_;
};

} // namespace zul::practice
