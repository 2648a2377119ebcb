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

namespace zul::practice {

namespace {

// Why the entity of a snippet cannot be added to `parent`; empty when it can.
std::string refuseChild(const xmlNode* parent, const xmlNode* child) {
    const std::string tag = shortened(tagOf(child));
    const std::string name = nameOf(child);
    const auto level = levelOf(child);
    if (!level || *level == EntityLevel::SERVICE) {
        return "a " + tag + " cannot be created; create " + describeLevel(EntityLevel::DOMAIN_ROUTE) + ", " +
               describeLevel(EntityLevel::SESSION) + ", " + describeLevel(EntityLevel::ROUTE);
    }
    const auto parentLevel = static_cast<EntityLevel>(static_cast<int>(*level) - 1);
    if (levelOf(parent) != parentLevel) {
        return "a " + tag + " cannot stand in a " + std::string(tagOf(parent)) + "; its parent is " +
               describeLevel(parentLevel);
    }
    if (name.empty()) {
        return "the new " + tag + " has no name; give it a name attribute";
    }
    return findChild(parent, name) != nullptr
               ? "an entity named " + name + " exists already; choose another name or use update"
               : "";
}

} // namespace

Answer Configuration::take(std::string_view xml, std::string_view configurationName,
                           const Answer& whenMissing) {
    std::string error;
    XmlDocument document = readDocument(xml, stop_, error);
    if (document == nullptr) {
        return Answer::error(error);
    }
    xmlNode* service = findService(document.get(), configurationName);
    if (service == nullptr) {
        return whenMissing;
    }
    std::string done = "loaded " + nameOf(service);
    document_ = std::move(document);
    service_ = service;
    return Answer::ok(std::move(done));
}

Answer Configuration::load(std::string_view xml, std::string_view configurationName) {
    return configurationName.empty()
               ? Answer::error("the name of the configuration is missing; say which one to load")
               : take(xml, configurationName,
                      Answer::notFound("the document holds no configuration named " +
                                       std::string(configurationName)));
}

Answer Configuration::loadFirst(std::string_view xml) {
    return take(xml, {}, Answer::error("the document holds no configuration of this service"));
}

Answer Configuration::unload() {
    std::string done = "unloaded " + nameOf(service_);
    service_ = nullptr;
    document_.reset();
    return Answer::ok(std::move(done));
}

Answer Configuration::update(std::string_view path, std::string_view snippet) {
    Draft draft(*this, path);
    if (draft.entity() == nullptr) {
        return noEntity(path);
    }
    std::string error;
    const XmlDocument change = draft.parseSnippet(snippet, error);
    return change != nullptr && applySnippet(draft.entity(), xmlDocGetRootElement(change.get()), stop_, error)
               ? draft.activate("updated " + pathInWords(draft.entity()))
               : Answer::error(error);
}

Answer Configuration::create(std::string_view parentPath, std::string_view snippet) {
    Draft draft(*this, parentPath);
    xmlNode* parent = draft.entity();
    if (parent == nullptr) {
        return noEntity(parentPath);
    }
    std::string error;
    const XmlDocument addition = draft.parseSnippet(snippet, error);
    if (addition == nullptr) {
        return Answer::error(error);
    }
    xmlNode* child = xmlDocGetRootElement(addition.get());
    error = refuseChild(parent, child);
    if (!error.empty()) {
        return Answer::error(error);
    }
    const ContentModel& content = *Definition::ofProduct().contentOf(tagOf(parent));
    Layout layout(parent->doc);
    return Children(parent, content, layout).insert(child, error)
               ? draft.activate("created " + pathInWords(child))
               : Answer::error(error);
}

Answer Configuration::remove(std::string_view path) {
    Draft draft(*this, path);
    if (draft.entity() == nullptr) {
        return noEntity(path);
    }
    const std::string removed = pathOf(draft.entity());
    if (removed.empty()) {
        return Answer::error("the router itself cannot be deleted; name an entity, or use unload");
    }
    Layout::remove(draft.entity());
    return draft.activate("deleted " + removed);
}

} // namespace zul::practice
