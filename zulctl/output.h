// What goes to standard output: rows for people, or one JSON object a line. A terminal is shown control
// characters, but does not obey them; JSON is valid whatever the bytes.
#pragma once

#include "zulctl/json_rows.h"
#include "zulctl/progress.h"

#include <string>
#include <string_view>
#include <vector>

namespace zul::ctl {

class Output {
public:
    explicit Output(bool isJson) : isJson_(isJson) {}

    bool isJson() const { return isJson_; }

    // `isPart`: one of several commands that make up what the user asked for, so its name is shown.
    void print(const fleet::Result& result, bool isPart = false);
    // A configuration: the text alone, after a line with the router's name where there are several.
    void printText(const fleet::Result& result, bool isOneOfSeveral);
    // `isFirst`: with the titles of the columns.
    void print(const std::vector<fleet::RouterRow>& rows, bool isFirst);
    void print(const std::string& router, const fleet::Cause& cause);
    // Shows how far a command is, until there are results.
    ProgressLine& progress() { return progress_; }
    // A line that is ready to be shown.
    void printLine(std::string_view line) { writeLine(line); }
    void print(const plan::Difference& difference);
    // `purpose` is a word of docs/zulctl.schema.json.
    void print(const std::string& router, const plan::Plan& plan, const char* purpose);
    void print(const ApplyEnd& end);
    void print(const std::string& file, const plan::Finding& finding);
    // For people only.
    void say(const std::string& sentence);
    // An interrupt that ends a write drops what is written after it. From here on it is written again.
    void resume();

    // Standard output could not be written, and standard error has said so. A reader that has just gone is no
    // failure, but nothing more is written to it.
    bool hasFailed() const;

private:
    void write(std::string_view text);
    void writeLine(std::string_view text);

    bool isJson_;
    ProgressLine progress_;
    int failure_ = 0; // errno of the first write that failed
};

// Text on one line of its own: control characters as \xNN, wherever it goes.
std::string oneLine(std::string_view text);
// What a step of a plan sends.
fleet::Command commandOf(const plan::Step& step);

} // namespace zul::ctl
