#include "shell/splitter.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

enum class Mode { BETWEEN, IN_WORD, REST_OF_LINE };

constexpr std::string_view REST_OF_LINE_PREFIXES[] = {"str://",           "topic_route.", "auto_topic_route.",
                                                      "route.",           "auto_route.",  "domain_route.",
                                                      "polling_session.", "session."};

bool isPrintable(char c) {
    return c >= 0x21 && c <= 0x7E; // codes from 0x80 up are no printable characters here
}

bool startsRestOfLine(const char* text) {
    return std::any_of(
        std::begin(REST_OF_LINE_PREFIXES), std::end(REST_OF_LINE_PREFIXES),
        [text](std::string_view prefix) { return std::strncmp(text, prefix.data(), prefix.size()) == 0; });
}

struct Splitter {
    char** words;
    int& count;
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
        // Also tested in the middle of a word: both words then run to the end of the line, and scripts rely
        // on it. The command word itself never is one.
        if (mode != Mode::REST_OF_LINE && count > 0 && startsRestOfLine(at)) {
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
    Splitter splitter{.words = words, .count = *wordCount};
    // The end is found first: a word that is ended does not end the line.
    const char* end = line + std::strlen(line);
    for (char* at = line; at != end; ++at) {
        splitter.step(at);
    }
}
