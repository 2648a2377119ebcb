// Circles are searched once along the base profiles alone, then for each kind of entity along those and the
// bases of the profiles' own elements of that kind. Nothing is recursive: a chain may be as long as it likes.
#include "plan/check/references.h"

#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>

namespace zul::plan {

namespace {

constexpr const char* BASE = "base_name";
constexpr std::string_view KINDS[] = {"participant_qos", "topic_qos",      "publisher_qos",
                                      "subscriber_qos",  "datawriter_qos", "datareader_qos"};

struct Library {
    std::string_view tag;
    std::string_view member;
    Target target;
};
constexpr Library LIBRARIES[] = {
    {"qos_library", "qos_profile", Target::PROFILE},
    {"adapter_library", "adapter_plugin", Target::ADAPTER},
    {"transformation_library", "transformation_plugin", Target::TRANSFORMATION},
};

} // namespace

References::References(const xmlNode* root) {
    for (const xmlNode* section : elementsIn(root)) {
        for (const Library& library : LIBRARIES) {
            if (tagOf(section) != library.tag) {
                continue;
            }
            const std::string prefix = nameOf(section) + std::string(PATH_SEPARATOR);
            for (const xmlNode* member : elementsIn(section)) {
                if (tagOf(member) == library.member && library.target == Target::PROFILE) {
                    addProfile(prefix + nameOf(member), member);
                } else if (tagOf(member) == library.member) {
                    plugins_[library.target == Target::ADAPTER ? 0 : 1].insert(prefix + nameOf(member));
                }
            }
        }
    }
}

void References::addProfile(const std::string& path, const xmlNode* profile) {
    numbers_[path] = profiles_.size();
    profiles_.push_back(profile);
}

bool References::knows(Target target, const std::string& path) const {
    return target == Target::PROFILE ? numbers_.contains(path)
                                     : plugins_[target == Target::ADAPTER ? 0 : 1].contains(path);
}

std::optional<References::Base> References::baseOf(const xmlNode* element) const {
    const auto found = numbers_.find(attributeOf(element, BASE));
    return found != numbers_.end() ? std::optional(Base{found->second, element}) : std::nullopt;
}

std::vector<References::Base> References::cutCircles(Bases& bases) {
    enum class State { NEW, OPEN, DONE };
    struct Visit {
        Number profile;
        std::size_t next; // of its bases
    };
    std::vector<Base> closing;
    std::vector<State> states(bases.size(), State::NEW);
    std::vector<Visit> open;
    for (Number start = 0; start < bases.size(); ++start) {
        if (states[start] == State::NEW) {
            open.push_back({start, 0});
        }
        while (!open.empty()) {
            Visit& visit = open.back();
            std::vector<Base>& own = bases[visit.profile];
            states[visit.profile] = State::OPEN;
            if (visit.next == own.size()) {
                states[visit.profile] = State::DONE;
                open.pop_back();
                continue;
            }
            const Base base = own[visit.next];
            if (states[base.profile] == State::OPEN) {
                closing.push_back(base);
                own[visit.next] = own.back();
                own.pop_back();
                continue;
            }
            ++visit.next;
            if (states[base.profile] == State::NEW) {
                open.push_back({base.profile, 0});
            }
        }
    }
    return closing;
}

void References::reportCircles(const Report& report) const {
    const auto tell = [&report](const std::vector<Base>& closing) {
        for (const Base& base : closing) {
            report(base.at, "the " + std::string(BASE) + " " + quoted(attributeOf(base.at, BASE)) + " of " +
                                describe(base.at) + " leads back to it; expected a profile without a circle");
        }
    };
    Bases ofProfiles(profiles_.size());
    std::array<std::vector<std::pair<Number, Base>>, std::size(KINDS)> ofElements;
    for (Number number = 0; number < profiles_.size(); ++number) {
        if (const auto base = baseOf(profiles_[number])) {
            ofProfiles[number].push_back(*base);
        }
        for (const xmlNode* element : elementsIn(profiles_[number])) {
            // One with a topic filter may be for other topics than the one that it starts from.
            const auto* kind = std::ranges::find(KINDS, tagOf(element));
            const auto base = baseOf(element);
            if (kind != std::end(KINDS) && base && xmlHasProp(element, toXml("topic_filter")) == nullptr) {
                ofElements[static_cast<std::size_t>(kind - std::begin(KINDS))].emplace_back(number, *base);
            }
        }
    }
    tell(cutCircles(ofProfiles));
    for (const auto& elements : ofElements) {
        if (!elements.empty()) {
            Bases bases = ofProfiles;
            for (const auto& [number, base] : elements) {
                bases[number].push_back(base);
            }
            tell(cutCircles(bases));
        }
    }
}

} // namespace zul::plan
