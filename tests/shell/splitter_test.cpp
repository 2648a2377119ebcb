// Lines and their words: quotes, words that run to the end of the line, and what ends or separates words.
#include "shell/splitter.h"
#include "tests/support/repeated.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

Words split(std::string line) {
    char* words[ROUTER_SHELL_MAX_WORDS];
    int count = -1;
    ROUTERShell_createArgv(line.data(), words, &count);
    return {words, words + count};
}

TEST(Splitter, WordsOfALine) {
    const std::pair<const char*, Words> cases[] = {
        {"", {}},
        {" \t\r\n", {}},
        {"enable r1\n", {"enable", "r1"}},
        {"\x01 a\tb\x7F\x7F"
         "c\x80\xFF"
         "d~!\r\n",
         {"a", "b", "c", "d~!"}}, // separators: all but 0x21 to 0x7E
        // A quote opens between words, and closes a word in front of a separator or the end.
        {"enable r1 \"my route\"\n", {"enable", "r1", "my route"}},
        {"a \"b c\"", {"a", "b c"}},
        {"a \"b c\"d e\" f\n", {"a", "b c\"d e", "f"}},
        {"a \"b\xC3\xA9\tc\" d\n", {"a", "b\xC3\xA9\tc", "d"}},
        {"a \"b c\n", {"a", "b c\n"}},
        {"a \"\" b\n", {"a", "\" b\n"}},
        {"a b\"c d\" e\n", {"a", "b\"c", "d\"", "e"}},
        {"\"a b\" \"c d\"\n", {"a b", "c d"}},
        {"a \"\n", {"a", "\n"}},
        // Words to the end of the line, also from the middle of a word and inside quotes, but not the first.
        {"create r1 domain_route str://\"<a b=\"c\"/>\" d\n",
         {"create", "r1", "domain_route", "str://\"<a b=\"c\"/>\" d\n"}},
        {"get r1 myroute.x\n", {"get", "r1", "myroute.x\n", "route.x\n"}},
        {"get mysession.x y", {"get", "mysession.x y", "session.x y"}},
        {"get my_auto_topic_route.x\n", {"get", "my_auto_topic_route.x\n", "auto_topic_route.x\n"}},
        {"get \"str://a b\" c\n", {"get", "str://a b\" c\n"}},
        {"get \"a b str://c\" d\n", {"get", "a b str://c\" d\n", "str://c\" d\n"}},
        {"session.x str:/ Route. a\n", {"session.x", "str:/", "Route.", "a"}},
        {"mysession.x a\n", {"mysession.x a\n", "session.x a\n"}},
        // A byte from 0x80 on ends such a word; a quote that was open before stays open.
        {"get str://a b\x80"
         "c str://d\xFF\n",
         {"get", "str://a b", "c", "str://d"}},
        {"get \"a str://b\xC3\xA9 c\" d\n", {"get", "a str://b", "str://b", "\xA9 c", "d"}},
    };
    for (const auto& [line, expected] : cases) {
        EXPECT_EQ(split(line), expected) << line;
    }
    for (const char* beginning : {"str://", "topic_route.", "auto_topic_route.", "route.", "auto_route.",
                                  "domain_route.", "polling_session.", "session."}) {
        const std::string rest = std::string(beginning) + "a = \"b\" \t!\n";
        EXPECT_EQ(split("get " + rest), (Words{"get", rest}));
    }
}

TEST(Splitter, LeavesOutWordsBeyondItsRoom) {
    const Words words = split(repeated("# ", std::size_t{2} * ROUTER_SHELL_MAX_WORDS) + "str://x");
    EXPECT_EQ(words.size(), std::size_t{ROUTER_SHELL_MAX_WORDS});
    EXPECT_EQ(words.back(), "255");
    int count = 7;
    ROUTERShell_createArgv(nullptr, nullptr, &count);
    EXPECT_EQ(count, 7);
}

} // namespace
