// The router's configuration: the active document, which service element of it is in force, and the state of
// its entities. Every operation answers as a router does and leaves the configuration whole when it fails.
// One thread at a time.
#pragma once

#include "practice_router/answer.h"
#include "practice_router/xml.h"

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct PracticeEntityState {
    bool enabled;
    bool paused; // only while enabled
};

// A participant of a domain route: the route's path, and whether it is the first.
using PracticeParticipant = std::pair<std::string, bool>;

struct PracticeConfiguration {
    PracticeXmlDocument document; // null while none is loaded
    std::string serviceName;
    std::map<std::string, PracticeEntityState, std::less<>>
        states; // by path, once it differs from the document's
    std::map<PracticeParticipant, std::vector<std::string>> peers;
};

constexpr std::size_t PRACTICE_MAX_PEERS = 256; // added to one participant

// The commands that change the state of one entity; an empty path is the router itself.
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

PracticeAnswer PracticeConfiguration_addPeers(PracticeConfiguration& self, std::string_view domainRoutePath,
                                              bool isFirstParticipant, const std::vector<std::string>& peers);

// The active document as text.
std::string PracticeConfiguration_text(const PracticeConfiguration& self);
