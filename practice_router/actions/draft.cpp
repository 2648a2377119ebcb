#include "practice_router/actions/draft.h"

#include "practice_router/document/document.h"
#include "practice_router/document/entity.h"
#include "practice_router/document/xml_nodes.h"

namespace zul::practice {

Draft::Draft(PracticeConfiguration& configuration, std::string_view path)
    : configuration_(configuration), document_(PracticeXml_copy(configuration.document.get())) {
    if (document_ == nullptr) {
        return;
    }
    const xmlNode* root = xmlDocGetRootElement(configuration.document.get());
    xmlNode* copy = xmlDocGetRootElement(document_.get());
    PracticeEntity_carryMarks(root, copy);
    service_ = PracticeNode_firstChild(copy);
    for (const xmlNode* node = PracticeNode_firstChild(root); node != configuration.service;
         node = PracticeNode_next(node)) {
        service_ = PracticeNode_next(service_);
    }
    entity_ = PracticeEntity_find(service_, path);
}

PracticeXmlDocument Draft::parseSnippet(std::string_view text, std::string& error) const {
    return PracticeXml_parse(text, configuration_.stop, error, document_->dict);
}

bool Draft::activate(std::string& error) {
    // As text it must be what can be loaded again.
    const std::string text = PracticeXml_write(document_.get());
    if (!PracticeXml_isReadable(text, configuration_.stop, error) ||
        !PracticeDocument_isAcceptable(document_.get(), configuration_.stop, error)) {
        PracticeDocument_read(text, configuration_.stop, error); // for the line
        error = "the configuration would become invalid: " + error;
        return false;
    }
    configuration_.document = std::move(document_);
    configuration_.service = service_;
    return true;
}

PracticeAnswer noEntity(std::string_view path, std::string_view what) {
    return PracticeAnswer_notFound("no " + std::string(what) + " named " + std::string(path));
}

std::string pathInWords(const xmlNode* entity) {
    const std::string path = PracticeEntity_path(entity);
    return path.empty() ? "the router" : path;
}

} // namespace zul::practice
