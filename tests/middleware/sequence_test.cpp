// Sequences: what each operation refuses and says, loans, lazy initialisation. What holds for every type, and
// exhausted memory, is tested with the administration types.
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

constexpr const char* IS_LOANED = "refused: buffer must not be loaned";
constexpr const char* IS_NEGATIVE = "bad parameter: negative argument";

enum class State { FRESH, OWNED, LOANED }; // zeroes; two own elements; three elements on loan

TEST(Sequence, RefusesAndSaysWhy) {
    using enum State;
    const struct {
        const char* name;
        State state;
        bool (*act)(Seq& s);
        const char* reason;
    } rows[] = {
        {"null", FRESH, [](Seq&) { return seq::set_maximum(NO_SEQUENCE, 1, OP); }, "bad parameter: self"},
        {"negative maximum", FRESH, [](Seq& s) { return seq::set_maximum(&s, -1, OP); },
         "refused: max size must be positive"},
        {"maximum of a loan", LOANED, [](Seq& s) { return seq::set_maximum(&s, 5, OP); }, IS_LOANED},
        {"length beyond the maximum", OWNED, [](Seq& s) { return seq::set_length(&s, 3, OP); },
         "insufficient space: 2 available, 3 needed"},
        {"negative length", OWNED, [](Seq& s) { return seq::set_length(&s, -1, OP); },
         "insufficient space: 2 available, -1 needed"},
        {"ensured length beyond its maximum", OWNED, [](Seq& s) { return seq::ensure_length(&s, 4, 3, OP); },
         "bad parameter: length"},
        {"growing a loan", LOANED, [](Seq& s) { return seq::ensure_length(&s, 4, 4, OP); }, IS_LOANED},
        {"loan over elements", OWNED, [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, 1, 3, OP); },
         "refused: max size must be 0"},
        {"loan of negative length", FRESH,
         [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, -1, 3, OP); }, IS_NEGATIVE},
        {"loan of negative maximum", FRESH,
         [](Seq& s) { return seq::loan_discontiguous(&s, g_references, 0, -1, OP); }, IS_NEGATIVE},
        {"loan longer than its maximum", FRESH,
         [](Seq& s) { return seq::loan_contiguous(&s, g_numbers, 3, 2, OP); },
         "insufficient space: 2 available, 3 needed"},
        {"loan of nothing", FRESH,
         [](Seq& s) { return seq::loan_contiguous<DDS_Long>(&s, nullptr, 0, 1, OP); },
         "bad parameter: NULL buffer can't have non-zero maximum"},
        {"unloan of an own buffer", OWNED, [](Seq& s) { return seq::unloan(&s, OP); },
         "refused: buffer must be loaned"},
        {"finalising a loan", LOANED, [](Seq& s) { return seq::finalize(&s, OP); }, IS_LOANED},
        {"reference at the length", LOANED, [](Seq& s) { return seq::get_reference(&s, 3, OP) != nullptr; },
         "refused: index out of bounds"},
        {"negative reference", LOANED, [](Seq& s) { return seq::get_reference(&s, -1, OP) != nullptr; },
         "refused: index out of bounds"},
        {"copy of nothing", OWNED, [](Seq& s) { return seq::copy(&s, NO_SEQUENCE, OP); },
         "bad parameter: src"},
        {"the same in place", OWNED, [](Seq& s) { return seq::copy_no_alloc(&s, NO_SEQUENCE, OP); },
         "bad parameter: src"},
        {"copy without room", FRESH,
         [](Seq& s) {
             Seq source{};
             return seq::loan_contiguous(&source, g_numbers, 3, 3, OP) && seq::copy_no_alloc(&s, &source, OP);
         },
         "insufficient space: 0 available, 3 needed"},
        {"array of negative length", OWNED, [](Seq& s) { return seq::from_array(&s, g_numbers, -1, OP); },
         "bad parameter: negative argument\nERROR [op] failure: loan contiguous array"},
        {"array without room", OWNED, [](Seq& s) { return seq::to_array(&s, g_numbers, 1, OP); },
         "insufficient space: 1 available, 2 needed\nERROR [op] failure: copying array sequence"},
        {"no allocation parameters", FRESH,
         [](Seq& s) { return seq::set_allocation_params(&s, nullptr, OP); }, "bad parameter: params"},
        {"no deallocation parameters", FRESH,
         [](Seq& s) { return seq::set_deallocation_params(&s, nullptr, OP); }, "bad parameter: params"},
        {"no room for parameters", FRESH,
         [](Seq& s) {
             return seq::get_params<DDS_TypeAllocationParams_t>(&s, &Seq::elementAllocation, nullptr, OP);
         },
         "bad parameter: params"},
        {"allocation parameters too late", OWNED,
         [](Seq& s) { return seq::set_allocation_params(&s, &DDS_TYPE_ALLOCATION_PARAMS_DEFAULT, OP); },
         "refused: Member allocation parameters can be configured only when the maximum size of the sequence "
         "is 0"},
        {"pointers allocation too late", OWNED,
         [](Seq& s) { return seq::set_pointers_allocation(&s, true, OP); },
         "refused: Pointers allocation policy can be configured only when the maximum size of the sequence "
         "is 0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CapturedLog log;
        Seq subject{};
        if (row.state == OWNED) {
            ASSERT_TRUE(seq::ensure_length(&subject, 2, 2, OP));
        } else if (row.state == LOANED) {
            ASSERT_TRUE(seq::loan_contiguous(&subject, g_numbers, 3, 3, OP));
        }
        const Seq before = subject;
        EXPECT_FALSE(row.act(subject));
        EXPECT_EQ(log.take(), std::string("ERROR [op] ") + row.reason + "\n");
        EXPECT_TRUE(subject.contiguous == before.contiguous && subject.maximum == before.maximum &&
                    subject.length == before.length);
        if (row.state == LOANED) {
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

} // namespace
