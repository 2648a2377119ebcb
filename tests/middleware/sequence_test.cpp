// Sequences: what each operation refuses and says, loans, lazy initialisation, exhausted memory.
#include "middleware/idl/sequence.h"
#include "tests/middleware/captured_log.h"

#include <gtest/gtest.h>

namespace {

namespace seq = ZULSequence;
constexpr const char* OP = "op"; // the context of every call

using Seq = DDS_Sequence<DDS_Long>;
Seq* const NO_SEQUENCE = nullptr;

DDS_Long g_numbers[3] = {10, 20, 30};
DDS_Long* g_references[2] = {&g_numbers[2], &g_numbers[0]};

// clang-format off
TEST(Sequence, ARefusalThatChangesSomethingOrDoesNotSayWhy) {
    enum State { FRESH, OWNED, LOANED }; // zeroes; two own elements; three elements on loan
    const struct {
        State state;
        bool (*act)(Seq& s);
        const char* reason;
    } rows[] = {
        {FRESH, [](Seq&) { return seq::set_maximum(NO_SEQUENCE, 1, OP); }, "bad parameter: self"},
        {FRESH, [](Seq& s) { return seq::set_maximum(&s, -1, OP); }, "refused: max size must be positive"},
        {LOANED, [](Seq& s) { return seq::set_maximum(&s, 5, OP); }, "refused: buffer must not be loaned"},
        {OWNED, [](Seq& s) { return seq::set_length(&s, 3, OP); }, "insufficient space: 2 available, 3 needed"},
        {OWNED, [](Seq& s) { return seq::set_length(&s, -1, OP); }, "insufficient space: 2 available, -1 needed"},
        {OWNED, [](Seq& s) { return seq::ensure_length(&s, 4, 3, OP); }, "bad parameter: length"},
        {LOANED, [](Seq& s) { return seq::ensure_length(&s, 4, 4, OP); }, "refused: buffer must not be loaned"},
        {OWNED, [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, 1, 3, OP); }, "refused: max size must be 0"},
        {FRESH, [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, -1, 3, OP); }, "bad parameter: negative argument"},
        {FRESH, [](Seq& s) { return seq::loan_discontiguous(&s, g_references, 0, -1, OP); }, "bad parameter: negative argument"},
        {FRESH, [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, 3, 2, OP); }, "insufficient space: 2 available, 3 needed"},
        {FRESH, [](Seq& s) { return seq::loan_contiguous<DDS_Long>(&s, nullptr, 0, 1, OP); },
         "bad parameter: NULL buffer can't have non-zero maximum"},
        {OWNED, [](Seq& s) { return seq::unloan(&s, OP); }, "refused: buffer must be loaned"},
        {LOANED, [](Seq& s) { return seq::finalize(&s, OP); }, "refused: buffer must not be loaned"},
        {LOANED, [](Seq& s) { return seq::get_reference(&s, 3, OP) != nullptr; }, "refused: index out of bounds"},
        {LOANED, [](Seq& s) { return seq::get_reference(&s, -1, OP) != nullptr; }, "refused: index out of bounds"},
        {OWNED, [](Seq& s) { return seq::copy(&s, NO_SEQUENCE, OP); }, "bad parameter: src"},
        {OWNED, [](Seq& s) { return seq::copy_no_alloc(&s, NO_SEQUENCE, OP); }, "bad parameter: src"},
        {OWNED, [](Seq& s) { return seq::from_array(&s, g_numbers, -1, OP); },
         "bad parameter: negative argument\nERROR [op] failure: loan contiguous array"},
        {OWNED, [](Seq& s) { return seq::to_array(&s, g_numbers, 1, OP); },
         "insufficient space: 1 available, 2 needed\nERROR [op] failure: copying array sequence"},
        {FRESH, [](Seq& s) { return seq::set_allocation_params(&s, nullptr, OP); }, "bad parameter: params"},
        {FRESH, [](Seq& s) { return seq::set_deallocation_params(&s, nullptr, OP); }, "bad parameter: params"},
        {FRESH, [](Seq& s) { return seq::get_params<DDS_TypeAllocationParams_t>(&s, &Seq::elementAllocation, nullptr, OP); },
         "bad parameter: params"},
        {OWNED, [](Seq& s) { return seq::set_allocation_params(&s, &DDS_TYPE_ALLOCATION_PARAMS_DEFAULT, OP); },
         "refused: Member allocation parameters can be configured only when the maximum size of the sequence is 0"},
        {OWNED, [](Seq& s) { return seq::set_pointers_allocation(&s, true, OP); },
         "refused: Pointers allocation policy can be configured only when the maximum size of the sequence is 0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows) + ": " + row.reason);
        CapturedLog log;
        Seq subject{};
        ASSERT_TRUE(row.state == FRESH || (row.state == OWNED ? seq::ensure_length(&subject, 2, 2, OP)
                                                              : seq::loan_contiguous(&subject, g_numbers, 3, 3, OP)));
        const Seq before = subject;
        EXPECT_FALSE(row.act(subject));
        EXPECT_EQ(log.take(), std::string("ERROR [op] ") + row.reason + "\n");
        EXPECT_TRUE(subject.contiguous == before.contiguous && subject.maximum == before.maximum &&
                    subject.length == before.length);
        EXPECT_TRUE((row.state != LOANED || seq::unloan(&subject, OP)) && seq::finalize(&subject, OP));
    }
}
// clang-format on

TEST(Sequence, ALoanThatStaysOrShowsOtherElements) {
    Seq subject;
    std::memset(static_cast<void*>(&subject), 0xEE, sizeof(subject)); // initialised on first use
    EXPECT_EQ(seq::get_length(&subject, OP), 0);
    EXPECT_TRUE(seq::has_ownership(&subject, OP));
    EXPECT_EQ(subject.marker, 29508);

    EXPECT_TRUE(seq::loan_contiguous<DDS_Long>(&subject, nullptr, 0, 0, OP)); // an empty loan is one
    EXPECT_FALSE(seq::has_ownership(&subject, OP));
    ASSERT_TRUE(seq::unloan(&subject, OP));
    ASSERT_TRUE(seq::loan_discontiguous(&subject, g_references, 0, 0, OP)); // each form forgets the other
    ASSERT_TRUE(seq::loan_contiguous(&subject, g_numbers, 3, 3, OP));
    EXPECT_EQ(seq::get_reference(&subject, 0, OP), &g_numbers[0]);
    ASSERT_TRUE(seq::unloan(&subject, OP));
    ASSERT_TRUE(seq::loan_discontiguous(&subject, g_references, 2, 2, OP));
    EXPECT_EQ(seq::get_reference(&subject, 0, OP), &g_numbers[2]);
    EXPECT_EQ(seq::get_reference(&subject, 1, OP), &g_numbers[0]);

    Seq copied{};
    ASSERT_TRUE(seq::copy(&copied, &subject, OP));
    ASSERT_TRUE(seq::unloan(&subject, OP));
    EXPECT_TRUE(seq::has_ownership(&subject, OP));
    EXPECT_EQ(seq::get_maximum(&subject, OP), 0);
    ASSERT_EQ(copied.length, 2);
    EXPECT_TRUE(copied.contiguous[0] == 30 && copied.contiguous[1] == 10);

    // A change of the maximum keeps what fits; the same maximum keeps the buffer.
    const DDS_Long* buffer = copied.contiguous;
    ASSERT_TRUE(seq::set_maximum(&copied, 2, OP));
    EXPECT_EQ(copied.contiguous, buffer);
    ASSERT_TRUE(seq::set_maximum(&copied, 1, OP));
    EXPECT_TRUE(copied.length == 1 && copied.contiguous[0] == 30);
    EXPECT_TRUE(seq::finalize(&copied, OP));
}

TEST(Sequence, ExhaustedMemoryThatHarmsTheOldElements) {
    CapturedLog log;
    char one[] = "1", longText[] = "a longer text";
    char* const texts[] = {one, longText, longText};
    for (const DDS_Long maximum : {1, 3}) { // it has to grow, or not
        bool isCopied = false;
        for (long allocations = 0; !isCopied; ++allocations) {
            ASSERT_LT(allocations, 10);
            DDS_StringSeq subject{};
            ASSERT_TRUE(seq::set_maximum(&subject, maximum, OP) && seq::from_array(&subject, texts, 1, OP));
            const char* const before = subject.contiguous[0];
            ZULHeap_failAfter(allocations);
            isCopied = seq::from_array(&subject, texts, 3, OP);
            ZULHeap_failAfter(-1);
            EXPECT_EQ(subject.length, isCopied ? 3 : 1);
            EXPECT_EQ(subject.maximum, isCopied ? 3 : maximum);
            EXPECT_EQ(subject.contiguous[0], before);
            EXPECT_STREQ(subject.contiguous[0], "1");
            EXPECT_STREQ(subject.contiguous[subject.length - 1], isCopied ? longText : "1");
            EXPECT_TRUE(seq::finalize(&subject, OP));
        }
    }
    // A byte count beyond 32 bits is told whole.
    Seq subject{};
    log.take();
    ZULHeap_failAfter(0);
    EXPECT_FALSE(seq::set_maximum(&subject, INT32_MAX, OP));
    ZULHeap_failAfter(-1);
    EXPECT_EQ(log.take(), "ERROR [op] failed to allocate 8589934588 bytes\n");
}

} // namespace
