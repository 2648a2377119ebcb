// What is derived for every type of both modules, through the named operations: values, sequences, plugins.
#include "admin_types/plugins.h"
#include "tests/admin_types/samples.h"
#include "tests/middleware/captured_log.h"

#include <gtest/gtest.h>

namespace {

// Fills a value with what differs from its default and, by `seed`, from other values.
template <class Record>
void fill(zul::idl::Struct<Record>, Record& record, int seed);
template <class Record>
void fill(zul::idl::Union<Record>, Record& record, int seed);
template <class IdlType, class Value>
void fill(IdlType, Value& value, int seed) {
    if constexpr (std::is_same_v<Value, char*>) {
        set(value, std::string(static_cast<std::size_t>(seed), 'n'));
    } else if constexpr (std::is_same_v<Value, DDS_StringSeq>) {
        ASSERT_TRUE(ZULSequence::set_length(&value, seed % 16, __func__));
        for (DDS_Long i = 0; i < value.length; ++i) {
            fill(zul::idl::String<IdlType::bound>{}, value.contiguous[i], seed + i);
        }
    } else {
        value = static_cast<Value>(std::is_same_v<Value, DDS_Boolean> ? 1 : 1 + seed % 3);
    }
}
template <class Record>
void fill(zul::idl::Struct<Record>, Record& record, int seed) {
    zul::idl::forEachMember(record, [seed](auto type, const auto&, auto& value) { fill(type, value, seed); });
}
template <class Record>
void fill(zul::idl::Union<Record>, Record& record, int seed) {
    const DDS_Long kinds[] = {1, 7, 9, 14}; // one of each branch
    record._d = static_cast<decltype(record._d)>(kinds[seed % 4]);
    zul::idl::forSelectedBranch(record,
                                [seed](auto type, const auto&, auto& value) { fill(type, value, seed); });
}

#define ZUL_TEXT_OF(name) #name
#define ZUL_TEXT(name) ZUL_TEXT_OF(name)
#define ZUL_TEMPLATE "tests/admin_types/family.inc"
#include "admin_types/family/federation_types.inc"
#include "admin_types/family/routing_types.inc"
#undef ZUL_TEMPLATE

// clang-format off
#define ZUL_TEMPLATE "tests/admin_types/family_name.inc"
using Families = testing::Types<
#include "admin_types/family/federation_types.inc"
#include "admin_types/family/routing_types.inc"
    >;
using PluginFamilies = testing::Types<
#include "admin_types/family/routing_types.inc"
    >;
#undef ZUL_TEMPLATE
// clang-format on

template <class Family>
class EveryType : public testing::Test {
protected:
    using Value = typename Family::Value;
    using Idl = typename Family::Idl;

    EveryType() {
        for (Value& value : values) {
            EXPECT_TRUE(Family::initialize(&value));
            fill(Idl{}, value, static_cast<int>(&value - values) + 1);
        }
    }
    ~EveryType() override {
        for (Value& value : values) {
            Family::finalize(&value);
        }
    }
    // A text form to compare: the encoded bytes.
    static Bytes bytes(const Value& value) {
        Bytes out(8192);
        ZULCdrOutput stream{.data = out.data(), .capacity = out.size()};
        EXPECT_TRUE(zul::idl::PluginOperations<Idl>::serializeSample(nullptr, value, stream, true, 1, true));
        out.resize(stream.position);
        return out;
    }
    void expectElements(const typename Family::Seq& sequence, DDS_Long length, DDS_Long maximum) {
        ASSERT_EQ(Family::getLength(&sequence), length);
        EXPECT_EQ(Family::getMaximum(&sequence), maximum);
        for (DDS_Long i = 0; i < length; ++i) {
            EXPECT_EQ(bytes(*Family::getReference(&sequence, i)), bytes(values[i])) << i;
            EXPECT_EQ(bytes(Family::get(&sequence, i)), bytes(values[i])) << i;
        }
    }

    Value values[4];
};
TYPED_TEST_SUITE(EveryType, Families, );

TYPED_TEST(EveryType, CopiesWholeValuesAndResetsThemInPlace) {
    typename TestFixture::Value copy;
    ASSERT_TRUE(TypeParam::initialize(&copy));
    const Bytes initial = this->bytes(copy);
    EXPECT_NE(initial, this->bytes(this->values[1]));
    EXPECT_TRUE(TypeParam::copy(&copy, &this->values[1]));
    EXPECT_EQ(this->bytes(copy), this->bytes(this->values[1]));
    EXPECT_TRUE(TypeParam::initializeEx(&copy, false, false));
    EXPECT_EQ(this->bytes(copy), initial);
    TypeParam::finalize(&copy);
    EXPECT_FALSE(TypeParam::copy(nullptr, &this->values[1]));
    EXPECT_FALSE(TypeParam::copy(&this->values[1], nullptr));
}

TYPED_TEST(EveryType, SequenceHoldsWhatFitsAndRefusesTheRest) {
    using Family = TypeParam;
    typename Family::Seq sequence{};
    ASSERT_TRUE(Family::fromArray(&sequence, this->values, 3));
    this->expectElements(sequence, 3, 3);
    for (const auto& [length, fits] : {std::pair{0, true}, {1, true}, {3, true}, {4, false}, {-1, false}}) {
        EXPECT_EQ(Family::setLength(&sequence, length), fits) << length;
    }

    // Exhausted memory at any element leaves the old elements whole.
    long allocations = 0;
    for (bool grown = false; !grown; ++allocations) {
        ASSERT_LT(allocations, 200);
        ZULHeap_failAfter(allocations);
        grown = Family::setMaximum(&sequence, 4);
        ZULHeap_failAfter(-1);
        this->expectElements(sequence, 3, grown ? 4 : 3);
    }
    // A byte count beyond 32 bits is told whole.
    CapturedLog log;
    ZULHeap_failAfter(0);
    EXPECT_FALSE(Family::setMaximum(&sequence, INT32_MAX));
    ZULHeap_failAfter(-1);
    EXPECT_EQ(log.take(), std::string("ERROR [") + Family::name + "Seq_set_maximum] failed to allocate " +
                              std::to_string(sizeof(this->values[0]) * INT32_MAX) + " bytes\n");

    typename Family::Seq other{};
    EXPECT_EQ(Family::copyNoAlloc(&other, &sequence), nullptr); // no room
    EXPECT_EQ(Family::seqCopy(&other, &sequence), &other);
    this->expectElements(other, 3, 3);
    ASSERT_TRUE(Family::setMaximum(&other, 1));
    this->expectElements(other, 1, 1);
    ASSERT_TRUE(Family::ensureLength(&other, 0, 0));
    EXPECT_TRUE(Family::seqFinalize(&other) && Family::seqFinalize(&sequence));
}

TYPED_TEST(EveryType, SequenceLoans) {
    using Family = TypeParam;
    typename Family::Seq sequence{};
    ASSERT_TRUE(Family::loanContiguous(&sequence, this->values, 2, 4));
    EXPECT_FALSE(Family::hasOwnership(&sequence));
    this->expectElements(sequence, 2, 4);
    void* tokens[2] = {&sequence, this};
    Family::setReadToken(&sequence, tokens[0], tokens[1]);
    Family::getReadToken(&sequence, &tokens[1], &tokens[0]);
    EXPECT_TRUE(tokens[0] == this && tokens[1] == &sequence);
    ASSERT_TRUE(Family::unloan(&sequence));

    typename TestFixture::Value* pointers[] = {&this->values[0], &this->values[1], &this->values[2]};
    ASSERT_TRUE(Family::loanDiscontiguous(&sequence, pointers, 3, 3));
    this->expectElements(sequence, 3, 3);
    typename Family::Seq array{};
    ASSERT_TRUE(Family::fromArray(&array, this->values, 4));
    // Copied backwards, so that what arrives differs from what was there.
    std::swap(pointers[0], pointers[2]);
    EXPECT_TRUE(Family::toArray(&sequence, array.contiguous, 3));
    EXPECT_EQ(this->bytes(array.contiguous[0]), this->bytes(this->values[2]));
    ASSERT_TRUE(Family::unloan(&sequence));

    // Elements are allocated as the parameters say.
    const DDS_TypeAllocationParams_t bare{};
    DDS_TypeAllocationParams_t got{};
    EXPECT_TRUE(Family::getAllocation(&array, &got) && got.allocate_memory == 1);
    ASSERT_TRUE(Family::setAllocation(&sequence, &bare));
    ZULHeap_failAfter(1); // one array, and nothing for its elements
    EXPECT_TRUE(Family::setMaximum(&sequence, 2));
    ZULHeap_failAfter(-1);
    EXPECT_TRUE(Family::seqFinalize(&array) && Family::seqFinalize(&sequence));
}

// ---- member-level plugins of the routing module ----

template <class Family>
struct PluginOf;
#define ZUL_TEMPLATE "tests/admin_types/plugin_of.inc"
#include "admin_types/family/routing_types.inc"

template <class Family>
class EveryPlugin : public EveryType<Family> {};
TYPED_TEST_SUITE(EveryPlugin, PluginFamilies, );

// At every parity of the position: a header is aligned to 2.
TYPED_TEST(EveryPlugin, WritesReadsSkipsAndSizesAlike) {
    using Plugin = PluginOf<TypeParam>;
    for (const auto& [id, at] : {std::pair<std::uint16_t, std::size_t>{ZUL_ENCAPSULATION_CDR_BE, 0},
                                 {ZUL_ENCAPSULATION_CDR_LE, 0},
                                 {ZUL_ENCAPSULATION_CDR_LE, 5}}) {
        for (const auto& value : this->values) {
            const std::size_t end = at + Plugin::size(nullptr, true, id, at, &value);
            EXPECT_LE(end, at + Plugin::maximum(nullptr, true, id, at));
            EXPECT_EQ(Plugin::keyMaximum(nullptr, true, id, at), Plugin::maximum(nullptr, true, id, at));
            for (const auto write : {Plugin::serialize, Plugin::serializeKey}) {
                Bytes wire(end);
                ZULCdrOutput small{.data = wire.data(), .capacity = end - 1, .position = at};
                EXPECT_FALSE(write(nullptr, &value, &small, true, id, true, nullptr));
                ZULCdrOutput out{.data = wire.data(), .capacity = end, .position = at};
                ASSERT_TRUE(write(nullptr, &value, &out, true, id, true, nullptr));
                EXPECT_EQ(out.position, end);
                for (const auto read : {Plugin::deserialize, Plugin::deserializeKey, Plugin::toKey}) {
                    typename TestFixture::Value decoded;
                    ASSERT_TRUE(TypeParam::initialize(&decoded));
                    ZULCdrInput in{.data = wire.data(), .size = end, .position = at};
                    EXPECT_TRUE(read(nullptr, &decoded, &in, true, true, nullptr));
                    EXPECT_EQ(this->bytes(decoded), this->bytes(value));
                    TypeParam::finalize(&decoded);
                }
                ZULCdrInput in{.data = wire.data(), .size = end, .position = at};
                EXPECT_TRUE(Plugin::skip(nullptr, &in, true, true, nullptr));
                EXPECT_EQ(in.position, end);
            }
        }
    }
    testing::internal::CaptureStdout();
    Plugin::print(&this->values[0], "one", 0);
    EXPECT_TRUE(testing::internal::GetCapturedStdout().starts_with("one:"));
}

// ---- enumerations ----

template <class Seq, class Values>
void expectValues(Values getValues, const std::vector<int>& expected) {
    Seq values{};
    ASSERT_TRUE(ZULSequence::set_maximum(&values, 5, __func__)); // grows and shrinks alike
    ASSERT_TRUE(getValues(&values));
    EXPECT_EQ(std::vector<int>(values.contiguous, values.contiguous + values.length), expected);
    EXPECT_EQ(values.maximum, values.length);
    EXPECT_FALSE(getValues(nullptr));
    EXPECT_TRUE(ZULSequence::finalize(&values, __func__));
}

TEST(Enumerations, ListTheirValuesAndSelectBranches) {
#define ZUL_VALUES(prefix)                                                                                   \
    expectValues<prefix##CommandKindSeq>(prefix##CommandKind_getValues,                                      \
                                         {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14});                   \
    expectValues<prefix##CommandResponseKindSeq>(prefix##CommandResponseKind_getValues, {0, 1, 2, 3});       \
    for (const int kind : {INT32_MIN, 0, 1, 9, 14, 15}) {                                                    \
        EXPECT_EQ(prefix##Command_isCaseHandled(static_cast<prefix##CommandKind>(kind)),                     \
                  kind >= 1 && kind <= 14)                                                                   \
            << kind;                                                                                         \
    }                                                                                                        \
    EXPECT_EQ(prefix##Command_getDefaultDiscriminator(), 1);
    ZUL_VALUES(ZUL_RoutingService_Administration_)
    ZUL_VALUES(ZUL_FederationService_Administration_)
}

} // namespace
