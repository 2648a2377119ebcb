// Loading, unloading, and the edits of the active document that a snippet or a deletion makes.
#include "practice_router/actions/configuration.h"

#include "plan/check/check.h"
#include "plan/document/children.h"
#include "plan/document/entity.h"
#include "plan/document/layout.h"
#include "plan/document/merge.h"
#include "plan/document/xml_nodes.h"
#include "practice_router/actions/draft.h"

namespace zul::practice {

using namespace plan;

namespace {

// Refuses to add the entity of a snippet to `parent` when that has no place for it.
void checkChild(const xmlNode* parent, const xmlNode* child) {
    const std::string tag = shortened(tagOf(child));
    const std::string name = nameOf(child);
    const auto level = levelOf(child);
    if (!level || *level == EntityLevel::SERVICE) {
        throw Refusal{"a " + tag + " cannot be created; create " + describeLevel(EntityLevel::DOMAIN_ROUTE) +
                      ", " + describeLevel(EntityLevel::SESSION) + ", " + describeLevel(EntityLevel::ROUTE)};
    }
    const auto parentLevel = static_cast<EntityLevel>(static_cast<int>(*level) - 1);
    if (levelOf(parent) != parentLevel) {
        throw Refusal{"a " + tag + " cannot stand in a " + std::string(tagOf(parent)) + "; its parent is " +
                      describeLevel(parentLevel)};
    }
    if (name.empty()) {
        throw Refusal{"the new " + tag + " has no name; give it a name attribute"};
    }
    if (findChild(parent, name) != nullptr) {
        throw Refusal{"an entity named " + name + " exists already; choose another name or use update"};
    }
}

} // namespace

Answer Configuration::take(std::string_view xml, std::string_view configurationName,
                           const Refusal& whenMissing) {
    return answered([&] {
        XmlDocument document = readDocument(xml, stop_);
        xmlNode* service = findService(document.get(), configurationName);
        if (service == nullptr) {
            throw whenMissing;
        }
        std::string done = "loaded " + nameOf(service);
        document_ = std::move(document);
        service_ = service;
        return Answer::ok(std::move(done));
    });
}

Answer Configuration::load(std::string_view xml, std::string_view configurationName) {
    const std::string name(configurationName);
    return name.empty() ? Answer::error("the name of the configuration is missing; say which one to load")
                        : take(xml, name, {"the document holds no configuration named " + name, true});
}

Answer Configuration::loadFirst(std::string_view xml) {
    return take(xml, {}, {"the document holds no configuration of this service"});
}

Answer Configuration::unload() {
    std::string done = "unloaded " + nameOf(service_);
    service_ = nullptr;
    document_.reset();
    return Answer::ok(std::move(done));
}

Answer Configuration::update(std::string_view path, std::string_view snippet) {
    return answered([&] {
        Draft draft(*this, path);
        const XmlDocument change = draft.parseSnippet(snippet);
        applySnippet(draft.entity(), xmlDocGetRootElement(change.get()), stop_);
        return draft.activate("updated " + pathInWords(draft.entity()));
    });
}

Answer Configuration::create(std::string_view parentPath, std::string_view snippet) {
    return answered([&] {
        Draft draft(*this, parentPath);
        xmlNode* parent = draft.entity();
        const XmlDocument addition = draft.parseSnippet(snippet);
        xmlNode* child = xmlDocGetRootElement(addition.get());
        checkChild(parent, child);
        Layout layout(parent->doc);
        insertChild(parent, child, layout);
        return draft.activate("created " + pathInWords(child));
    });
}

Answer Configuration::remove(std::string_view path) {
    return answered([&] {
        Draft draft(*this, path);
        const std::string removed = pathOf(draft.entity());
        if (removed.empty()) {
            throw Refusal{"the router itself cannot be deleted; name an entity, or use unload"};
        }
        Layout::remove(draft.entity());
        return draft.activate("deleted " + removed);
    });
}

} // namespace zul::practice
