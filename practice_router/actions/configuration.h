// The router's configuration: the active document and which service element of it is in force. The state of
// an entity is its element's own, so it comes and goes with the element, whatever that is called. Every
// operation answers as a router does and leaves the configuration whole when it fails. One thread at a time.
#pragma once

#include "practice_router/actions/answer.h"
#include "practice_router/document/xml.h"

#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

struct PracticeConfiguration {
    PracticeXmlDocument document{}; // null while none is loaded
    xmlNode* service = nullptr;     // in the document
    std::stop_token stop{};         // asked to stop, every operation gives up soon and fails
};

constexpr std::size_t PRACTICE_MAX_PEERS = 256; // of one participant

// The commands that change the state of one entity; an empty path is the router itself. The document shows
// what its definition has a place for.
enum class PracticeStateChange { ENABLE, DISABLE, PAUSE, RESUME };
PracticeAnswer PracticeConfiguration_changeState(PracticeConfiguration& self, PracticeStateChange change,
                                                 std::string_view path);

// Takes a document as the active one, with the service element of that name in force. All state is reset.
PracticeAnswer PracticeConfiguration_load(PracticeConfiguration& self, std::string_view xml,
                                          std::string_view configurationName);
// The same with the document's first service element.
PracticeAnswer PracticeConfiguration_loadFirst(PracticeConfiguration& self, std::string_view xml);
PracticeAnswer PracticeConfiguration_unload(PracticeConfiguration& self);

// Merges a snippet into the entity at a path.
PracticeAnswer PracticeConfiguration_update(PracticeConfiguration& self, std::string_view path,
                                            std::string_view snippet);
// Adds the entity that the snippet holds to the entity at a path.
PracticeAnswer PracticeConfiguration_create(PracticeConfiguration& self, std::string_view parentPath,
                                            std::string_view snippet);
PracticeAnswer PracticeConfiguration_remove(PracticeConfiguration& self, std::string_view path);

// Adds to the initial peers of a domain route's participant, in the document.
PracticeAnswer PracticeConfiguration_addPeers(PracticeConfiguration& self, std::string_view domainRoutePath,
                                              bool isFirstParticipant, const std::vector<std::string>& peers);

// The active document as text.
std::string PracticeConfiguration_text(const PracticeConfiguration& self);
