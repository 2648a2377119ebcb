// While the library pulls input, failures are only recorded: it is in the middle of its buffer and stops by
// itself. In an event it is told to stop, and may still report something: the first error stays.
#include "middleware/xml/guard.h"

#include <libxml/SAX2.h>

#include <algorithm>

namespace zul::xml {

namespace {

// The library's work on a tag grows with the square of its attributes; that on a comment and the like with
// its length alone.
bool isInTag(const xmlParserCtxt& parser) {
    return parser.instate != XML_PARSER_COMMENT && parser.instate != XML_PARSER_PI &&
           parser.instate != XML_PARSER_CDATA_SECTION;
}

// Every error has a message, unless memory was too short for that, too.
bool isOfMemory(const xmlError& error) {
    return error.code == XML_ERR_NO_MEMORY || error.message == nullptr;
}

} // namespace

Source textSource(std::string_view text) {
    return [text](char* buffer, std::size_t size) mutable {
        const std::size_t count = text.copy(buffer, size);
        text.remove_prefix(count);
        return static_cast<int>(count);
    };
}

Guard::Guard(const Rules& rules, Source source, std::stop_token stop)
    : rules_(rules), source_(std::move(source)), stop_(std::move(stop)), parser_(xmlNewParserCtxt()) {
    if (parser_ == nullptr) {
        throw std::bad_alloc();
    }
    parser_->_private = this;
    xmlSAXHandler& events = *parser_->sax;
    events.externalSubset = nullptr;
    events.resolveEntity = nullptr;
    events.entityDecl = refuseDeclaration;
    events.unparsedEntityDecl = refuseDeclaration;
    events.attributeDecl = [](void* context, const xmlChar*, const xmlChar*, int, int, const xmlChar*,
                              xmlEnumeration* words) {
        xmlFreeEnumeration(words);
        refuseDeclaration(context);
    };
    events.elementDecl = nullptr;
    events.notationDecl = nullptr;
    if (rules.refusesAllDeclarations) {
        events.elementDecl = refuseDeclaration;
        events.notationDecl = refuseDeclaration;
    }
    events.serror = noteError;
}

Guard::UnnamedErrors::UnnamedErrors(Guard* guard) {
    xmlSetStructuredErrorFunc(guard, [](void* self, xmlError* error) {
        if (error->level >= XML_ERR_ERROR) { // ahead of the parser, so on a line that is not known
            static_cast<Guard*>(self)->note(*error, 0);
        }
    });
}

DocumentPtr Guard::read() {
    DocumentPtr document(xmlCtxtReadIO(parser_.get(), onRead, nullptr, this, nullptr, nullptr,
                                       XML_PARSE_NONET | XML_PARSE_COMPACT));
    if (error_.text == OUT_OF_MEMORY) {
        throw std::bad_alloc();
    }
    return error_.text.empty() ? std::move(document) : nullptr;
}

std::int32_t Guard::line() const {
    return xmlSAX2GetLineNumber(parser_.get());
}

void Guard::refuse(std::string what) {
    error_.set(line(), std::move(what));
    xmlStopParser(parser_.get());
}

std::string Guard::inWords(const Limit& limit) {
    std::string words = limit.refusal;
    const std::size_t place = words.find('%');
    return place != std::string::npos ? words.replace(place, 1, std::to_string(limit.most)) : words;
}

template <class... Arguments>
void Guard::refuseDeclaration(void* context, Arguments...) {
    Guard& guard = of<Guard>(context);
    guard.protect([&guard] { guard.refuse(guard.rules_.declarationRefusal); });
}

// An entity that only an unread definition could declare is a warning to the library, and an error here.
void Guard::noteError(void* context, xmlError* error) {
    if (error->level == XML_ERR_WARNING && error->code != XML_WAR_UNDECLARED_ENTITY) {
        return;
    }
    Guard& guard = of<Guard>(context);
    guard.note(*error, std::max(error->line, 1));
    xmlStopParser(guard.parser());
}

void Guard::note(const xmlError& error, int line) {
    try {
        const std::string_view message = isOfMemory(error) ? OUT_OF_MEMORY : error.message;
        error_.set(line, std::string(message.substr(0, rules_.messageMax)));
    } catch (const std::bad_alloc&) {
        error_.set(0, OUT_OF_MEMORY);
    }
}

int Guard::onRead(void* self, char* buffer, int size) {
    Guard& guard = *static_cast<Guard*>(self);
    try {
        return guard.handOut(buffer, static_cast<std::size_t>(size));
    } catch (const std::bad_alloc&) {
        guard.error_.set(guard.line(), OUT_OF_MEMORY);
        return -1;
    }
}

// The library reads a few kilobytes ahead of what it parses; that much is allowed on top of the limits.
int Guard::handOut(char* buffer, std::size_t size) {
    const auto fail = [this](std::int32_t line, std::string what) {
        error_.set(line, std::move(what));
        return -1;
    };
    if (stop_.stop_requested()) {
        return fail(0, STOPPED);
    }
    if (bytes_ == rules_.document.most) {
        char extra;
        return source_(&extra, 1) == 0 ? 0 : fail(line(), inWords(rules_.document));
    }
    if (sinceEvent_ > rules_.markup.most && (!rules_.limitsTagsOnly || isInTag(*parser_))) {
        return fail(line(), inWords(rules_.markup));
    }
    const int got = source_(buffer, std::min(size, rules_.document.most - bytes_));
    if (got < 0) {
        return fail(line(), "the file cannot be read further");
    }
    bytes_ += static_cast<std::size_t>(got);
    sinceEvent_ += static_cast<std::size_t>(got);
    return got;
}

} // namespace zul::xml
