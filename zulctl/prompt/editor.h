// A line editor on a terminal: keys as in emacs, history, search, completion. The only user of libedit. While
// no line is read, the terminal shows nothing that is typed, so that what is typed ahead appears once, at its
// prompt; where the user switched editing off, the terminal stays as it is. One at a time, one thread.
#pragma once

#include "zulctl/prompt/input.h"

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace zul::ctl::prompt {

// What the word before the cursor may become. Each is a whole word. `typed` is the line up to the cursor.
struct Completions {
    std::vector<std::string> words{};
    bool isEnd = true; // of the word, once it is unique: a blank follows
};
using Complete = std::function<Completions(const std::string& typed)>;

class Editor {
public:
    // `input` reads the terminal on standard input, `screen` is one, too; both and `prompt` must outlive
    // this. Throws std::bad_alloc.
    Editor(Input& input, std::FILE* screen, const char* prompt, Complete complete);
    ~Editor(); // gives the terminal back as it was
    Editor(const Editor&) = delete;
    Editor& operator=(const Editor&) = delete;

    // A line without its line feed. After STOPPED what was typed is gone. Never REDRAW or FAILED.
    Got readLine(std::string& line);
    // Adds to the lines that the arrow keys and the search find.
    void remember(const std::string& line);

private:
    struct Library;
    friend struct Library;
    Got readCharacter(wchar_t& character);
    unsigned char completeWord();
    void list(const std::vector<std::string>& words);

    Input& input_;
    std::FILE* screen_;
    const char* prompt_;
    Complete complete_;
    Got got_ = Got::INPUT; // why the line that is read ends early
    int isEditing_ = 1;    // 0: the user's editrc or the library switched it off
    std::unique_ptr<Library> library_;
};

} // namespace zul::ctl::prompt
