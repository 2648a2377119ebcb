// What may be referred to by a path Library::Name: profiles and plugins, by hash; and whether profiles that
// start from each other come to an end.
#pragma once

#include "plan/check/fields.h"
#include "plan/document/definition.h"

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace zul::plan {

class References {
public:
    // Of all libraries of a document.
    explicit References(const xmlNode* root);

    // Whether there is a profile or plugin with that path.
    bool knows(Target target, const std::string& path) const;
    // Reports each base_name that leads back to the profile that it is in.
    void reportCircles(const Report& report) const;

private:
    // Profiles are numbered in the order of the document.
    using Number = std::size_t;
    struct Base {
        Number profile;
        const xmlNode* at; // the element with the base_name
    };
    // Of each profile those that it starts from.
    using Bases = std::vector<std::vector<Base>>;

    void addProfile(const std::string& path, const xmlNode* profile);
    std::optional<Base> baseOf(const xmlNode* element) const;
    // Takes out the bases that close a circle, and returns them.
    static std::vector<Base> cutCircles(Bases& bases);

    std::unordered_map<std::string, Number> numbers_; // by path, of several the last
    std::vector<const xmlNode*> profiles_;
    std::array<std::unordered_set<std::string>, 2> plugins_; // adapters, transformations
};

} // namespace zul::plan
