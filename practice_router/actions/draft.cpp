// The copy of the service is found by its place among its siblings.
#include "practice_router/actions/draft.h"

#include "practice_router/document/document.h"
#include "practice_router/document/entity.h"
#include "practice_router/document/xml_nodes.h"

namespace zul::practice {

Draft::Draft(Configuration& configuration, std::string_view path)
    : configuration_(configuration), document_(copyXml(configuration.document_.get())) {
    const xmlNode* root = xmlDocGetRootElement(configuration.document_.get());
    xmlNode* copy = xmlDocGetRootElement(document_.get());
    carryMarks(root, copy);
    service_ = firstChild(copy);
    for (const xmlNode* node = firstChild(root); node != configuration.service_; node = nextElement(node)) {
        service_ = nextElement(service_);
    }
    entity_ = findEntity(service_, path);
}

XmlDocument Draft::parseSnippet(std::string_view text, std::string& error) const {
    return parseXml(text, configuration_.stop_, error, document_->dict);
}

Answer Draft::activate(std::string done) {
    // As text it must be what can be loaded again. Only a refusal is worth a second tree: it has the lines.
    const std::string text = writeXml(document_.get());
    std::string error;
    if (!isReadableXml(text, configuration_.stop_, error) ||
        !isAcceptable(document_.get(), configuration_.stop_, error)) {
        readDocument(text, configuration_.stop_, error);
        return Answer::error("the configuration would become invalid: " + error);
    }
    configuration_.document_ = std::move(document_);
    configuration_.service_ = service_;
    return Answer::ok(std::move(done));
}

Answer noEntity(std::string_view path, std::string_view what) {
    return Answer::notFound("no " + std::string(what) + " named " + std::string(path));
}

std::string pathInWords(const xmlNode* entity) {
    const std::string path = pathOf(entity);
    return path.empty() ? "the router" : path;
}

} // namespace zul::practice
