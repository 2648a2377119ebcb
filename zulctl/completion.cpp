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
    words.erase(std::ranges::unique(words).begin(), words.end());
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
    const CommandRow* command = nullptr;
    std::string option{};             // whose value it is; empty: none
    std::vector<std::string> words{}; // before it, without options and the command
    bool isAll = false;
    std::int32_t domain = 0;
    fleet::Product product{};
};

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

prompt::Completions Completion::complete(const std::string& typed) {
    prompt::Line line = prompt::split(typed);
    if (line.end == prompt::Line::End::IN_COMMENT) {
        return {};
    }
    if (line.end == prompt::Line::End::BETWEEN_WORDS) {
        line.words.emplace_back();
    }
    const std::string word = line.words.back();
    line.words.pop_back();

    Place place{.domain = defaults_.domain, .product = defaults_.settings.product};
    std::vector<Option> options = optionsOf(nullptr);
    bool isHelp = false;
    for (const std::string& each : line.words) {
        if (!place.option.empty()) {
            if (place.option == "-d" || place.option == "--domain") {
                place.domain = std::atoi(each.c_str());
            }
            place.option.clear();
        } else if (each.starts_with('-') && each.size() > 1) {
            const auto option = std::ranges::find(options, each, &Option::name);
            place.option = option != options.end() && !option->value.empty() ? each : "";
            place.isAll = place.isAll || each == "--all";
            place.product = each == "--federation" ? fleet::Product::FEDERATION : place.product;
        } else if (place.command == nullptr) {
            const auto rows = commandRows();
            const auto row =
                std::ranges::find(rows, each, [](const auto& one) { return std::string(one.name); });
            if (each == "help" && !isHelp) {
                isHelp = true;
            } else if (row == rows.end()) {
                return {};
            } else if (isHelp) {
                return {};
            } else {
                place.command = &*row;
                options = optionsOf(place.command);
            }
        } else {
            place.words.push_back(each);
        }
    }
    if (place.option == "--file" || place.option == "-o" || place.option == "--output") {
        const auto files = beginning(filesLike(word), word);
        return {files, files.size() != 1 || !files.front().ends_with('/')};
    }
    if (!place.option.empty()) {
        return {};
    }
    std::vector<std::string> words;
    if (word.starts_with('-')) {
        for (const Option& option : options) {
            if (option.name.starts_with("--")) {
                words.push_back(option.name);
            }
        }
        return {beginning(words, word)};
    }
    if (place.command == nullptr) {
        for (const CommandRow& row : commandRows()) {
            if (row.kind != CommandRow::Kind::SHELL) {
                words.emplace_back(row.name);
            }
        }
        if (!isHelp) {
            words.insert(words.end(), {"help", "exit", "quit"});
        }
        return {beginning(words, word)};
    }
    std::vector<std::string> places = placesOf(*place.command);
    if (place.isAll) {
        place.words.insert(place.words.begin(), "*");
    }
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
    const auto found = beginning(words, word);
    return {found, found.size() != 1 || !found.front().ends_with('/')};
}

} // namespace zul::ctl
