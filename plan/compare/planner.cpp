// The planner changes a copy of what runs as it goes, each step as a router would take it; so it sees what an
// update did not bring about, and does that another way.
#include "plan/compare/planner.h"

#include "plan/check/check.h"
#include "plan/compare/changed_profiles.h"
#include "plan/compare/snippet.h"
#include "plan/document/children.h"
#include "plan/document/definition.h"
#include "plan/document/entity.h"
#include "plan/document/merge.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>
#include <array>
#include <unordered_map>
#include <unordered_set>

namespace zul::plan {

namespace {

using Kind = Step::Kind;

constexpr std::size_t MAX_NAMED = 3;                // differences in one message
constexpr std::size_t CHECKED_ELEMENTS = 1'000'000; // in all checks after single steps: about a second
constexpr const char* AFTERWARDS = "what would run after the commands: ";
constexpr const char* LOAD_INSTEAD = "load the whole file instead";

// What takes effect only when the entity is enabled again, by the comments of the definitions.
constexpr std::array<std::string_view, 14> FIXED{
    "domain_id", "durability", "durability_service", "liveliness",   "reliability",
    "history",   "ownership",  "destination_order",  "presentation", "resource_limits",
    "discovery", "protocol",   "participant_name",   "base_name"};

bool isFixed(Steps steps, Change change) {
    const bool isPeer =
        change == Change::ADDED && steps.size() > 1 && steps[steps.size() - 2]->tag == "initial_peers";
    return !isPeer && std::ranges::any_of(steps, [](const Part* step) {
        return std::ranges::find(FIXED, step->tag) != FIXED.end();
    });
}

bool isEnabledAttribute(Steps steps) {
    return steps.size() == 1 && steps.front()->isAttribute && steps.front()->tag == "enabled";
}

bool isAccepted(const xmlDoc* document) {
    try {
        checkDocument(document, {});
    } catch (const Refusal&) {
        return false;
    }
    return true;
}

std::size_t countElements(const xmlNode* root) {
    std::size_t count = 1;
    for (const xmlNode* child : elementsIn(root)) {
        count += countElements(child);
    }
    return count;
}

// What an entity's own settings differ in, but for its being enabled.
struct Settings {
    Settings(const xmlNode* running, const xmlNode* wanted) : snippet(tagOf(running)) {
        compareSettings(running, wanted,
                        [this](Steps steps, Change change, const std::string&, const std::string& to) {
                            if (!isEnabledAttribute(steps)) {
                                isDifferent = true;
                                needsRestart = needsRestart || isFixed(steps, change);
                                snippet.add(steps, change, to);
                            }
                        });
    }
    Snippet snippet;
    bool isDifferent = false;
    bool needsRestart = false;
};

// What the entities around one mean for it.
struct Around {
    bool isActive = true; // all are enabled, and stay so
    bool willBeActive = true;
    bool isStopped = false; // one is disabled for now
};

class Planner {
public:
    Planner(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration)
        : configuration_(configuration),
          wanted_(wanted),
          wantedService_(findService(wanted, configuration)),
          work_(copyXml(const_cast<xmlDoc*>(running))),
          service_(findService(work_.get(), configuration)) {
        isOneOfSeveral_ = configurationsOf(running).size() > 1;
        // Where one has values that only the router knows, a check says nothing.
        isChecked_ = isAccepted(running) && isAccepted(wanted);
        if (isOneOfSeveral_ && findChild(service_, configuration) != nullptr) {
            throw Refusal{"the domain route " + configuration_ +
                          " has the name of its configuration, and there are "
                          "several; what a command would be for is not clear"};
        }
    }
    Plan plan();

private:
    void updateService();
    void noteProfile(Steps steps);
    void visitChildren(xmlNode* running, const xmlNode* wanted, const std::string& path,
                       const Around& around);
    void visit(xmlNode* running, const xmlNode* wanted, const std::string& parent, const Around& around);
    bool update(xmlNode* running, const xmlNode* wanted, const std::string& path, Settings& settings);
    void create(const std::string& parent, const xmlNode* wanted) {
        take({.kind = Kind::CREATE, .entity = addressOf(parent), .xml = textOfElement(wanted)});
    }
    void take(Step&& step);
    void checkWork() const;
    void enableWaiting();
    void refuseWhatIsLeft(bool alsoInside) const;
    // Where there are several configurations, the path names the one that is meant: a router that runs
    // another finds nothing there.
    std::string addressOf(const std::string& path) const {
        return !isOneOfSeveral_ ? path
               : path.empty()   ? configuration_
                                : configuration_ + std::string(PATH_SEPARATOR) + path;
    }

    std::string configuration_;
    const xmlDoc* wanted_;
    const xmlNode* wantedService_;
    XmlDocument work_;
    xmlNode* service_;
    bool isOneOfSeveral_ = false;
    bool isChecked_ = false;
    std::size_t elementsLeft_ = CHECKED_ELEMENTS; // to be checked; the end is checked in any case
    Plan steps_;
    std::vector<std::string> waiting_; // to be enabled, those around before those inside
    ChangedProfiles changedProfiles_;
};

std::string pathIn(const std::string& parent, const xmlNode* entity) {
    return parent.empty() ? nameOf(entity) : parent + std::string(PATH_SEPARATOR) + nameOf(entity);
}

[[noreturn]] void refuse(const xmlNode* at, const std::string& what) {
    const int line = lineOf(at); // none in what was copied
    throw Refusal{(line > 0 ? "line " + std::to_string(line) + ": " : "") + describe(at) + what};
}

void checkElement(const xmlNode* element) {
    const Definition::Rule* rule = Definition::ofProduct().find(tagOf(element));
    if (rule == nullptr) {
        refuse(element, " is not known");
    }
    ContentModel::State state = rule->content.begin();
    std::unordered_set<std::string> names;
    for (const xmlNode* child : elementsIn(element)) {
        const std::string name = levelOf(child) ? nameOf(child) : "";
        if (levelOf(child) &&
            (name.empty() || name.find(PATH_SEPARATOR) != std::string::npos || !names.insert(name).second)) {
            refuse(child, " has no name of its own, so no command can be for it");
        }
        const auto next = rule->content.after(state, tagOf(child));
        if (!next) {
            refuse(child, " cannot stand here; expected " + rule->content.expected(state));
        }
        state = *next;
        checkElement(child);
    }
    if (!state.isComplete) {
        refuse(element, " is not complete; expected " + rule->content.expected(state));
    }
}

// Checks what a merge relies on, which elements are where, and the names that commands are addressed by. Not
// the values: a router may run some that only it knows.
void checkForms(const xmlDoc* document, const std::string& whose) {
    try {
        checkElement(xmlDocGetRootElement(document));
    } catch (const Refusal& refusal) {
        throw Refusal{whose + refusal.why};
    }
}

std::string listed(const std::vector<Difference>& differences) {
    std::string text;
    for (std::size_t i = 0; i < std::min(differences.size(), MAX_NAMED); ++i) {
        text.append(i == 0 ? "" : ", ").append(differences[i].path);
    }
    return text + (differences.size() > MAX_NAMED
                       ? " and " + std::to_string(differences.size() - MAX_NAMED) + " more"
                       : "");
}

void Planner::take(Step&& step) {
    play(step, work_.get(), configuration_);
    if ((step.kind == Kind::UPDATE || step.kind == Kind::CREATE) && elementsLeft_ > 0) {
        const std::size_t elements = countElements(xmlDocGetRootElement(work_.get()));
        elementsLeft_ -= std::min(elements, elementsLeft_);
        if (elementsLeft_ > 0) {
            checkWork();
        }
    }
    steps_.push_back(std::move(step));
}

// A router refuses what would make its document invalid.
void Planner::checkWork() const {
    try {
        if (isChecked_) {
            checkDocument(work_.get(), {});
        }
    } catch (const Refusal& refusal) {
        // The lines are of the copy.
        throw Refusal{AFTERWARDS + refusal.why.substr(lineInWords(refusal.line).size()) + "; " +
                      LOAD_INSTEAD};
    }
}

// Only of the service and the sections, or also of the entities inside.
void Planner::refuseWhatIsLeft(bool alsoInside) const {
    auto left = compare(work_.get(), wanted_, configuration_);
    std::erase_if(left, [alsoInside](const Difference& difference) {
        return !alsoInside && !difference.path.starts_with('/');
    });
    if (!left.empty()) {
        throw Refusal{"no command can bring about what is wanted of " + listed(left) +
                      "; an update only adds and replaces, so " + LOAD_INSTEAD};
    }
}

// The steps are a library, a profile and what changes in that.
void Planner::noteProfile(Steps steps) {
    if (steps.size() > 2 && steps[0]->tag == "qos_library") {
        const std::string path = steps[0]->identity + std::string(PATH_SEPARATOR) + steps[1]->identity;
        changedProfiles_.add(path, steps[2]->isAttribute ? "" : steps[2]->tag);
    }
}

// Sections come with the service's settings, in one update.
void Planner::updateService() {
    Settings settings(service_, wantedService_);
    Snippet document(tagOf(xmlDocGetRootElement(work_.get())));
    bool hasSections = false;
    changedProfiles_ = {};
    compareSections(work_.get(), wanted_,
                    [&](Steps steps, Change change, const std::string&, const std::string& to) {
                        hasSections = true;
                        document.add(steps, change, to);
                        if (isFixed(steps, change)) {
                            noteProfile(steps);
                        }
                    });
    changedProfiles_.follow(wanted_);
    if (!hasSections && !settings.isDifferent) {
        return;
    }
    Step step{.kind = Kind::UPDATE, .entity = addressOf({})};
    if (hasSections) {
        if (!settings.snippet.isEmpty()) {
            settings.snippet.name(configuration_);
            document.nest(std::move(settings.snippet));
        }
        step.xml = document.text();
    } else {
        step.xml = settings.snippet.text();
    }
    if (hasSections ? !document.isEmpty() : !settings.snippet.isEmpty()) {
        try {
            take(std::move(step));
        } catch (const Refusal&) {
            refuseWhatIsLeft(false); // what cannot go may be why
            throw;
        }
    }
}

// False when that does not bring about what is wanted.
bool Planner::update(xmlNode* running, const xmlNode* wanted, const std::string& path, Settings& settings) {
    if (settings.snippet.isEmpty()) {
        return false;
    }
    try {
        take({.kind = Kind::UPDATE, .entity = addressOf(path), .xml = settings.snippet.text()});
    } catch (const Refusal&) {
        return false;
    }
    return !Settings(running, wanted).isDifferent;
}

void Planner::visit(xmlNode* running, const xmlNode* wanted, const std::string& parent,
                    const Around& around) {
    const std::string path = pathIn(parent, running);
    const bool isEnabled = stateOf(running).enabled;
    const bool shallBe = stateOf(wanted).enabled;
    Settings settings(running, wanted);
    const bool needsRestart = settings.needsRestart || changedProfiles_.areUsedBy(wanted);
    const bool stops = isEnabled && shallBe && needsRestart && around.isActive && !around.isStopped;
    // The enable command is refused inside what stays disabled.
    const bool isSetByUpdate = !isEnabled && shallBe && !around.willBeActive;
    const std::size_t begin = steps_.size();
    if (isEnabled && (!shallBe || stops)) {
        take({.kind = Kind::DISABLE, .entity = addressOf(path)});
    }
    if (isSetByUpdate) {
        settings.snippet.setAttribute("enabled", "true");
    }
    if ((settings.isDifferent || isSetByUpdate) && !update(running, wanted, path, settings)) {
        steps_.resize(begin);
        take({.kind = Kind::REMOVE, .entity = addressOf(path)});
        create(parent, wanted);
        return;
    }
    if (shallBe && !isSetByUpdate && (stops || !isEnabled)) {
        waiting_.push_back(path);
    }
    visitChildren(running, wanted, path,
                  {.isActive = around.isActive && isEnabled && shallBe,
                   .willBeActive = around.willBeActive && shallBe,
                   .isStopped = around.isStopped || stops});
}

void Planner::visitChildren(xmlNode* running, const xmlNode* wanted, const std::string& path,
                            const Around& around) {
    const auto keyOf = [](const xmlNode* entity) {
        return std::string(tagOf(entity)) + '\0' + nameOf(entity);
    };
    std::unordered_map<std::string, const xmlNode*> wantedByKey;
    for (const xmlNode* child : elementsIn(wanted)) {
        if (levelOf(child)) {
            wantedByKey.emplace(keyOf(child), child);
        }
    }
    std::vector<std::pair<xmlNode*, const xmlNode*>> kept;
    std::vector<std::string> gone;
    for (xmlNode* child : elementsIn(running)) {
        if (!levelOf(child)) {
            continue;
        }
        const auto found = wantedByKey.find(keyOf(child));
        if (found == wantedByKey.end()) {
            gone.push_back(pathIn(path, child));
        } else {
            kept.emplace_back(child, found->second);
            found->second = nullptr;
        }
    }
    for (const std::string& entity : gone) {
        take({.kind = Kind::REMOVE, .entity = addressOf(entity)});
    }
    for (const auto& [child, counterpart] : kept) {
        visit(child, counterpart, path, around);
        if (path.empty()) {
            enableWaiting();
        }
    }
    for (const xmlNode* child : elementsIn(wanted)) {
        if (levelOf(child) && wantedByKey.at(keyOf(child)) == child) {
            create(path, child);
        }
    }
}

void Planner::enableWaiting() {
    for (const std::string& path : waiting_) {
        take({.kind = Kind::ENABLE, .entity = addressOf(path)});
    }
    waiting_.clear();
}

Plan Planner::plan() {
    // What one round moves may change what another setting means: a domain is taken from the first route.
    constexpr int ROUNDS = 2;
    for (int round = 0;
         round < ROUNDS && (round == 0 || !compare(work_.get(), wanted_, configuration_).empty()); ++round) {
        updateService();
        visitChildren(service_, wantedService_, {}, {});
    }
    refuseWhatIsLeft(true);
    checkForms(work_.get(), AFTERWARDS);
    checkWork();
    return std::move(steps_);
}

xmlNode* require(xmlNode* entity, const std::string& path) {
    return entity != nullptr ? entity : throw Refusal{.why = "no entity named " + path, .isMissing = true};
}

} // namespace

void play(const Step& step, xmlDoc* document, std::string_view configuration) {
    xmlNode* entity = require(findEntity(findService(document, configuration), step.entity), step.entity);
    switch (step.kind) {
    case Kind::ENABLE:
    case Kind::DISABLE:
        setState(entity, {.enabled = step.kind == Kind::ENABLE, .paused = false});
        return;
    case Kind::REMOVE:
        if (levelOf(entity) == EntityLevel::SERVICE) {
            throw Refusal{"the router itself cannot be deleted"};
        }
        Layout::remove(entity);
        return;
    case Kind::LOAD:
        throw Refusal{"a load is no change of a document"};
    case Kind::UPDATE:
    case Kind::CREATE:
        break;
    }
    const XmlDocument snippet = parseXml(step.xml, {}, document->dict);
    xmlNode* root = xmlDocGetRootElement(snippet.get());
    if (step.kind == Kind::UPDATE) {
        applySnippet(entity, root, {});
        return;
    }
    Layout layout(document);
    insertChild(entity, root, layout);
}

Plan makePlan(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration) {
    checkForms(running, "the router's own document: ");
    checkForms(wanted, "what is wanted: ");
    return Planner(running, wanted, configuration).plan();
}

Plan makeWayBack(const xmlDoc* running, const xmlDoc* wanted, std::string_view configuration,
                 const std::string& before, std::string* whyLoad) {
    try {
        return makePlan(running, wanted, configuration);
    } catch (const Refusal& refusal) {
        if (whyLoad != nullptr) {
            *whyLoad = refusal.why;
        }
        return {{.kind = Kind::LOAD, .entity = std::string(configuration), .xml = before}};
    }
}

} // namespace zul::plan
