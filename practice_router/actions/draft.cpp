// The copy of the service element is found by its place among its siblings.
#include "practice_router/actions/draft.h"

#include "plan/check/check.h"
#include "plan/document/entity.h"
#include "plan/document/xml_nodes.h"

namespace zul::practice {

using namespace plan;

namespace {

// The draft's text must be a document that can be loaded again. Its elements have no line numbers, so a
// refusal is worded by reading that text.
void checkAsText(xmlDoc* document, const std::stop_token& stop) {
    const std::string text = writeXml(document);
    try {
        checkXml(text, stop);
        checkDocument(document, stop);
    } catch (const Refusal&) {
        readDocument(text, stop);
        throw;
    }
}

} // namespace

Draft::Draft(Configuration& configuration, std::string_view path, const char* what)
    : configuration_(configuration), document_(copyXml(configuration.document_.get())) {
    const xmlNode* root = xmlDocGetRootElement(configuration.document_.get());
    xmlNode* copy = xmlDocGetRootElement(document_.get());
    carryMarks(root, copy);
    service_ = firstChild(copy);
    for (const xmlNode* node = firstChild(root); node != configuration.service_; node = nextElement(node)) {
        service_ = nextElement(service_);
    }
    entity_ = findEntity(service_, path);
    if (entity_ == nullptr) {
        refuseMissing(path, what);
    }
}

XmlDocument Draft::parseSnippet(std::string_view text) const {
    return parseXml(text, configuration_.stop_, document_->dict);
}

Answer Draft::activate(std::string done) {
    try {
        checkAsText(document_.get(), configuration_.stop_);
    } catch (const Refusal& refusal) {
        throw Refusal{"the configuration would become invalid: " + refusal.why};
    }
    configuration_.document_ = std::move(document_);
    configuration_.service_ = service_;
    return Answer::ok(std::move(done));
}

void refuseMissing(std::string_view path, const char* what) {
    throw Refusal{.why = "no " + std::string(what) + " named " + std::string(path), .isMissing = true};
}

std::string pathInWords(const xmlNode* entity) {
    const std::string path = pathOf(entity);
    return path.empty() ? "the router" : path;
}

} // namespace zul::practice
