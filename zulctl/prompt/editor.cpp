// The library asks for its characters here, one at a time, which is where signals come in. Its own handling
// of signals stays off: it sends them on to the whole process group.
#include "zulctl/prompt/editor.h"

#include "zulctl/prompt/terminal.h"
#include "zulctl/prompt/words.h"

#include <algorithm>
#include <cstring>
#include <cuchar>
#include <histedit.h>
#include <langinfo.h>
#include <locale.h>
#include <new>
#include <sys/ioctl.h>
#include <unistd.h>

namespace zul::ctl::prompt {

namespace {

constexpr std::size_t MAX_LISTED = 200; // words
constexpr std::size_t USUAL_WIDTH = 80;
constexpr wchar_t REPLACEMENT = L'\xFFFD'; // of bytes that are no character

// clang-format off
constexpr const char* BINDINGS[][2] = {
    {"^I",       "complete-word"},
    {"^R",       "em-inc-search-prev"},
    {"^W",       "ed-delete-prev-word"},
    {"\\e[3~",   "ed-delete-next-char"},
    {"\\e[1~",   "ed-move-to-beg"},
    {"\\e[4~",   "ed-move-to-end"},
    {"\\e[7~",   "ed-move-to-beg"},
    {"\\e[8~",   "ed-move-to-end"},
    {"\\e[H",    "ed-move-to-beg"},
    {"\\e[F",    "ed-move-to-end"},
    {"\\eOH",    "ed-move-to-beg"},
    {"\\eOF",    "ed-move-to-end"},
    {"\\e[1;5C", "em-next-word"},
    {"\\e[1;5D", "ed-prev-word"},
};
// clang-format on

void freeLocale(locale_t locale) {
    if (locale != nullptr) {
        freelocale(locale);
    }
}

// Characters are decoded as the user's locale says; where it knows ASCII only, as UTF-8. Null: as in C.
locale_t chooseCharacters() {
    locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale == nullptr || std::strcmp(nl_langinfo_l(CODESET, locale), "ANSI_X3.4-1968") == 0) {
        freeLocale(locale);
        locale = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    }
    return locale;
}

std::size_t commonLength(const std::vector<std::string>& words) {
    std::size_t length = words.front().size();
    for (const std::string& word : words) {
        const auto end = std::ranges::mismatch(words.front(), word).in1;
        length = std::min(length, static_cast<std::size_t>(end - words.front().begin()));
    }
    // Not in the middle of a character.
    while (length < words.front().size() && length > 0 &&
           (static_cast<unsigned char>(words.front()[length]) & 0xC0) == 0x80) {
        --length;
    }
    return length;
}

} // namespace

struct Editor::Library {
    EditLine* editor = nullptr;
    History* history = history_init();
    std::mbstate_t decoding{};
    locale_t locale = chooseCharacters(); // of this thread; others of the program keep theirs
    locale_t localeBefore = uselocale(locale);

    Library() = default;
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        if (editor != nullptr) {
            leaveAnothersTerminal();
            el_end(editor);
        }
        if (history != nullptr) {
            history_end(history);
        }
        uselocale(localeBefore);
        freeLocale(locale);
    }
    // After this the library does not set it until the next line.
    void leaveAnothersTerminal() const {
        if (!isTerminalOurs()) {
            el_set(editor, EL_EDITMODE, 0);
        }
    }

    static Editor& of(EditLine* line) {
        void* self = nullptr;
        el_get(line, EL_CLIENTDATA, &self);
        return *static_cast<Editor*>(self);
    }
    static char* prompt(EditLine* line) { return const_cast<char*>(of(line).prompt_); }
    static int read(EditLine* line, wchar_t* character) {
        return of(line).readCharacter(*character) == Got::INPUT ? 1 : 0;
    }
    static unsigned char complete(EditLine* line, int /*key*/) {
        try {
            return of(line).completeWord();
        } catch (...) { // memory; nothing may be thrown through the library
            return CC_ERROR;
        }
    }
};

Editor::Editor(Input& input, std::FILE* screen, const char* prompt, Complete complete)
    : input_(input),
      screen_(screen),
      prompt_(prompt),
      complete_(std::move(complete)),
      library_(std::make_unique<Library>()) {
    EditLine* line = library_->editor = el_init("zulctl", stdin, screen, stderr);
    if (line == nullptr || library_->history == nullptr) {
        throw std::bad_alloc();
    }
    HistEvent event;
    history(library_->history, &event, H_SETSIZE, 1000);
    history(library_->history, &event, H_SETUNIQUE, 1);
    el_set(line, EL_CLIENTDATA, this);
    el_set(line, EL_GETCFN, Library::read);
    el_set(line, EL_PROMPT, Library::prompt);
    el_set(line, EL_SIGNAL, 0);
    el_set(line, EL_HIST, history, library_->history);
    el_set(line, EL_EDITOR, "emacs");
    el_wset(line, EL_ADDFN, L"complete-word", L"Complete the word", Library::complete); // el_set leaks
    for (const auto& [key, function] : BINDINGS) {
        el_set(line, EL_BIND, key, function, nullptr);
    }
    el_source(line, nullptr); // the user's own
    el_get(line, EL_EDITMODE, &isEditing_);
    if (isEditing_ != 0) {
        el_set(line, EL_SETTY, "-x", "-echo", "-icanon", nullptr);
    }
}

Editor::~Editor() = default;

Got Editor::readCharacter(wchar_t& character) {
    for (;;) {
        char byte = 0;
        got_ = input_.readByte(byte);
        if (got_ == Got::REDRAW && !isTerminalOurs()) {
            continue; // in the foreground it is told to again
        }
        if (got_ == Got::REDRAW) {
            el_resize(library_->editor);
            el_set(library_->editor, EL_PREP_TERM, 0);
            el_set(library_->editor, EL_PREP_TERM, 1);
            std::fputs("\r", screen_); // over what is shown
            el_set(library_->editor, EL_REFRESH);
            continue;
        }
        if (got_ != Got::INPUT) {
            library_->leaveAnothersTerminal();
            return got_;
        }
        char32_t code = 0;
        const std::size_t length = std::mbrtoc32(&code, &byte, 1, &library_->decoding);
        character = static_cast<wchar_t>(code);
        if (length == static_cast<std::size_t>(-1)) { // not left out, or a name would become another
            library_->decoding = {};
            character = REPLACEMENT;
            return got_;
        }
        if (length != static_cast<std::size_t>(-2)) {
            return got_;
        }
    }
}

Got Editor::readLine(std::string& line) {
    got_ = Got::INPUT;
    el_set(library_->editor, EL_EDITMODE, isEditing_);
    el_resize(library_->editor);
    int length = 0;
    const char* text = el_gets(library_->editor, &length);
    if (text == nullptr || length <= 0 || got_ == Got::STOPPED || got_ == Got::FAILED) {
        std::fputs("\n", screen_); // what was typed stays where it is
        std::fflush(screen_);
        // The library gives up by itself when it cannot set the terminal.
        return input_.isHungUp() || (got_ == Got::END && isEditing_ != 0) ? Got::HANG_UP
               : got_ == Got::INPUT                                       ? Got::END
                                                                          : got_;
    }
    line.assign(text, static_cast<std::size_t>(length));
    if (line.ends_with('\n')) {
        line.pop_back();
    }
    return Got::INPUT;
}

void Editor::remember(const std::string& line) {
    HistEvent event;
    history(library_->history, &event, H_ENTER, line.c_str());
}

// A pasted tab is a blank.
unsigned char Editor::completeWord() {
    if (input_.isPending()) {
        return el_insertstr(library_->editor, " ") == 0 ? CC_REFRESH : CC_ERROR;
    }
    const LineInfo* info = el_line(library_->editor);
    const std::string typed(info->buffer, info->cursor);
    const Line line = split(typed);
    if (!line.isWhole() && line.end == Line::End::AFTER_BACKSLASH) {
        return CC_ERROR;
    }
    const std::string word =
        line.end == Line::End::BETWEEN_WORDS || line.words.empty() ? "" : line.words.back();
    const Completions found = complete_(typed);
    if (found.words.empty()) {
        return CC_ERROR;
    }
    const std::size_t common = commonLength(found.words);
    std::string more = common > word.size()
                           ? escaped(found.words.front().substr(word.size(), common - word.size()), line.end)
                           : "";
    if (found.words.size() == 1 && found.isEnd) {
        more += line.end == Line::End::IN_SINGLE_QUOTES   ? "' "
                : line.end == Line::End::IN_DOUBLE_QUOTES ? "\" "
                                                          : " ";
    }
    if (!more.empty()) {
        return el_insertstr(library_->editor, more.c_str()) == 0 ? CC_REFRESH : CC_ERROR;
    }
    if (found.words.size() > 1) {
        list(found.words);
        return CC_REDISPLAY;
    }
    return CC_ERROR;
}

void Editor::list(const std::vector<std::string>& words) {
    winsize size{};
    const std::size_t width =
        ioctl(fileno(screen_), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : USUAL_WIDTH;
    const std::size_t shown = std::min(words.size(), MAX_LISTED);
    std::size_t widest = 0;
    for (std::size_t i = 0; i < shown; ++i) {
        widest = std::max(widest, words[i].size() + 2);
    }
    const std::size_t columns = std::max<std::size_t>(width / widest, 1);
    const std::size_t rows = (shown + columns - 1) / columns;
    std::string text = "\n";
    for (std::size_t row = 0; row < rows; ++row) {
        for (std::size_t i = row; i < shown; i += rows) {
            text += words[i];
            if (i + rows < shown) {
                text.append(widest - words[i].size(), ' ');
            }
        }
        text += '\n';
    }
    if (shown < words.size()) {
        text += "... and " + std::to_string(words.size() - shown) + " more\n";
    }
    std::fputs(text.c_str(), screen_);
    std::fflush(screen_);
}

} // namespace zul::ctl::prompt
