// Pieces of long texts: put together in order, dropped when anything comes between them, never mixed up.
#include "practice_router/actions/xml_url.h"
#include "tests/practice_router/kinds.h"

#include <gtest/gtest.h>

namespace {

using namespace zul::plan;
using namespace zul::practice;

Request piece(std::int32_t app, std::int32_t invocation, Kind kind, const std::string& text, bool isFinal) {
    return {.id = {7, app, invocation},
            .target = "r1",
            .kind = kind,
            .entity = "E",
            .isFinal = isFinal,
            .content = text,
            .peers = {},
            .writer = {1}};
}

TEST(Upload, OfPiecesThatDoNotBelongTogether) {
    const std::pair<Request, const char*> steps[] = {
        // a piece or another request, and the text that it finishes; null: nothing yet
        {piece(1, 1, LOAD, "whole", true), "whole"},
        {piece(1, 2, LOAD, "a", false), nullptr},
        {piece(2, 2, LOAD, "x", false), nullptr}, // another client with the same invocation
        {piece(1, 2, LOAD, "b", true), "ab"},
        {piece(2, 2, LOAD, "y", true), "xy"},
        {piece(1, 3, LOAD, "lost", false), nullptr},
        {piece(1, 4, LOAD, "c", false), nullptr}, // other id: begins anew
        {piece(1, 4, UPDATE, "d", true), "d"},    // other kind: begins anew
        {piece(1, 4, LOAD, "e", true), "e"},      // and has dropped the load
        {piece(1, 5, LOAD, "lost", false), nullptr},
        {piece(1, 6, GET, "", true), nullptr},     // another request of that client
        {piece(1, 5, LOAD, "tail", true), "tail"}, // without its beginning
        {piece(1, 7, LOAD, "f", false), nullptr},
        {piece(2, 3, GET, "", true), nullptr}, // a request of another client disturbs nobody
        {piece(1, 7, LOAD, "g", true), "fg"},
    };
    Uploads uploads;
    Request foreign = piece(1, 2, LOAD, "z", false); // a client of the same host and app
    foreign.writer[15] = 9;
    uploads.add(foreign);
    for (const auto& [request, finished] : steps) {
        if (request.kind == GET) {
            uploads.interrupt(request);
            continue;
        }
        const auto upload = uploads.add(request);
        ASSERT_EQ(upload.has_value(), finished != nullptr) << request.content;
        if (upload) {
            EXPECT_EQ(upload->text, finished);
            EXPECT_EQ(upload->entity, "E");
        }
    }
    foreign.isFinal = true;
    EXPECT_EQ(uploads.add(foreign)->text, "zz");
    Request last = piece(1, 8, LOAD, "i", true);
    last.followsLoss = true;
    uploads.add(piece(1, 8, LOAD, "h", false));
    EXPECT_EQ(uploads.add(last)->text, "i") << "a piece between them may be lost";
    EXPECT_EQ(uploads.pending(), 0U);
}

TEST(Upload, WithoutBoundInSizeOrNumber) {
    const std::string block(4096, 'x');
    Uploads uploads;
    std::size_t sent = 0;
    for (; sent <= MAX_UPLOAD_SIZE; sent += block.size()) {
        ASSERT_FALSE(uploads.add(piece(1, 1, LOAD, block, false)));
    }
    EXPECT_EQ(uploads.find(piece(1, 1, LOAD, {}, false))->text, "");
    const auto tooLarge = uploads.add(piece(1, 1, LOAD, "end", true));
    ASSERT_TRUE(tooLarge);
    EXPECT_TRUE(tooLarge->isTooLarge);
    EXPECT_EQ(tooLarge->bytes, sent + 3);

    for (std::int32_t app = 0; app <= static_cast<std::int32_t>(MAX_PENDING_UPLOADS); ++app) {
        uploads.add(piece(app, 1, LOAD, "head ", false));
    }
    EXPECT_EQ(uploads.pending(), MAX_PENDING_UPLOADS);
    EXPECT_EQ(uploads.add(piece(0, 1, LOAD, "tail", true))->text, "tail")
        << "the one that rested longest is dropped";
    EXPECT_EQ(uploads.add(piece(1, 1, LOAD, "tail", true))->text, "head tail");

    Uploads counting(true);
    counting.add(piece(1, 2, LOAD, block, false));
    const auto counted = counting.add(piece(1, 2, LOAD, "end", true));
    EXPECT_EQ(counted->bytes, block.size() + 3);
    EXPECT_EQ(counted->pieces, 2U);
    EXPECT_EQ(counted->text, "");
}

TEST(XmlUrl, ThatIsReadOtherwise) {
    EXPECT_EQ(readXmlUrl("str://\"<a b=\"c\"/>\""), "<a b=\"c\"/>");
    EXPECT_EQ(readXmlUrl("str://<a/>"), "<a/>");
    EXPECT_EQ(readXmlUrl("str:// \"<a/>\" \r\n"), "<a/>");
    EXPECT_EQ(readXmlUrl("str://\"\""), "");
    for (const char* url : {"str://\"<a/>", "str://\"", "<a/>\"", "file:///dev/zero", "file://"}) {
        EXPECT_THROW(readXmlUrl(url), Refusal) << url;
    }
}

} // namespace
