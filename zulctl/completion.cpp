// What may follow is read off the tables: the options of a command, and the words in its syntax. Paths are
// asked of the router, which may take a moment and no more.
#include "zulctl/completion.h"

#include "plan/document/outline.h"
#include "plan/document/text.h"
#include "product/product_info.h"
#include "product/vocabulary.h"
#include "zulctl/commands.h"
#include "zulctl/output.h"
#include "zulctl/prompt/words.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace zul::ctl {

namespace {

constexpr auto PATIENCE = std::chrono::milliseconds(800); // with a router that is asked for its paths
constexpr auto FRESH = std::chrono::seconds(5);           // how long they are not asked for again

// Those that begin with `word`, each once. What could not be typed as it is shown is left out.
std::vector<std::string> beginning(std::vector<std::string> words, const std::string& word) {
    std::erase_if(words, [&word](const std::string& each) {
        return !each.starts_with(word) || oneLine(each) != each || each.empty();
    });
    std::ranges::sort(words);
    words.erase(std::unique(words.begin(), words.end()), words.end());
    return words;
}

std::vector<std::string> filesLike(const std::string& word) {
    const std::size_t slash = word.rfind('/');
    const std::string folder = slash == std::string::npos ? "" : word.substr(0, slash + 1);
    std::vector<std::string> files;
    std::error_code error;
    const bool showsHidden = word.substr(folder.size()).starts_with('.');
    for (std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, error), end;
         !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code none;
        if (showsHidden || !name.starts_with('.')) {
            files.push_back(folder + name + (entry->is_directory(none) ? "/" : ""));
        }
    }
    return files;
}

// The words of a command's syntax, without brackets.
std::vector<std::string> placesOf(const CommandRow& row) {
    std::vector<std::string> places = prompt::split(row.words).words;
    for (std::string& place : places) {
        std::erase_if(place, [](char c) { return c == '[' || c == ']'; });
    }
    return places;
}

} // namespace

// Where in a line a word is.
struct Completion::Place {
    bool isNowhere = false;   // nothing is known to follow
    bool isHelp = false;      // of the command that is wanted
    bool takesOptions = true; // until "--"
    const CommandRow* command = nullptr;
    std::vector<Option> options = optionsOf(nullptr); // that may follow
    std::string option{};                             // whose value it is; empty: none
    std::vector<std::string> words{};                 // before it, without options and the command
    std::int32_t domain = 0;
    fleet::Product product{};

    void pass(const std::string& word);
    std::size_t passOption(const std::string& word);
};

// Returns where in the word its value begins; 0: nowhere.
std::size_t Completion::Place::passOption(const std::string& word) {
    const std::size_t equals = word.starts_with("--") ? word.find('=') : std::string::npos;
    const std::string name = word.substr(0, equals);
    const auto known = std::ranges::find(options, name, &Option::name);
    option = known != options.end() && !known->value.empty() ? name : "";
    if (name == "--all") { // in place of ROUTERS
        words.insert(words.begin(), "*");
    } else if (name == "--federation") {
        product = fleet::Product::FEDERATION;
    }
    return equals != std::string::npos && !option.empty() ? equals + 1 : 0;
}

// A word before the one that is completed.
void Completion::Place::pass(const std::string& word) {
    if (takesOptions && word == "--") {
        takesOptions = false;
    } else if (!option.empty()) {
        if (option == "-d" || option == "--domain") {
            domain = std::atoi(word.c_str());
        }
        option.clear();
    } else if (takesOptions && word.starts_with('-') && word.size() > 1) {
        if (const std::size_t value = passOption(word); value > 0) {
            pass(word.substr(value));
        }
    } else if (command != nullptr) {
        words.push_back(word);
    } else if (word == "help") {
        isHelp = true;
    } else {
        const auto rows = commandRows();
        const auto row =
            std::ranges::find(rows, word, [](const auto& each) { return std::string(each.name); });
        isNowhere = isNowhere || isHelp || row == rows.end();
        if (!isNowhere) {
            command = &*row;
            options = optionsOf(command);
        }
    }
}

std::vector<std::string> Completion::routers(const Place& place) const {
    fleet::Domain* domain = session_.known(place.domain);
    if (domain == nullptr) {
        return {};
    }
    fleet::Settings settings = defaults_.settings;
    settings.product = place.product;
    settings.discovery = {};
    return fleet::Fleet(*domain, session_.wakeup(), settings).find({"*"});
}

const std::vector<std::string>& Completion::paths(const Place& place) {
    const auto first =
        place.words.empty() ? "" : place.words.front().substr(0, place.words.front().find(','));
    Paths& known = paths_[std::to_string(place.domain) + fleet::nameOf(place.product) + first];
    fleet::Domain* domain = session_.known(place.domain);
    const fleet::Command get{.kind = ZUL_ROUTING_SERVICE_COMMAND_GET};
    const auto now = fleet::Clock::now();
    const bool isFresh = known.at != fleet::Clock::time_point{} && now - known.at < FRESH;
    if (domain == nullptr || isFresh || fleet::isPattern(first) || fleet::refusal(get, first) != nullptr) {
        return known.paths;
    }
    const fleet::Settings settings{
        .product = place.product, .timeout = PATIENCE, .discovery = {}, .longest = PATIENCE};
    ROUTER_setProductId(static_cast<std::int32_t>(place.product));
    known.at = now;
    fleet::Fleet(*domain, session_.wakeup(), settings)
        .ask({first}, get, [&known](const fleet::Result& result) {
            if (result.status != fleet::Status::OK) {
                return;
            }
            try {
                known.paths.clear();
                for (plan::OutlineEntry& entry : plan::outline(result.message)) {
                    known.paths.push_back(std::move(entry.path));
                }
            } catch (const plan::Refusal&) { // there are none
            }
        });
    return known.paths;
}

// What the word there may be, by the syntax of the command.
std::vector<std::string> Completion::candidates(const Place& place, const std::string& word) {
    std::vector<std::string> words;
    const std::vector<std::string> places = placesOf(*place.command);
    const bool repeats = !places.empty() && places.back().ends_with("...");
    if (place.words.size() >= places.size() && !repeats) {
        return {};
    }
    const std::string& wanted = places[std::min(place.words.size(), places.size() - 1)];
    if (wanted == "ROUTERS" || wanted == "ROUTER") {
        const std::size_t comma = wanted == "ROUTERS" ? word.rfind(',') : std::string::npos;
        const std::string before = comma == std::string::npos ? "" : word.substr(0, comma + 1);
        for (const std::string& name : routers(place)) {
            words.push_back(before + name);
        }
    } else if (wanted == "ENTITY" || wanted == "PARENT" || wanted == "ROUTE") {
        words = paths(place);
    } else if (wanted == "KIND") {
        for (const product::EntityKind& kind : product::ENTITY_KINDS) {
            if (kind.isKeyword) {
                words.emplace_back(kind.tag);
            }
        }
    } else if (wanted == "p1|p2") {
        words = {"p1", "p2"};
    } else if (wanted.starts_with("FILE") || wanted == "BACKUP") {
        words = filesLike(word);
    }
    return words;
}

prompt::Completions Completion::complete(const std::string& typed) {
    prompt::Line line = prompt::split(typed);
    if (line.end == prompt::Line::End::BETWEEN_WORDS) {
        line.words.emplace_back();
    }
    if (line.end == prompt::Line::End::IN_COMMENT || line.words.empty()) {
        return {};
    }
    const std::string word = line.words.back();
    line.words.pop_back();
    Place place{.domain = defaults_.domain, .product = defaults_.settings.product};
    for (const std::string& each : line.words) {
        place.pass(each);
    }
    std::vector<std::string> words;
    if (place.isNowhere) {
        return {};
    }
    const bool isOption = place.option.empty() && place.takesOptions && word.starts_with('-');
    const std::size_t value = isOption && word.find('=') != std::string::npos ? place.passOption(word) : 0;
    if (!place.option.empty()) {
        if (place.option == "--file" || place.option == "-o" || place.option == "--output" ||
            place.option == "--backup") {
            words = filesLike(word.substr(value));
        }
        for (std::string& each : words) {
            each.insert(0, word, 0, value);
        }
    } else if (isOption) {
        for (const Option& option : place.options) {
            if (option.name.starts_with("--")) {
                words.push_back(option.name);
            }
        }
    } else if (place.command != nullptr) {
        words = candidates(place, word);
    } else {
        for (const CommandRow& row : commandRows()) {
            if (row.kind != CommandRow::Kind::SHELL) {
                words.emplace_back(row.name);
            }
        }
        if (!place.isHelp) {
            words.insert(words.end(), {"help", "exit", "quit"});
        }
    }
    words = beginning(std::move(words), word);
    const bool isFolder = words.size() == 1 && words.front().ends_with('/');
    return {std::move(words), !isFolder};
}

} // namespace zul::ctl
