// The practice router takes any bytes as a document, an update and a new entity: it changes its configuration
// whole or not at all. What it finds wrong by the definition, libxml2 finds wrong too, and the reverse.
// It refuses exactly what a check finds wrong, with the first of the findings.
#include "plan/check/check.h"
#include "plan/document/definition.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"
#include "practice_router/actions/configuration.h"
#include "product/product_info.h"

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace zul::plan;
using namespace zul::practice;

xmlDtd* parseDtd() {
    std::string text;
    for (std::int32_t i = 0; i < ROUTER_getProductInfo()->dtdChunkCount; ++i) {
        text += ROUTER_getProductInfo()->dtdChunks[i];
    }
    xmlSetStructuredErrorFunc(nullptr, [](void*, xmlError*) {});
    return xmlIOParseDTD(
        nullptr,
        xmlParserInputBufferCreateMem(text.data(), static_cast<int>(text.size()), XML_CHAR_ENCODING_NONE),
        XML_CHAR_ENCODING_NONE);
}

bool followsRules(const xmlNode* element) {
    const Definition::Rule* rule = Definition::ofProduct().find(tagOf(element));
    bool follows = rule != nullptr;
    if (follows) {
        Definition::check(*rule, element,
                          [&follows](const xmlNode*, const std::string&) { follows = false; });
    }
    for (const xmlNode* child : elementsIn(element)) {
        follows = followsRules(child) && follows;
    }
    return follows;
}

void compareWithLibrary(std::string_view bytes) {
    static xmlDtd* const dtd = parseDtd();
    XmlDocument document;
    try {
        document = parseXml(bytes, {});
    } catch (const Refusal&) {
        return;
    }
    if (xmlDocGetRootElement(document.get())->nsDef != nullptr) {
        return; // libxml2 knows nothing of schema locations
    }
    xmlValidCtxt* validator = xmlNewValidCtxt();
    const bool isValid = xmlValidateDtd(validator, document.get(), dtd) == 1;
    xmlFreeValidCtxt(validator);
    if (isValid != followsRules(xmlDocGetRootElement(document.get()))) {
        std::abort();
    }
}

void compareWithFindings(std::string_view bytes) {
    const std::vector<Finding> findings = findFaults(bytes, "", {});
    int line = 0;
    for (const Finding& finding : findings) {
        if (finding.line < line || finding.message.find('\n') != std::string::npos ||
            finding.message.empty()) {
            std::abort();
        }
        line = finding.line;
    }
    std::string refused;
    try {
        readDocument(bytes, {});
    } catch (const Refusal& refusal) {
        refused = refusal.why;
    }
    if (refused != (findings.empty() ? "" : lineInWords(findings[0].line) + findings[0].message)) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    compareWithLibrary(bytes);
    compareWithFindings(bytes);
    Configuration configuration;
    configuration.load(bytes, "BuiltinDefault");
    configuration.loadFirst(*ROUTER_getProductInfo()->builtinDefaultConfiguration);
    const std::string before = configuration.text();
    const bool isChanged =
        configuration.update("DefaultDomainRoute", bytes).kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK ||
        configuration.create("DefaultDomainRoute", bytes).kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    const std::string after = configuration.text();
    if (!isChanged && after != before) {
        std::abort();
    }
    return 0;
}
