// A machine with three modes that looks at one position after another; words are ended in place.
#include "shell/splitter.h"

#include "product/vocabulary.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

enum class Mode { BETWEEN, IN_WORD, REST_OF_LINE };

bool isPrintable(char c) {
    return c >= 0x21 && c <= 0x7E; // oddity 37: nothing outside ASCII
}

// Inline XML, or an assignment to a member of an entity.
bool startsRestOfLine(std::string_view text) {
    return text.starts_with(zul::product::INLINE_SCHEME) ||
           std::ranges::any_of(zul::product::ENTITY_KINDS, [text](const auto& entity) {
               return text.starts_with(entity.tag) && text.substr(entity.tag.size()).starts_with('.');
           });
}

struct Splitter {
    char** words;
    int& count;
    const char* end; // of the line, found first: the NUL that ends a word does not end the line
    Mode mode = Mode::BETWEEN;
    bool quoted = false;

    void startWord(char* at, Mode next) {
        if (count < ROUTER_SHELL_MAX_WORDS) {
            words[count++] = at;
        }
        mode = next;
    }
    void endWord(char* at) {
        *at = '\0';
        mode = Mode::BETWEEN;
    }

    void step(char* at) {
        // oddity 13: also in the middle of a word
        if (mode != Mode::REST_OF_LINE && count > 0 && startsRestOfLine({at, end})) {
            startWord(at, Mode::REST_OF_LINE);
            return;
        }
        if (mode == Mode::REST_OF_LINE) {
            if (static_cast<unsigned char>(*at) >= 0x80) {
                endWord(at);
            }
            return;
        }
        if (*at == '"' && mode == Mode::BETWEEN && !quoted) {
            quoted = true;
            return;
        }
        if (*at == '"' && mode == Mode::IN_WORD && quoted && !isPrintable(at[1])) {
            quoted = false;
            endWord(at);
            return;
        }
        const bool belongs = isPrintable(*at) || quoted;
        if (mode == Mode::BETWEEN && belongs) {
            startWord(at, Mode::IN_WORD);
        } else if (mode == Mode::IN_WORD && !belongs) {
            endWord(at);
        }
    }
};

} // namespace

void ROUTERShell_createArgv(char* line, char** words, int* wordCount) {
    if (line == nullptr) {
        return;
    }
    *wordCount = 0;
    Splitter splitter{.words = words, .count = *wordCount, .end = line + std::strlen(line)};
    for (char* at = line; at != splitter.end; ++at) {
        splitter.step(at);
    }
}
