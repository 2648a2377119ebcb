// A row is flushed at once, so that a pipe sees it as it comes.
#include "zulctl/output.h"

#include "middleware/base/terminal_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace zul::ctl {

namespace {

const char* wordsOf(fleet::Status status) {
    static constexpr const char* WORDS[] = {"", "error: ", "no such entity: ", "no answer: ", ""};
    return WORDS[static_cast<std::size_t>(status)];
}

} // namespace

std::string oneLine(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        ZULTerminalEscape escape{};
        for (const char character : ZULTerminal_takePiece(text, escape)) {
            line += character == '\n' ? "\\x0a" : character == '\t' ? "\\x09" : std::string(1, character);
        }
    }
    return line;
}

void Output::write(std::string_view text) {
    if (failure_ == 0) {
        progress_.clear();
        ZULTerminal_print(stdout, text);
    }
}

void Output::writeLine(std::string_view text) {
    write(text);
    if (!text.ends_with('\n')) {
        write("\n");
    }
    if (failure_ == 0 && (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)) {
        failure_ = errno;
        if (hasFailed()) {
            std::fprintf(stderr, "zulctl: cannot write the results: %s\n",
                         std::generic_category().message(failure_).c_str());
        }
    }
}

void Output::resume() {
    if (failure_ == EINTR) {
        failure_ = 0;
        std::clearerr(stdout);
        write("\n"); // the last line may be cut off
    }
}

bool Output::hasFailed() const {
    return failure_ != 0 && failure_ != EPIPE && failure_ != EINTR;
}

void Output::print(const fleet::Result& result, bool isPart) {
    if (!isJson_) {
        const std::string command = isPart ? nameOf(result.command) + ": " : "";
        writeLine(oneLine(result.router) + ": " + command + wordsOf(result.status) +
                  (result.message.empty() ? "done" : result.message));
        return;
    }
    writeLine(jsonRow(result));
}

void Output::printText(const fleet::Result& result, bool isOneOfSeveral) {
    if (isJson_) {
        print(result);
    } else if (result.status != fleet::Status::OK) {
        progress_.clear();
        std::fprintf(stderr, "zulctl: %s: ", oneLine(result.router).c_str());
        ZULTerminal_print(stderr, wordsOf(result.status) + result.message + "\n");
    } else {
        if (isOneOfSeveral) {
            writeLine("== " + oneLine(result.router) + " ==");
        }
        writeLine(result.message);
    }
}

void Output::print(const std::vector<fleet::RouterRow>& rows, bool isFirst) {
    if (isJson_) {
        for (const fleet::RouterRow& row : rows) {
            writeLine(jsonRow(row));
        }
        return;
    }
    constexpr std::size_t COLUMNS = 7;
    using Line = std::array<std::string, COLUMNS>;
    std::vector<Line> lines{{"NAME", "DOMAIN", "PRODUCT", "HOST", "GUID PREFIX", "ANSWERS", "PARTICIPANT"}};
    for (const fleet::RouterRow& row : rows) {
        lines.push_back({row.name.empty() ? "-" : oneLine(row.name), std::to_string(row.domain),
                         fleet::nameOf(row.product), row.host.empty() ? "-" : oneLine(row.host), row.guid,
                         std::string(row.answers ? "yes" : "no") + (row.isDuplicate ? " DUPLICATE" : ""),
                         oneLine(row.participant)});
    }
    Line widest;
    for (std::size_t column = 0; column + 1 < COLUMNS; ++column) {
        const auto line =
            std::ranges::max_element(lines, {}, [column](const Line& each) { return each[column].size(); });
        widest[column].resize((*line)[column].size() + 2, ' ');
    }
    if (!isFirst) {
        lines.erase(lines.begin()); // the titles are there
    }
    for (const Line& line : lines) {
        std::string text;
        for (std::size_t column = 0; column < COLUMNS; ++column) {
            text += line[column];
            text.append(widest[column], 0,
                        widest[column].size() - std::min(widest[column].size(), line[column].size()));
        }
        writeLine(text);
    }
}

void Output::print(const std::string& router, const fleet::Cause& cause) {
    if (isJson_) {
        writeLine(jsonRow(router, cause));
        return;
    }
    writeLine(oneLine(router) + ": " + fleet::nameOf(cause.kind) + ": " + oneLine(cause.text));
    for (const std::string& fact : cause.evidence) {
        writeLine("  " + oneLine(fact));
    }
}

void Output::print(const std::string& file, const plan::Finding& finding) {
    const int line = std::max(finding.line, 1); // a whole document begins there
    writeLine(isJson_ ? jsonRow(file, line, finding)
                      : oneLine(file) + ":" + std::to_string(line) + ": " + oneLine(finding.message));
}

} // namespace zul::ctl
