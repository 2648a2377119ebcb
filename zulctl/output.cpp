// A row is flushed at once, so that a pipe sees it as it comes. Bytes that are
// no UTF-8 become U+FFFD in JSON.
#include "zulctl/output.h"

#include "middleware/base/terminal_text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <system_error>

namespace zul::ctl {

namespace {

using Json = nlohmann::ordered_json;

std::string dump(const Json& json) {
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

const char* nameOf(fleet::Status status) {
    static constexpr const char* NAMES[] = {"ok", "error", "not_found", "no_answer", "interrupted"};
    return NAMES[static_cast<std::size_t>(status)];
}
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

std::string nameOf(fleet::CommandKind kind) {
    std::string name = admin::findCommand(kind)->name;
    std::ranges::transform(name, name.begin(), [](char c) {
        return c == '_' ? '-' : static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    });
    return name;
}

void Output::write(std::string_view text) {
    if (failure_ == 0) {
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
    writeLine(dump({{"router", result.router},
                    {"command", nameOf(result.command)},
                    {"entity", result.entity},
                    {"status", nameOf(result.status)},
                    {"message", result.message},
                    {"parts", result.parts},
                    {"ms", result.took.count()},
                    {"guid", result.guid}}));
}

void Output::printText(const fleet::Result& result, bool isOneOfSeveral) {
    if (isJson_) {
        print(result);
    } else if (result.status != fleet::Status::OK) {
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
            writeLine(dump({{"router", row.name},
                            {"domain", row.domain},
                            {"product", fleet::nameOf(row.product)},
                            {"participant", row.participant},
                            {"host", row.host},
                            {"guid", row.guid},
                            {"answers", row.answers},
                            {"duplicate", row.isDuplicate}}));
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
        writeLine(dump({{"router", router},
                        {"cause", fleet::nameOf(cause.kind)},
                        {"text", cause.text},
                        {"evidence", cause.evidence}}));
        return;
    }
    writeLine(oneLine(router) + ": " + fleet::nameOf(cause.kind) + ": " + oneLine(cause.text));
    for (const std::string& fact : cause.evidence) {
        writeLine("  " + oneLine(fact));
    }
}

void Output::print(const std::string& file, const plan::Finding& finding) {
    const int line = std::max(finding.line, 1); // a whole document begins there
    writeLine(isJson_ ? dump({{"file", file}, {"line", line}, {"message", finding.message}})
                      : oneLine(file) + ":" + std::to_string(line) + ": " + oneLine(finding.message));
}

} // namespace zul::ctl
