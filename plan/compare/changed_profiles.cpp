// Nothing is recursive but the way into an element: a chain of profiles may be as long as it likes.
#include "plan/compare/changed_profiles.h"

#include "plan/document/entity.h"
#include "plan/document/xml_nodes.h"

#include <unordered_map>
#include <vector>

namespace zul::plan {

namespace {

constexpr const char* BASE = "base_name";

// A profile, or with a tag an element in it.
struct Place {
    std::string profile;
    std::string tag;
};
// What starts from a profile, by its path.
using Followers = std::unordered_map<std::string, std::vector<Place>>;

Followers followersIn(const xmlDoc* document) {
    Followers followers;
    const auto note = [&followers](const xmlNode* element, const Place& place) {
        if (const std::string base = attributeOf(element, BASE); !base.empty()) {
            followers[base].push_back(place);
        }
    };
    for (const xmlNode* library : elementsIn(xmlDocGetRootElement(document))) {
        if (tagOf(library) != "qos_library") {
            continue;
        }
        for (const xmlNode* profile : elementsIn(library)) {
            const std::string path = nameOf(library) + std::string(PATH_SEPARATOR) + nameOf(profile);
            note(profile, {path, ""});
            for (const xmlNode* element : elementsIn(profile)) {
                note(element, {path, std::string(tagOf(element))});
            }
        }
    }
    return followers;
}

} // namespace

void ChangedProfiles::follow(const xmlDoc* document) {
    if (changed_.empty()) {
        return;
    }
    const Followers followers = followersIn(document);
    std::vector<std::string> open(changed_.begin(), changed_.end());
    while (!open.empty()) {
        const std::string key = open.back();
        open.pop_back();
        const std::size_t end = key.find('\0');
        const std::string tag = key.substr(end + 1);
        const auto found = followers.find(key.substr(0, end));
        if (found == followers.end()) {
            continue;
        }
        for (const Place& place : found->second) {
            if (place.tag.empty() || tag.empty() || place.tag == tag) {
                const std::string next = keyOf(place.profile, place.tag.empty() ? tag : place.tag);
                if (changed_.insert(next).second) {
                    open.push_back(next);
                }
            }
        }
    }
}

bool ChangedProfiles::areUsedBy(const xmlNode* entity) const {
    if (changed_.empty()) {
        return false;
    }
    for (const xmlNode* child : elementsIn(entity)) {
        if (levelOf(child)) {
            continue;
        }
        const std::string base = attributeOf(child, BASE);
        if (changed_.contains(keyOf(base, tagOf(child))) || changed_.contains(keyOf(base, "")) ||
            areUsedBy(child)) {
            return true;
        }
    }
    return false;
}

} // namespace zul::plan
