// The guard under the readers of XML from outside. libxml2 pulls its input through it, piece by piece, and
// limits are checked before the library works on what they limit. Nothing is fetched, no definition is read,
// declarations inside a document are refused, and the library prints nothing. The first thing that is wrong
// ends the reading. A reader derives from it and says what it makes of the events. One thread at a time.
#pragma once

#include "middleware/xml/document.h"

#include <libxml/parser.h>

#include <functional>
#include <new>
#include <stop_token>

namespace zul::xml {

// How many of something there may be, and what is said when there are more, with "%" in place of the number.
struct Limit {
    std::size_t most;
    const char* refusal;
};

// What a reader accepts, and what it says of the rest.
struct Rules {
    Limit document;      // bytes
    Limit markup;        // bytes between two events
    bool limitsTagsOnly; // comments and the like may be longer than `markup`
    const char* declarationRefusal;
    bool refusesAllDeclarations; // those of elements and notations, too
    std::size_t messageMax;      // bytes taken over from a message of the library
};

constexpr const char* STOPPED = "the program ends"; // the error of a reading that was stopped

// Puts at most `size` bytes into `buffer`: how many, 0 at the end, -1 on failure.
using Source = std::function<int(char* buffer, std::size_t size)>;
// The text is borrowed.
Source textSource(std::string_view text);

struct ParserDeleter {
    void operator()(xmlParserCtxt* parser) const { xmlFreeParserCtxt(parser); }
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using DocumentPtr = std::unique_ptr<xmlDoc, ParserDeleter>;

class Guard {
public:
    // `rules` must outlive this. Throws std::bad_alloc, as `read` does.
    Guard(const Rules& rules, Source source, std::stop_token stop = {});
    Guard(const Guard&) = delete;
    Guard& operator=(const Guard&) = delete;

    // Reads the whole source. Null when something is wrong with it: `takeError` says what, or nothing if the
    // library does not tell.
    DocumentPtr read();
    ZULXMLError takeError() { return std::move(error_); }
    std::int32_t line() const; // where the parser is

protected:
    ~Guard() = default;

    // The reader sets its events here; each gets the parser as its context.
    xmlParserCtxt* parser() const { return parser_.get(); }
    template <class Reader>
    static Reader& of(void* context) {
        return static_cast<Reader&>(*static_cast<Guard*>(static_cast<xmlParserCtxt*>(context)->_private));
    }

    // To be called at every event that ends a piece of markup.
    void noteEvent() { sinceEvent_ = 0; }
    // Ends the reading: this is wrong, at the line where the parser is.
    void refuse(std::string what);
    // Whether the count is within the limit; otherwise ends the reading.
    bool keeps(const Limit& limit, std::size_t count) {
        if (count <= limit.most) {
            return true;
        }
        protect([&] { refuse(inWords(limit)); });
        return false;
    }
    // Runs what may throw inside an event: no exception may pass through the library.
    template <class Work>
    void protect(const Work& work) {
        try {
            work();
        } catch (const std::bad_alloc&) {
            refuse(OUT_OF_MEMORY);
        }
    }

private:
    static constexpr const char* OUT_OF_MEMORY = "out of memory"; // so short that it needs no memory
    static std::string inWords(const Limit& limit);
    template <class... Arguments>
    static void refuseDeclaration(void* context, Arguments...);
    static void noteError(void* context, xmlError* error);
    void note(const xmlError& error, int line);
    static int onRead(void* guard, char* buffer, int size);
    int handOut(char* buffer, std::size_t size);

    // What the library reports without naming a parser, such as a broken encoding, it would print; while this
    // lives, the guard takes note of it.
    struct UnnamedErrors {
        explicit UnnamedErrors(Guard* guard);
        ~UnnamedErrors() { xmlSetStructuredErrorFunc(previousContext, previous); }
        UnnamedErrors(const UnnamedErrors&) = delete;
        UnnamedErrors& operator=(const UnnamedErrors&) = delete;
        xmlStructuredErrorFunc previous = xmlStructuredError;
        void* previousContext = xmlStructuredErrorContext;
    };

    const Rules& rules_;
    Source source_;
    std::stop_token stop_;
    ZULXMLError error_;
    UnnamedErrors unnamedErrors_{this};
    std::unique_ptr<xmlParserCtxt, ParserDeleter> parser_;
    std::size_t bytes_ = 0;      // handed out so far
    std::size_t sinceEvent_ = 0; // and since the last event
};

} // namespace zul::xml
