// Loading, unloading, and the edits of the active document: each is made on a copy, which becomes active only
// if it passes every check that a loaded document passes.
#include "practice_router/configuration.h"

#include "practice_router/document.h"
#include "practice_router/entity.h"
#include "practice_router/merge.h"
#include "practice_router/xml_nodes.h"

namespace {

PracticeAnswer noEntity(std::string_view path) {
    return PracticeAnswer_notFound("no entity named " + std::string(path));
}

// A copy of the active document and the entity at a path in it; null when there is none of that path.
struct Draft {
    PracticeXmlDocument document;
    xmlNode* entity;
};
Draft draftFor(const PracticeConfiguration& self, std::string_view path) {
    PracticeXmlDocument copy(xmlCopyDoc(self.document.get(), 1));
    xmlNode* service = copy != nullptr ? PracticeEntity_findService(copy.get(), self.serviceName) : nullptr;
    xmlNode* entity = service != nullptr ? PracticeEntity_find(service, path) : nullptr;
    return {std::move(copy), entity};
}

// Makes a draft the active document. False, with the reason, when it would not be accepted as a loaded one.
bool activate(PracticeConfiguration& self, const Draft& draft, std::string& error) {
    PracticeXmlDocument checked = PracticeDocument_read(PracticeXml_write(draft.document.get()), error);
    if (checked == nullptr) {
        error = "the configuration would become invalid: " + error;
        return false;
    }
    self.document = std::move(checked);
    return true;
}

PracticeAnswer takeDocument(PracticeConfiguration& self, PracticeXmlDocument document,
                            const xmlNode* service) {
    self = {};
    self.serviceName = PracticeNode_name(service);
    self.document = std::move(document);
    return PracticeAnswer_ok("loaded " + self.serviceName);
}

// Whether `path` is `entity` or inside it.
bool isWithin(std::string_view path, std::string_view entity) {
    return path.starts_with(entity) &&
           (path.size() == entity.size() || path.substr(entity.size()).starts_with(PRACTICE_PATH_SEPARATOR));
}

void forget(PracticeConfiguration& self, std::string_view entity) {
    std::erase_if(self.states, [entity](const auto& state) { return isWithin(state.first, entity); });
    std::erase_if(self.peers, [entity](const auto& peers) { return isWithin(peers.first.first, entity); });
}

// Why the entity of a snippet cannot be added to `parent`; empty when it can.
std::string refuseChild(const xmlNode* parent, const xmlNode* child) {
    const std::string tag(PracticeNode_tag(child));
    const std::string name = PracticeNode_name(child);
    const auto level = PracticeEntity_level(tag);
    if (!level || *level == PracticeEntityLevel::SERVICE) {
        return "a " + tag + " cannot be created; create " +
               PracticeEntity_describeLevel(PracticeEntityLevel::DOMAIN_ROUTE) + ", " +
               PracticeEntity_describeLevel(PracticeEntityLevel::SESSION) + ", " +
               PracticeEntity_describeLevel(PracticeEntityLevel::ROUTE);
    }
    const auto parentLevel = static_cast<PracticeEntityLevel>(static_cast<int>(*level) - 1);
    if (PracticeEntity_level(PracticeNode_tag(parent)) != parentLevel) {
        return "a " + tag + " cannot stand in a " + std::string(PracticeNode_tag(parent)) +
               "; its parent is " + PracticeEntity_describeLevel(parentLevel);
    }
    if (name.empty()) {
        return "the new " + tag + " has no name; give it a name attribute";
    }
    return PracticeEntity_findChild(parent, name) != nullptr
               ? "an entity named " + name + " exists already; choose another name or use update"
               : "";
}

} // namespace

PracticeAnswer PracticeConfiguration_load(PracticeConfiguration& self, std::string_view xml,
                                          std::string_view configurationName) {
    if (configurationName.empty()) {
        return PracticeAnswer_error("the name of the configuration is missing; say which one to load");
    }
    std::string error;
    PracticeXmlDocument document = PracticeDocument_read(xml, error);
    if (document == nullptr) {
        return PracticeAnswer_error(error);
    }
    const xmlNode* service = PracticeEntity_findService(document.get(), configurationName);
    return service != nullptr ? takeDocument(self, std::move(document), service)
                              : PracticeAnswer_notFound("the document holds no configuration named " +
                                                        std::string(configurationName));
}

PracticeAnswer PracticeConfiguration_loadFirst(PracticeConfiguration& self, std::string_view xml) {
    std::string error;
    PracticeXmlDocument document = PracticeDocument_read(xml, error);
    if (document == nullptr) {
        return PracticeAnswer_error(error);
    }
    const xmlNode* service = PracticeEntity_firstService(document.get());
    return service != nullptr ? takeDocument(self, std::move(document), service)
                              : PracticeAnswer_error("the document holds no configuration of this service");
}

PracticeAnswer PracticeConfiguration_unload(PracticeConfiguration& self) {
    const std::string name = self.serviceName;
    self = {};
    return PracticeAnswer_ok("unloaded " + name);
}

PracticeAnswer PracticeConfiguration_update(PracticeConfiguration& self, std::string_view path,
                                            std::string_view snippet) {
    const Draft draft = draftFor(self, path);
    if (draft.entity == nullptr) {
        return noEntity(path);
    }
    std::string error;
    const PracticeXmlDocument change = PracticeXml_parse(snippet, error);
    const std::string updated = PracticeEntity_path(draft.entity);
    if (change == nullptr || !PracticeMerge_apply(draft.entity, xmlDocGetRootElement(change.get()), error) ||
        !activate(self, draft, error)) {
        return PracticeAnswer_error(error);
    }
    return PracticeAnswer_ok("updated " + (updated.empty() ? "the router" : updated));
}

PracticeAnswer PracticeConfiguration_create(PracticeConfiguration& self, std::string_view parentPath,
                                            std::string_view snippet) {
    const Draft draft = draftFor(self, parentPath);
    if (draft.entity == nullptr) {
        return noEntity(parentPath);
    }
    std::string error;
    const PracticeXmlDocument addition = PracticeXml_parse(snippet, error);
    if (addition == nullptr) {
        return PracticeAnswer_error(error);
    }
    xmlNode* child = xmlDocGetRootElement(addition.get());
    error = refuseChild(draft.entity, child);
    if (!error.empty()) {
        return PracticeAnswer_error(error);
    }
    xmlNode* created = PracticeNode_insertCopy(draft.entity, child);
    if (created == nullptr || !activate(self, draft, error)) {
        return PracticeAnswer_error(created == nullptr ? "out of memory" : error);
    }
    return PracticeAnswer_ok("created " + PracticeEntity_path(created));
}

PracticeAnswer PracticeConfiguration_remove(PracticeConfiguration& self, std::string_view path) {
    const Draft draft = draftFor(self, path);
    if (draft.entity == nullptr) {
        return noEntity(path);
    }
    const std::string removed = PracticeEntity_path(draft.entity);
    if (removed.empty()) {
        return PracticeAnswer_error("the router itself cannot be deleted; name an entity, or use unload");
    }
    PracticeNode_remove(draft.entity);
    std::string error;
    if (!activate(self, draft, error)) {
        return PracticeAnswer_error(error);
    }
    forget(self, removed);
    return PracticeAnswer_ok("deleted " + removed);
}

std::string PracticeConfiguration_text(const PracticeConfiguration& self) {
    return PracticeXml_write(self.document.get());
}
