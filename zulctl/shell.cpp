// The loop: a line, its words, the command, and only then the next line, so that results stand beside their
// commands however fast lines come.
#include "zulctl/shell.h"

#include "product/product_info.h"
#include "zulctl/commands.h"
#include "zulctl/completion.h"
#include "zulctl/output.h"
#include "zulctl/prompt/history_file.h"
#include "zulctl/prompt/words.h"
#include "zulctl/signals.h"

#include <cerrno>
#include <cstdio>
#include <exception>
#include <system_error>
#include <unistd.h>

namespace zul::ctl {

using prompt::Got;

namespace {

constexpr const char* PROMPT = "zulctl> ";
constexpr const char* GREETING = "help lists the commands, exit ends.\n";

class Shell {
public:
    Shell(const Arguments& defaults, fleet::Wakeup& wakeup);

    int run();

private:
    Got read(std::string& line);
    void remember(const std::string& line);
    void runLine(const std::string& text);
    void tryLine(const std::string& text);
    void runWords(const std::vector<std::string>& words);
    Got signalled();

    const Arguments& defaults_;
    fleet::Wakeup& wakeup_;
    PromptSignals signals_;
    Session session_;
    Completion completion_;
    prompt::Input input_;
    std::optional<prompt::HistoryFile> history_; // with the editor
    std::unique_ptr<prompt::Editor> editor_;     // null: lines are read as they are
    int status_ = EXIT_DONE;
    bool isOver_ = false;
};

// The results may go elsewhere; what is typed is then shown on standard error.
std::FILE* findScreen() {
    return isatty(STDIN_FILENO) == 0    ? nullptr
           : isatty(STDOUT_FILENO) != 0 ? stdout
           : isatty(STDERR_FILENO) != 0 ? stderr
                                        : nullptr;
}

void complain(const std::string& what) {
    std::fprintf(stderr, "zulctl: %s\n", oneLine(what).c_str());
}

Shell::Shell(const Arguments& defaults, fleet::Wakeup& wakeup)
    : defaults_(defaults),
      wakeup_(wakeup),
      session_(wakeup, true),
      completion_(defaults_, session_),
      input_(STDIN_FILENO, signals_.fd(), [this] { return signalled(); }) {
    session_.domain(defaults_.domain, defaults_.settings.product); // discovery begins
    if (std::FILE* screen = findScreen()) {
        std::string warning;
        history_.emplace(prompt::HistoryFile::ofUser(warning));
        if (!warning.empty()) {
            complain(warning);
        }
        editor_ = std::make_unique<prompt::Editor>(
            input_, screen, PROMPT, [this](const std::string& typed) { return completion_.complete(typed); });
        for (const std::string& line : history_->load()) {
            editor_->remember(line);
        }
        std::fputs(GREETING, screen);
    }
}

Got Shell::signalled() {
    signals_.clear();
    const bool redraws = signals_.takeRedraw();
    return wakeup_.takeInterrupt() || signals_.isEnding() ? Got::STOPPED : redraws ? Got::REDRAW : Got::INPUT;
}

Got Shell::read(std::string& line) {
    if (editor_ == nullptr) {
        return input_.readLine(line);
    }
    signals_.takeRedraw(); // the prompt is about to be drawn
    return editor_->readLine(line);
}

void Shell::remember(const std::string& line) {
    if (editor_ != nullptr && !line.starts_with(' ')) {
        editor_->remember(line);
        history_->append(line);
    }
}

void Shell::runWords(const std::vector<std::string>& words) {
    std::vector<const char*> argv{"zulctl"};
    for (const std::string& word : words) {
        argv.push_back(word.c_str());
    }
    if (words.front() == "help") { // [COMMAND] --help
        argv.erase(argv.begin() + 1);
        argv.push_back("--help");
    }
    std::clearerr(stdout); // an interrupt may have ended a write of the prompt
    const Parsed parsed = parseArguments(static_cast<int>(argv.size()), argv.data(), defaults_);
    status_ = parsed.status;
    if (parsed.arguments) {
        ROUTER_setProductId(static_cast<std::int32_t>(parsed.arguments->settings.product));
        status_ = runCommand(*parsed.arguments, session_);
        completion_.forget();
    }
    std::fflush(stdout);
    isOver_ = std::ferror(stdout) != 0 && !wakeup_.isInterrupted(); // nobody reads on
}

void Shell::runLine(const std::string& text) {
    const prompt::Line line = prompt::split(text);
    if (line.words.empty() && line.isWhole()) {
        return;
    }
    remember(text);
    if (!line.isWhole() || text.find('\0') != std::string::npos) {
        complain(line.isWhole()                                   ? "the line holds a NUL, which no word can"
                 : line.end == prompt::Line::End::AFTER_BACKSLASH ? "the line ends in a backslash"
                                                                  : "a quote is not closed");
        status_ = EXIT_USAGE;
    } else if (line.words.size() == 1 && (line.words.front() == "exit" || line.words.front() == "quit")) {
        isOver_ = true;
    } else {
        runWords(line.words);
    }
}

// A line that memory does not suffice for does not end the shell either.
void Shell::tryLine(const std::string& text) {
    try {
        runLine(text);
    } catch (const std::exception& failure) {
        complain(wordsOf(failure));
        status_ = EXIT_USAGE;
    }
}

int Shell::run() {
    std::string line;
    while (!isOver_) {
        const Got got = read(line);
        if (got == Got::END) {
            return status_;
        }
        if (got == Got::FAILED) {
            complain("cannot read standard input: " + std::generic_category().message(errno));
            return EXIT_USAGE;
        }
        if (got == Got::INPUT) {
            tryLine(line);
        }
        // At a prompt an interrupt ends the line, without one everything.
        const bool isInterrupted = wakeup_.takeInterrupt() || got == Got::STOPPED;
        if (signals_.isEnding() || got == Got::HANG_UP || (isInterrupted && editor_ == nullptr)) {
            return EXIT_INTERRUPTED;
        }
    }
    // Results that could not be written may be the first that is seen of a hang-up, before its signal.
    return editor_ != nullptr && input_.isHungUp() ? EXIT_INTERRUPTED : status_;
}

} // namespace

int runShell(const Arguments& defaults, fleet::Wakeup& wakeup) {
    try {
        return Shell(defaults, wakeup).run();
    } catch (const Failure& failure) {
        complain(failure.message);
        return failure.status;
    }
}

} // namespace zul::ctl
