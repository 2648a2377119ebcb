// The manual and the completion of the programs against the tables of commands, entities and options.
#include "product/vocabulary.h"
#include "shell/commands.h"
#include "shell/parameter_manager.h"

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>

namespace {

using Words = std::set<std::string>;

std::string source(const std::string& path) {
    std::ifstream file(std::string(std::getenv("ZUL_SOURCE")) + "/packaging/" + path);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <class Visit>
void forEachMatch(const std::string& text, const char* pattern, Visit visit) {
    const std::regex regex(pattern);
    for (auto match = std::sregex_iterator(text.begin(), text.end(), regex); match != std::sregex_iterator();
         ++match) {
        visit(match->str());
    }
}

Words wordsOf(const std::string& text) {
    Words words;
    forEachMatch(text, R"(\w+)", [&words](const std::string& word) { words.insert(word); });
    return words;
}

TEST(Documentation, ShowsEveryCommandWithItsWordsAndNoOther) {
    const std::pair<const char*, const char*> placeholders[] = {
        {"<target_router>", "ROUTER"},
        {"<entity_name>", "ENTITY"},
        {"<cfg_name>", "CONFIGURATION"},
        {"<xml_url>", "URL"},
        {"<parent_entity_name>", "PARENT"},
        {"<domain_route_name>", "DOMAIN_ROUTE"},
        {"<peer_list>", "PEER"},
    };
    std::set<Words> expected;
    Words expectedPlain, keywords; // the names of commands without words; what create may say
    for (const auto& command : zul::shell::COMMANDS) {
        if (command.syntax == nullptr) {
            std::copy_if(command.names.begin(), command.names.end(),
                         std::inserter(expectedPlain, expectedPlain.end()),
                         [](auto name) { return name != nullptr; });
            continue;
        }
        std::string syntax = command.syntax;
        for (const auto& [placeholder, word] : placeholders) {
            syntax = std::regex_replace(syntax, std::regex(placeholder), word);
        }
        expected.insert(wordsOf(command.names[0] + syntax.substr(syntax.find(' '))));
        keywords.merge(wordsOf(syntax));
    }
    const std::string page = source("man/zulrssh.1");
    const std::size_t first = page.find(".SH COMMANDS"), last = page.find(".SS URLs");
    ASSERT_LT(first, last);
    std::set<Words> documented;
    Words plain;
    forEachMatch(page.substr(first, last - first), R"(\.TP\n\.[^\n]*(\n\.TQ\n\.[^\n]*)*)",
                 [&](const std::string& item) {
                     const Words words =
                         wordsOf(std::regex_replace(item, std::regex(R"(\\f.|\.[A-Z]+\s)"), " "));
                     if (words.contains("ROUTER")) {
                         documented.insert(words);
                     } else {
                         std::copy_if(words.begin(), words.end(), std::inserter(plain, plain.end()),
                                      [](const std::string& word) { return word != "SECONDS"; });
                     }
                 });
    EXPECT_EQ(documented, expected);
    EXPECT_EQ(plain, expectedPlain);
    for (const auto& entity : zul::product::ENTITY_KINDS) {
        EXPECT_NE(page.find(" " + std::string(entity.tag) + "."), page.npos) << entity.tag;
        EXPECT_EQ(keywords.contains(std::string(entity.tag)), entity.isKeyword) << entity.tag;
    }
}

TEST(Documentation, ShowsAndCompletesEveryOption) {
    std::string all, withValue;
    const std::string page = source("man/zulrssh.1");
    for (const auto& option : ROUTERShellParameterManager_g_parameterDesc) {
        all += std::string(" -") + option.name;
        withValue += option.type != ROUTER_SHELL_PARAMETER_NONE ? std::string(" -") + option.name : "";
        EXPECT_NE(page.find(std::string("\\-") + option.name), page.npos) << option.name;
    }
    const std::string completion = source("bash-completion/zul-shells");
    EXPECT_NE(completion.find("_zul_shells_options \"$current\"" + all + " ;;"), completion.npos);
    EXPECT_NE(completion.find("for option in" + withValue + ";"), completion.npos);
}

} // namespace
