// Sequences: what each operation refuses and says, loans, lazy initialisation, exhausted memory.
#include "middleware/sequence.h"
#include "tests/middleware/captured_log.h"

#include <gtest/gtest.h>

namespace {

namespace seq = ZULSequence;
constexpr const char* OP = "op"; // the context of every call

using Seq = DDS_Sequence<DDS_Long>;
Seq* const NO_SEQUENCE = nullptr;

DDS_Long g_numbers[3] = {10, 20, 30};
DDS_Long* g_references[2] = {&g_numbers[2], &g_numbers[0]};

enum class State { FRESH, OWNED, LOANED }; // zeroes; two own elements; three elements on loan

TEST(Sequence, RefusesAndSaysWhy) {
    const struct {
        const char* name;
        State state;
        bool (*act)(Seq& s);
        const char* reason;
    } rows[] = {
        {"null", State::FRESH, [](Seq&) { return seq::set_maximum(NO_SEQUENCE, 1, OP); },
         "bad parameter: self"},
        {"negative maximum", State::FRESH, [](Seq& s) { return seq::set_maximum(&s, -1, OP); },
         "refused: max size must be positive"},
        {"maximum of a loan", State::LOANED, [](Seq& s) { return seq::set_maximum(&s, 5, OP); },
         "refused: buffer must not be loaned"},
        {"length beyond the maximum", State::OWNED, [](Seq& s) { return seq::set_length(&s, 3, OP); },
         "insufficient space: 2 available, 3 needed"},
        {"negative length", State::OWNED, [](Seq& s) { return seq::set_length(&s, -1, OP); },
         "insufficient space: 2 available, -1 needed"},
        {"ensured length beyond its maximum", State::OWNED,
         [](Seq& s) { return seq::ensure_length(&s, 4, 3, OP); }, "bad parameter: length"},
        {"growing a loan", State::LOANED, [](Seq& s) { return seq::ensure_length(&s, 4, 4, OP); },
         "refused: buffer must not be loaned"},
        {"loan into a sequence with elements", State::OWNED,
         [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, 1, 3, OP); }, "refused: max size must be 0"},
        {"second loan", State::LOANED,
         [](Seq& s) { return seq::loan_discontiguous(&s, g_references, 1, 2, OP); },
         "refused: max size must be 0"},
        {"loan of negative length", State::FRESH,
         [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, -1, 3, OP); },
         "bad parameter: negative argument"},
        {"loan of negative maximum", State::FRESH,
         [](Seq& s) { return seq::loan_discontiguous(&s, g_references, 0, -1, OP); },
         "bad parameter: negative argument"},
        {"loan longer than its maximum", State::FRESH,
         [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, 3, 2, OP); },
         "insufficient space: 2 available, 3 needed"},
        {"loan of nothing", State::FRESH,
         [](Seq& s) { return seq::loan_contiguous<DDS_Long>(&s, nullptr, 0, 1, OP); },
         "bad parameter: NULL buffer can't have non-zero maximum"},
        {"unloan of an own buffer", State::OWNED, [](Seq& s) { return seq::unloan(&s, OP); },
         "refused: buffer must be loaned"},
        {"finalising a loan", State::LOANED, [](Seq& s) { return seq::finalize(&s, OP); },
         "refused: buffer must not be loaned"},
        {"reference at the length", State::LOANED,
         [](Seq& s) { return seq::get_reference(&s, 3, OP) != nullptr; }, "refused: index out of bounds"},
        {"negative reference", State::LOANED,
         [](Seq& s) { return seq::get_reference(&s, -1, OP) != nullptr; }, "refused: index out of bounds"},
        {"copy of nothing", State::OWNED, [](Seq& s) { return seq::copy(&s, NO_SEQUENCE, OP); },
         "bad parameter: src"},
        {"the same in place", State::OWNED, [](Seq& s) { return seq::copy_no_alloc(&s, NO_SEQUENCE, OP); },
         "bad parameter: src"},
        {"array of negative length", State::OWNED,
         [](Seq& s) { return seq::from_array(&s, g_numbers, -1, OP); },
         "bad parameter: negative argument\nERROR [op] failure: loan contiguous array"},
        {"array without room", State::OWNED, [](Seq& s) { return seq::to_array(&s, g_numbers, 1, OP); },
         "insufficient space: 1 available, 2 needed\nERROR [op] failure: copying array sequence"},
        {"array into a loan", State::LOANED, [](Seq& s) { return seq::from_array(&s, g_numbers, 4, OP); },
         "refused: buffer must not be loaned\nERROR [op] failure: copying array sequence"},
        {"no allocation parameters", State::FRESH,
         [](Seq& s) { return seq::set_allocation_params(&s, nullptr, OP); }, "bad parameter: params"},
        {"no deallocation parameters", State::FRESH,
         [](Seq& s) { return seq::set_deallocation_params(&s, nullptr, OP); }, "bad parameter: params"},
        {"no room for parameters", State::FRESH,
         [](Seq& s) {
             return seq::get_params<DDS_TypeAllocationParams_t>(&s, &Seq::elementAllocation, nullptr, OP);
         },
         "bad parameter: params"},
        {"allocation parameters too late", State::OWNED,
         [](Seq& s) { return seq::set_allocation_params(&s, &DDS_TYPE_ALLOCATION_PARAMS_DEFAULT, OP); },
         "refused: Member allocation parameters can be configured only when the maximum size of the sequence "
         "is 0"},
        {"pointers allocation too late", State::OWNED,
         [](Seq& s) { return seq::set_pointers_allocation(&s, true, OP); },
         "refused: Pointers allocation policy can be configured only when the maximum size of the sequence "
         "is "
         "0"},
        {"copy without room", State::FRESH,
         [](Seq& s) {
             Seq source{};
             return seq::loan_contiguous(&source, g_numbers, 3, 3, OP) && seq::copy_no_alloc(&s, &source, OP);
         },
         "insufficient space: 0 available, 3 needed"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CapturedLog log;
        Seq subject{};
        if (row.state == State::OWNED) {
            ASSERT_TRUE(seq::ensure_length(&subject, 2, 2, OP));
        } else if (row.state == State::LOANED) {
            ASSERT_TRUE(seq::loan_contiguous(&subject, g_numbers, 3, 3, OP));
        }
        const Seq before = subject;
        EXPECT_FALSE(row.act(subject));
        EXPECT_EQ(log.take(), std::string("ERROR [op] ") + row.reason + "\n");
        EXPECT_TRUE(subject.contiguous == before.contiguous && subject.maximum == before.maximum &&
                    subject.length == before.length);
        if (row.state == State::LOANED) {
            EXPECT_TRUE(seq::unloan(&subject, OP));
        }
        EXPECT_TRUE(seq::finalize(&subject, OP));
    }
}

TEST(Sequence, LoansAndGivesBack) {
    Seq subject;
    std::memset(static_cast<void*>(&subject), 0xEE,
                sizeof(subject)); // the marker is absent: initialised on first use
    EXPECT_EQ(seq::get_length(&subject, OP), 0);
    EXPECT_TRUE(seq::has_ownership(&subject, OP));
    EXPECT_EQ(subject.marker, 29508);

    EXPECT_TRUE(seq::loan_contiguous<DDS_Long>(&subject, nullptr, 0, 0, OP)); // an empty loan is one
    EXPECT_FALSE(seq::has_ownership(&subject, OP));
    ASSERT_TRUE(seq::unloan(&subject, OP));
    ASSERT_TRUE(seq::loan_discontiguous(&subject, g_references, 2, 2, OP));
    EXPECT_EQ(seq::get_reference(&subject, 0, OP), &g_numbers[2]);
    EXPECT_EQ(seq::get_reference(&subject, 1, OP), &g_numbers[0]);

    Seq copied{};
    ASSERT_TRUE(seq::copy(&copied, &subject, OP));
    ASSERT_TRUE(seq::unloan(&subject, OP));
    EXPECT_TRUE(seq::has_ownership(&subject, OP));
    EXPECT_EQ(seq::get_maximum(&subject, OP), 0);
    ASSERT_EQ(seq::get_length(&copied, OP), 2);
    EXPECT_EQ(*seq::get_reference(&copied, 0, OP), 30);
    EXPECT_EQ(*seq::get_reference(&copied, 1, OP), 10);

    // A change of the maximum keeps what fits; the same maximum keeps the buffer.
    const DDS_Long* buffer = copied.contiguous;
    ASSERT_TRUE(seq::set_maximum(&copied, 2, OP));
    EXPECT_EQ(copied.contiguous, buffer);
    ASSERT_TRUE(seq::set_maximum(&copied, 1, OP));
    EXPECT_TRUE(copied.length == 1 && copied.contiguous[0] == 30);
    EXPECT_TRUE(seq::finalize(&copied, OP));
}

// An element that owns memory and of which the n-th may fail.
struct Owner {
    char* text;
};
} // namespace
template <>
struct ZULSequenceElement<Owner> {
    static bool initialize(Owner& owner, const DDS_TypeAllocationParams_t&) {
        owner.text = DDS_String_dup("text");
        return owner.text != nullptr;
    }
    static void finalize(Owner& owner, const DDS_TypeDeallocationParams_t&) { DDS_String_free(owner.text); }
    static bool copy(Owner& to, const Owner& from) {
        return ZULSequenceElement<char*>::copy(to.text, from.text);
    }
};
namespace {

TEST(Sequence, GrowsWhollyOrNotAtAll) {
    CapturedLog log;
    DDS_Sequence<Owner> subject{};
    ASSERT_TRUE(seq::ensure_length(&subject, 2, 2, OP));
    subject.contiguous[1].text[0] = 'n';
    for (long n = 0; n <= 4; ++n) { // the array, then each of four elements
        ZULHeap_failAfter(n);
        EXPECT_FALSE(seq::set_maximum(&subject, 4, OP)) << n;
        EXPECT_EQ(log.take(),
                  "ERROR [op] failed to allocate " + std::to_string(4 * sizeof(Owner)) + " bytes\n");
        EXPECT_TRUE(subject.maximum == 2 && subject.length == 2);
    }
    ZULHeap_failAfter(5);
    EXPECT_TRUE(seq::set_maximum(&subject, 4, OP));
    ZULHeap_failAfter(-1);
    EXPECT_STREQ(subject.contiguous[1].text, "next");
    EXPECT_STREQ(subject.contiguous[3].text, "text");
    EXPECT_TRUE(seq::finalize(&subject, OP));
}

} // namespace
