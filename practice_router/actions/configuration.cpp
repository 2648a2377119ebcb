// Loading, unloading, and the edits of the active document that a snippet or a deletion makes.
#include "practice_router/actions/configuration.h"

#include "practice_router/actions/draft.h"
#include "practice_router/document/children.h"
#include "practice_router/document/definition.h"
#include "practice_router/document/document.h"
#include "practice_router/document/entity.h"
#include "practice_router/document/layout.h"
#include "practice_router/document/merge.h"
#include "practice_router/document/xml_nodes.h"

using namespace zul::practice;

namespace {

PracticeAnswer takeDocument(PracticeConfiguration& self, PracticeXmlDocument document, xmlNode* service) {
    self.document = std::move(document);
    self.service = service;
    return PracticeAnswer_ok("loaded " + PracticeNode_name(service));
}

// Why the entity of a snippet cannot be added to `parent`; empty when it can.
std::string refuseChild(const xmlNode* parent, const xmlNode* child) {
    const std::string tag = shortened(PracticeNode_tag(child));
    const std::string name = PracticeNode_name(child);
    const auto level = PracticeEntity_level(PracticeNode_tag(child));
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
    PracticeXmlDocument document = PracticeDocument_read(xml, self.stop, error);
    if (document == nullptr) {
        return PracticeAnswer_error(error);
    }
    xmlNode* service = PracticeEntity_findService(document.get(), configurationName);
    return service != nullptr ? takeDocument(self, std::move(document), service)
                              : PracticeAnswer_notFound("the document holds no configuration named " +
                                                        std::string(configurationName));
}

PracticeAnswer PracticeConfiguration_loadFirst(PracticeConfiguration& self, std::string_view xml) {
    std::string error;
    PracticeXmlDocument document = PracticeDocument_read(xml, self.stop, error);
    if (document == nullptr) {
        return PracticeAnswer_error(error);
    }
    xmlNode* service = PracticeEntity_firstService(document.get());
    return service != nullptr ? takeDocument(self, std::move(document), service)
                              : PracticeAnswer_error("the document holds no configuration of this service");
}

PracticeAnswer PracticeConfiguration_unload(PracticeConfiguration& self) {
    const std::string name = PracticeNode_name(self.service);
    self.service = nullptr;
    self.document.reset();
    return PracticeAnswer_ok("unloaded " + name);
}

PracticeAnswer PracticeConfiguration_update(PracticeConfiguration& self, std::string_view path,
                                            std::string_view snippet) {
    Draft draft(self, path);
    if (draft.entity() == nullptr) {
        return noEntity(path);
    }
    std::string error;
    const PracticeXmlDocument change = draft.parseSnippet(snippet, error);
    if (change == nullptr ||
        !applySnippet(draft.entity(), xmlDocGetRootElement(change.get()), self.stop, error) ||
        !draft.activate(error)) {
        return PracticeAnswer_error(error);
    }
    return PracticeAnswer_ok("updated " + pathInWords(draft.entity()));
}

PracticeAnswer PracticeConfiguration_create(PracticeConfiguration& self, std::string_view parentPath,
                                            std::string_view snippet) {
    Draft draft(self, parentPath);
    xmlNode* parent = draft.entity();
    if (parent == nullptr) {
        return noEntity(parentPath);
    }
    std::string error;
    const PracticeXmlDocument addition = draft.parseSnippet(snippet, error);
    if (addition == nullptr) {
        return PracticeAnswer_error(error);
    }
    xmlNode* child = xmlDocGetRootElement(addition.get());
    error = refuseChild(parent, child);
    if (!error.empty()) {
        return PracticeAnswer_error(error);
    }
    const ContentModel& content = *Definition::ofProduct()->contentOf(PracticeNode_tag(parent));
    Layout layout(parent->doc);
    return Children(parent, content, layout).insert(child, error) && draft.activate(error)
               ? PracticeAnswer_ok("created " + pathInWords(child))
               : PracticeAnswer_error(error);
}

PracticeAnswer PracticeConfiguration_remove(PracticeConfiguration& self, std::string_view path) {
    Draft draft(self, path);
    if (draft.entity() == nullptr) {
        return noEntity(path);
    }
    const std::string removed = PracticeEntity_path(draft.entity());
    if (removed.empty()) {
        return PracticeAnswer_error("the router itself cannot be deleted; name an entity, or use unload");
    }
    Layout::remove(draft.entity());
    std::string error;
    return draft.activate(error) ? PracticeAnswer_ok("deleted " + removed) : PracticeAnswer_error(error);
}

std::string PracticeConfiguration_text(const PracticeConfiguration& self) {
    return PracticeXml_write(self.document.get());
}
