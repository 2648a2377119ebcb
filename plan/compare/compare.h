// Two documents compared by what they configure. The time is linear in both but for the sorting of lists.
#pragma once

#include "plan/compare/parts.h"

#include <functional>
#include <span>

namespace zul::plan {

enum class Change { ADDED, REMOVED, CHANGED, MOVED };
// Another order is a change, too.
constexpr const char* nameOf(Change change) {
    return change == Change::ADDED ? "added" : change == Change::REMOVED ? "removed" : "changed";
}

// One thing that two documents configure differently.
struct Difference {
    // "DomainRoute::Session::Route" for an entity, "DomainRoute::Session/property[name]" for a setting of it,
    // "/administration.domain_id" for one of the router itself or of the document.
    std::string path;
    Change change;
    std::string from; // a value; of an entity its tag; empty when there was none
    std::string to;
};

// What differs between the configuration of that name in `running` and in `wanted`, and in the sections that
// they use. Other configurations do not count. Both must have one of that name.
std::vector<Difference> compare(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration);

// The names of the configurations in a document.
std::vector<std::string> configurationsOf(const xmlDoc* document);

// The way to a difference, from the outermost part to the one that differs, taken from `wanted` if it is
// there. Valid during the call.
using Steps = std::span<const Part* const>;
using OnDifference =
    std::function<void(Steps steps, Change change, const std::string& from, const std::string& to)>;

// What differs between two elements, apart from the entities inside them.
void compareSettings(const xmlNode* running, const xmlNode* wanted, const OnDifference& onDifference);
// The same for the sections of two documents.
void compareSections(const xmlDoc* running, const xmlDoc* wanted, const OnDifference& onDifference);

} // namespace zul::plan
