// What goes out: parts that fit and keep characters whole, and garbage that no client can take for an answer.
#include "practice_router/actions/answer.h"
#include "practice_router/endpoints/garbage.h"
#include "tests/admin_types/samples.h"

#include <gtest/gtest.h>

namespace {

using namespace zul::practice;

TEST(AnswerParts, ThatAreNotTheTextOrCutACharacter) {
    std::string mixed; // characters of one to four bytes
    while (mixed.size() < 3 * 4096) {
        mixed += "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x9A\x80";
    }
    const std::tuple<std::string, std::size_t, std::size_t> rows[] = {
        {"", 3, 3},
        {"abc", 10, 10},
        {std::string(4096, 'x'), 1, 1},
        {std::string(4095, 'x') + "\xC3\xA9", 1, 2},
        {mixed, 1, 4},
        {mixed, 100, 100},
        {std::string(5000, '\x80'), 1, 2}, // no UTF-8: any cut will do
    };
    for (const auto& [text, atLeast, expected] : rows) {
        const auto parts = answerParts(text, atLeast);
        EXPECT_EQ(parts.size(), expected) << text.substr(0, 10);
        std::string joined;
        for (const std::string_view part : parts) {
            EXPECT_LE(part.size(), admin::XML_CONTENT_BOUND);
            const bool cutsCharacter = !part.empty() && (static_cast<unsigned char>(part[0]) & 0xC0) == 0x80;
            EXPECT_EQ(cutsCharacter, text[0] == '\x80');
            joined += part;
        }
        EXPECT_EQ(joined, text);
    }
}

TEST(Garbage, ThatIsAnAnswerOrNotAlwaysTheSame) {
    const RequestId id{0x01020304, 5, 6};
    const auto sample = newSample<Response>();
    Garbage garbage;
    Garbage again;
    int refused = 0;
    constexpr int COUNT = 10000;
    for (int i = 0; i < COUNT; ++i) {
        const auto bytes = garbage.next(id);
        ASSERT_FALSE(bytes.empty());
        ASSERT_EQ(again.next(id), bytes);
        if (!decode(*sample, bytes).accepted) {
            ++refused;
        } else {
            EXPECT_NE(sample->id.host, id.host) << "sample " << i;
        }
    }
    EXPECT_GT(refused, COUNT * 9 / 10);
}

} // namespace
