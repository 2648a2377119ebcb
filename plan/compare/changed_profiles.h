// Profiles in which something changes that an entity takes over only when it is enabled again, and what
// starts from them.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>
#include <unordered_set>

namespace zul::plan {

class ChangedProfiles {
public:
    // A profile by its path Library::Profile, and the tag of the element in it that changes; no tag: all do.
    void add(const std::string& profile, std::string_view tag) { changed_.insert(keyOf(profile, tag)); }
    // Adds the profiles of a document that start from them, directly or not.
    void follow(const xmlDoc* document);
    // Whether an entity's own settings start from one of them; those of the entities inside do not count.
    bool areUsedBy(const xmlNode* entity) const;

private:
    static std::string keyOf(const std::string& profile, std::string_view tag) {
        return profile + '\0' + std::string(tag);
    }

    std::unordered_set<std::string> changed_;
};

} // namespace zul::plan
