// Sequences: what each operation refuses and says, loans, lazy initialisation, exhausted memory. One template
// defines the named operations of every type, so those of one type show that each goes where it should.
#include "tests/admin_types/samples.h"
#include "tests/middleware/captured_log.h"
#include "tests/support/failing_heap.h"

namespace {

#define ZUL_TYPE ZUL_RoutingService_Administration_CommandResponse // ZUL_SEQ(name) is its operation
using Seq = ZUL_SEQUENCE;

// clang-format off
TEST(Sequence, ARefusalThatChangesSomethingOrDoesNotSayWhy) {
    static Response elements[3];
    static Response* references[2];
    const std::string then = "\nERROR [ZUL_RoutingService_Administration_CommandResponseSeq_"; // a second line
    enum State { FRESH, OWNED, LOANED }; // zeroes; two own elements; three elements on loan
    const struct {
        State state;
        bool (*act)(Seq& s);
        std::string reason;
    } rows[] = {
        {FRESH, [](Seq&) { return ZUL_SEQ(set_maximum)(nullptr, 1); }, "bad parameter: self"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(set_maximum)(&s, -1); }, "refused: max size must be positive"},
        {LOANED, [](Seq& s) { return ZUL_SEQ(set_maximum)(&s, 5); }, "refused: buffer must not be loaned"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(set_length)(&s, 3); }, "insufficient space: 2 available, 3 needed"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(set_length)(&s, -1); }, "insufficient space: 2 available, -1 needed"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(ensure_length)(&s, 4, 3); }, "bad parameter: length"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(loan_contiguous)(&s, elements, 1, 3); }, "refused: max size must be 0"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(loan_contiguous)(&s, elements, -1, 3); },
         "bad parameter: negative argument"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(loan_discontiguous)(&s, references, 0, -1); },
         "bad parameter: negative argument"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(loan_contiguous)(&s, elements, 3, 2); },
         "insufficient space: 2 available, 3 needed"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(loan_contiguous)(&s, nullptr, 0, 1); },
         "bad parameter: NULL buffer can't have non-zero maximum"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(unloan)(&s); }, "refused: buffer must be loaned"},
        {LOANED, [](Seq& s) { return ZUL_SEQ(finalize)(&s); }, "refused: buffer must not be loaned"},
        {LOANED, [](Seq& s) { return ZUL_SEQ(get_reference)(&s, 3) != nullptr; }, "refused: index out of bounds"},
        {LOANED, [](Seq& s) { return ZUL_SEQ(get_reference)(&s, -1) != nullptr; }, "refused: index out of bounds"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(copy)(&s, nullptr) != nullptr; }, "bad parameter: src"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(copy_no_alloc)(&s, nullptr) != nullptr; }, "bad parameter: src"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(from_array)(&s, elements, -1); },
         "bad parameter: negative argument" + then + "from_array] failure: loan contiguous array"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(to_array)(&s, elements, 1); },
         "insufficient space: 1 available, 2 needed" + then + "to_array] failure: copying array sequence"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(set_element_allocation_params)(&s, nullptr); }, "bad parameter: params"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(set_element_deallocation_params)(&s, nullptr); }, "bad parameter: params"},
        {FRESH, [](Seq& s) { return ZUL_SEQ(get_element_allocation_params)(&s, nullptr); }, "bad parameter: params"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(set_element_allocation_params)(&s, &DDS_TYPE_ALLOCATION_PARAMS_DEFAULT); },
         "refused: Member allocation parameters can be configured only when the maximum size of the sequence is 0"},
        {OWNED, [](Seq& s) { return ZUL_SEQ(set_element_pointers_allocation)(&s, true); },
         "refused: Pointers allocation policy can be configured only when the maximum size of the sequence is 0"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows) + ": " + row.reason);
        CapturedLog log;
        Seq subject{};
        ASSERT_TRUE(row.state == FRESH || (row.state == OWNED ? ZUL_SEQ(ensure_length)(&subject, 2, 2)
                                                              : ZUL_SEQ(loan_contiguous)(&subject, elements, 3, 3)));
        const Seq before = subject;
        EXPECT_FALSE(row.act(subject));
        const std::string said = log.take();
        EXPECT_TRUE(("\n" + said).starts_with(then)) << said;
        EXPECT_EQ(said.substr(said.find("] ") + 2), row.reason + "\n");
        EXPECT_TRUE(subject.contiguous == before.contiguous && subject.maximum == before.maximum &&
                    subject.length == before.length);
        EXPECT_TRUE((row.state != LOANED || ZUL_SEQ(unloan)(&subject)) && ZUL_SEQ(finalize)(&subject));
    }
}
// clang-format on

TEST(Sequence, ALoanOrACopyThatStaysOrShowsOtherElements) {
    Seq own{}, copied{}, subject;
    ASSERT_TRUE(ZUL_SEQ(ensure_length)(&own, 2, 3));
    Response* const elements = own.contiguous;
    Response* references[] = {&elements[1], &elements[0]};
    set(elements[0].message, "first");
    set(elements[1].message, "second");
    const auto shown = [](const Seq& seq) {
        std::string all;
        for (DDS_Long i = 0; i < ZUL_SEQ(get_length)(&seq); ++i) {
            EXPECT_EQ(ZUL_SEQ(get)(&seq, i).message, ZUL_SEQ(get_reference)(&seq, i)->message);
            all += ZUL_SEQ(get)(&seq, i).message + std::string(" ");
        }
        return all + (ZUL_SEQ(has_ownership)(&seq) ? "own of " : "lent of ") +
               std::to_string(ZUL_SEQ(get_maximum)(&seq));
    };
    std::memset(static_cast<void*>(&subject), 0xEE, sizeof(subject)); // initialised on first use
    EXPECT_EQ(shown(subject), "own of 0");
    EXPECT_TRUE(ZUL_SEQ(loan_contiguous)(&subject, nullptr, 0, 0)); // an empty loan is one
    EXPECT_EQ(shown(subject), "lent of 0");
    ASSERT_TRUE(ZUL_SEQ(unloan)(&subject));
    ASSERT_TRUE(ZUL_SEQ(loan_discontiguous)(&subject, references, 0, 0)); // each form forgets the other
    ASSERT_TRUE(ZUL_SEQ(loan_contiguous)(&subject, elements, 2, 3));
    EXPECT_EQ(shown(subject), "first second lent of 3");
    void* tokens[] = {&own, &copied};
    ZUL_SEQ(set_read_token)(&subject, tokens[0], tokens[1]);
    ZUL_SEQ(get_read_token)(&subject, &tokens[1], &tokens[0]);
    EXPECT_TRUE(tokens[0] == &copied && tokens[1] == &own);
    ASSERT_TRUE(ZUL_SEQ(unloan)(&subject));
    ASSERT_TRUE(ZUL_SEQ(loan_discontiguous)(&subject, references, 2, 2));
    EXPECT_EQ(shown(subject), "second first lent of 2");

    EXPECT_EQ(ZUL_SEQ(copy_no_alloc)(&copied, &subject), nullptr); // no room
    EXPECT_EQ(ZUL_SEQ(copy)(&copied, &subject), &copied);
    ASSERT_TRUE(ZUL_SEQ(unloan)(&subject));
    EXPECT_EQ(shown(subject) + ", " + shown(copied), "own of 0, second first own of 2");
    EXPECT_TRUE(ZUL_SEQ(to_array)(&copied, elements, 2));
    EXPECT_EQ(shown(own), "second first own of 3");
    EXPECT_TRUE(ZUL_SEQ(from_array)(&copied, elements, 1));
    // A change of the maximum keeps what fits; the same maximum keeps the buffer.
    const Response* const buffer = copied.contiguous;
    EXPECT_TRUE(ZUL_SEQ(set_maximum)(&copied, 2));
    EXPECT_EQ(copied.contiguous, buffer);
    EXPECT_TRUE(ZUL_SEQ(ensure_length)(&own, 2, 2) && ZUL_SEQ(set_maximum)(&own, 1));
    EXPECT_EQ(shown(own) + ", " + shown(copied), "second own of 1, second own of 2");
    EXPECT_TRUE(ZUL_SEQ(finalize)(&own) && ZUL_SEQ(finalize)(&copied));
}

TEST(Sequence, ExhaustedMemoryThatHarmsTheOldElements) {
    char one[] = "1", longer[] = "a longer text";
    char* const texts[] = {one, longer, longer};
    CapturedLog log;
    for (const DDS_Long maximum : {1, 3}) { // it has to grow, or not
        DDS_StringSeq subject{};
        ASSERT_TRUE(ZULSequence::set_maximum(&subject, maximum, "op"));
        ASSERT_TRUE(ZULSequence::from_array(&subject, texts, 1, "op"));
        const char* const before = subject.contiguous[0];
        failEachAllocation([&] { return ZULSequence::from_array(&subject, texts, 3, "op"); },
                           [&](bool isCopied) {
                               EXPECT_EQ(subject.length, isCopied ? 3 : 1);
                               EXPECT_EQ(subject.maximum, isCopied ? 3 : maximum);
                               EXPECT_EQ(subject.contiguous[0], before);
                               EXPECT_STREQ(before, "1");
                               EXPECT_STREQ(subject.contiguous[subject.length - 1], isCopied ? longer : "1");
                           });
        EXPECT_TRUE(ZULSequence::finalize(&subject, "op"));
    }
    Seq records{};
    ASSERT_TRUE(ZUL_SEQ(ensure_length)(&records, 1, 2));
    set(records.contiguous[0].message, "1");
    failEachAllocation([&] { return ZUL_SEQ(set_maximum)(&records, 3); },
                       [&](bool isGrown) {
                           EXPECT_EQ(records.maximum, isGrown ? 3 : 2);
                           EXPECT_STREQ(records.contiguous[0].message, "1");
                       });
    EXPECT_TRUE(ZUL_SEQ(finalize)(&records));
    DDS_TypeAllocationParams_t params{};
    EXPECT_TRUE(ZUL_SEQ(set_element_allocation_params)(&records, &params));
    params.allocate_memory = 1;
    EXPECT_TRUE(ZUL_SEQ(get_element_allocation_params)(&records, &params));
    EXPECT_EQ(params.allocate_memory, 0);
    // One array, and nothing for its elements.
    EXPECT_EQ(failEachAllocation([&] { return ZUL_SEQ(set_maximum)(&records, 2); }), 1);
    EXPECT_TRUE(ZUL_SEQ(finalize)(&records));
    // A byte count beyond 32 bits is told whole.
    log.take();
    ZULHeap_failAfter(0);
    EXPECT_FALSE(ZUL_SEQ(set_maximum)(&records, INT32_MAX));
    ZULHeap_failAfter(-1);
    EXPECT_TRUE(log.take().ends_with(" " + std::to_string(sizeof(Response) * INT32_MAX) + " bytes\n"));
}

} // namespace
