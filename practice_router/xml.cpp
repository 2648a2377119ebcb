#include "practice_router/xml.h"

#include "product/product_info.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/valid.h>
#include <libxml/xmlerror.h>
#include <libxml/xmlsave.h>

#include <array>

namespace {

constexpr std::size_t MAX_ERROR_LENGTH = 1000; // characters: content models in messages can be very long

// The first thing that went wrong; later messages mostly follow from it.
struct FirstError {
    std::string text;

    void set(int line, std::string_view what) {
        if (!text.empty()) {
            return;
        }
        while (!what.empty() && (what.back() == '\n' || what.back() == ' ')) {
            what.remove_suffix(1);
        }
        text = "line " + std::to_string(line) + ": ";
        text.append(what.substr(0, MAX_ERROR_LENGTH));
        for (char& c : text) {
            if (static_cast<unsigned char>(c) < ' ') {
                c = ' ';
            }
        }
    }
};

int lineOf(const xmlParserCtxt* parser) {
    return parser->input != nullptr ? parser->input->line : 0;
}

void refuse(xmlParserCtxt* parser, const std::string& what) {
    static_cast<FirstError*>(parser->_private)->set(lineOf(parser), what);
    xmlStopParser(parser);
}

void refuseDocumentType(void* context, const xmlChar*, const xmlChar*, const xmlChar*) {
    refuse(static_cast<xmlParserCtxt*>(context),
           "a document type declaration is not accepted; take out the <!DOCTYPE ...> part");
}

void startElement(void* context, const xmlChar* localname, const xmlChar* prefix, const xmlChar* uri,
                  int namespaceCount, const xmlChar** namespaces, int attributeCount, int defaultedCount,
                  const xmlChar** attributes) {
    auto* parser = static_cast<xmlParserCtxt*>(context);
    if (parser->nodeNr >= PRACTICE_XML_MAX_DEPTH) {
        refuse(parser, "elements stand more than " + std::to_string(PRACTICE_XML_MAX_DEPTH) +
                           " deep in each other; flatten the document");
        return;
    }
    xmlSAX2StartElementNs(context, localname, prefix, uri, namespaceCount, namespaces, attributeCount,
                          defaultedCount, attributes);
}

void noteParserError(void* context, xmlError* error) {
    static_cast<FirstError*>(static_cast<xmlParserCtxt*>(context)->_private)
        ->set(error->line, error->message != nullptr ? error->message : "unknown error");
}

// Catches what the library reports outside a parser of ours, on this thread, as long as it lives.
class ErrorCapture {
public:
    ErrorCapture() : previous_(xmlStructuredError), previousContext_(xmlStructuredErrorContext) {
        xmlSetStructuredErrorFunc(&first_, note);
    }
    ~ErrorCapture() { xmlSetStructuredErrorFunc(previousContext_, previous_); }
    ErrorCapture(const ErrorCapture&) = delete;
    ErrorCapture& operator=(const ErrorCapture&) = delete;
    const std::string& text() const { return first_.text; }

private:
    static void note(void* context, xmlError* error) {
        static_cast<FirstError*>(context)->set(error->line,
                                               error->message != nullptr ? error->message : "unknown error");
    }

    FirstError first_{};
    xmlStructuredErrorFunc previous_;
    void* previousContext_;
};

std::unique_ptr<xmlDtd, PracticeXmlDeleter> parseDtd(const ROUTERProductInfo& product) {
    std::string text;
    for (std::int32_t i = 0; i < product.dtdChunkCount; ++i) {
        text += product.dtdChunks[i];
    }
    const ErrorCapture quiet;
    xmlParserInputBuffer* input =
        xmlParserInputBufferCreateMem(text.data(), static_cast<int>(text.size()), XML_CHAR_ENCODING_NONE);
    return std::unique_ptr<xmlDtd, PracticeXmlDeleter>(
        input != nullptr ? xmlIOParseDTD(nullptr, input, XML_CHAR_ENCODING_NONE) : nullptr);
}

// The selected product's definition, read once; null when memory is exhausted.
xmlDtd* productDtd() {
    static std::array<std::unique_ptr<xmlDtd, PracticeXmlDeleter>, std::size(ROUTER_g_productInfo)> dtds;
    auto& dtd = dtds[static_cast<std::size_t>(ROUTER_getProductId())];
    if (dtd == nullptr) {
        dtd = parseDtd(*ROUTER_getProductInfo());
    }
    return dtd.get();
}

struct ParserDeleter {
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
};
struct ValidatorDeleter {
    void operator()(xmlValidCtxt* validator) const { xmlFreeValidCtxt(validator); }
};
using Validator = std::unique_ptr<xmlValidCtxt, ValidatorDeleter>;

} // namespace

PracticeXmlDocument PracticeXml_parse(std::string_view text, std::string& error) {
    if (text.empty()) {
        error = "the document is empty";
        return nullptr;
    }
    if (text.size() > PRACTICE_XML_MAX_SIZE) {
        error = "the document has " + std::to_string(text.size()) + " bytes; at most " +
                std::to_string(PRACTICE_XML_MAX_SIZE) + " are accepted";
        return nullptr;
    }
    const std::unique_ptr<xmlParserCtxt, ParserDeleter> parser(xmlNewParserCtxt());
    if (parser == nullptr) {
        error = "out of memory";
        return nullptr;
    }
    FirstError first;
    parser->_private = &first;
    parser->sax->serror = noteParserError;
    parser->sax->internalSubset = refuseDocumentType;
    parser->sax->startElementNs = startElement;
    PracticeXmlDocument document(xmlCtxtReadMemory(parser.get(), text.data(), static_cast<int>(text.size()),
                                                   nullptr, nullptr, XML_PARSE_NONET | XML_PARSE_NOWARNING));
    if (document == nullptr || !first.text.empty()) {
        error = first.text.empty() ? "the document cannot be read" : first.text;
        return nullptr;
    }
    return document;
}

bool PracticeXml_followsDtd(xmlDoc* document, std::string& error) {
    xmlDtd* dtd = productDtd();
    const Validator validator(xmlNewValidCtxt());
    if (dtd == nullptr || validator == nullptr) {
        error = "out of memory";
        return false;
    }
    const ErrorCapture capture;
    if (xmlValidateDtd(validator.get(), document, dtd) == 1) {
        return true;
    }
    error = capture.text().empty() ? "the document does not follow its definition" : capture.text();
    return false;
}

bool PracticeXml_childrenFollowDtd(xmlNode* element) {
    const Validator validator(xmlNewValidCtxt());
    xmlDtd* dtd = productDtd();
    if (dtd == nullptr || validator == nullptr) {
        return false;
    }
    const ErrorCapture quiet;
    element->doc->extSubset = dtd; // lent for the check
    const bool valid = xmlValidateOneElement(validator.get(), element->doc, element) == 1;
    element->doc->extSubset = nullptr;
    return valid;
}

bool PracticeXml_isDeclared(const xmlChar* elementName) {
    xmlDtd* dtd = productDtd();
    return dtd != nullptr && xmlGetDtdElementDesc(dtd, elementName) != nullptr;
}

std::string PracticeXml_write(xmlDoc* document) {
    struct BufferDeleter {
        void operator()(xmlBuffer* buffer) const { xmlBufferFree(buffer); }
    };
    const std::unique_ptr<xmlBuffer, BufferDeleter> buffer(xmlBufferCreate());
    const int options = document->encoding == nullptr ? XML_SAVE_NO_DECL : 0;
    xmlSaveCtxt* writer = buffer != nullptr ? xmlSaveToBuffer(buffer.get(), "UTF-8", options) : nullptr;
    if (writer == nullptr) {
        return {};
    }
    xmlSaveDoc(writer, document);
    xmlSaveClose(writer);
    return {reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
            static_cast<std::size_t>(xmlBufferLength(buffer.get()))};
}
