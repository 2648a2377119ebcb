// What is derived for every type, through the named operations: values, plugins and sizes, sequences.
#include "admin_types/plugins.h"
#include "tests/admin_types/samples.h"

#include <gtest/gtest.h>

namespace {

// Fills a value with what differs from its default and, by `seed`, from other values.
template <class IdlType, class Value>
void fill(IdlType, Value& value, int seed) {
    const auto fillMember = [seed](auto type, const auto&, auto& member) {
        fill(type, member, seed);
    };
    if constexpr (std::is_same_v<Value, char*>) {
        set(value, std::string(static_cast<std::size_t>(seed), 'n'));
    } else if constexpr (std::is_same_v<Value, DDS_StringSeq>) {
        ASSERT_TRUE(ZULSequence::set_length(&value, seed, __func__));
        for (DDS_Long i = 0; i < seed; ++i) {
            set(value.contiguous[i], std::string(static_cast<std::size_t>(seed + i), 'n'));
        }
    } else if constexpr (requires { value._d; }) {
        value._d =
            static_cast<decltype(value._d)>(std::array{1, 7, 9, 14}.at(seed % 4)); // one of each branch
        zul::idl::forSelectedBranch(value, fillMember);
    } else if constexpr (std::is_class_v<Value>) {
        zul::idl::forEachMember(value, fillMember);
    } else {
        value = static_cast<Value>(std::is_same_v<Value, DDS_Boolean> ? 1 : 1 + seed % 3);
    }
}

// Four values of a type, filled differently.
template <class Idl>
struct Values {
    Values() {
        int seed = 0;
        for (auto& value : each) {
            EXPECT_TRUE(zul::idl::initialize(Idl{}, value, DDS_TYPE_ALLOCATION_PARAMS_DEFAULT));
            fill(Idl{}, value, ++seed);
        }
    }
    ~Values() {
        for (auto& value : each) {
            zul::idl::finalize(Idl{}, value);
        }
    }
    typename Idl::Value each[4];
};
// A text form to compare: the encoded bytes.
template <class Idl>
Bytes bytesOf(Idl, const typename Idl::Value& value) {
    Bytes out(8192);
    ZULCdrOutput stream{.data = out.data(), .capacity = out.size()};
    EXPECT_TRUE(zul::idl::PluginOperations<Idl>::serializeSample(nullptr, value, stream, true, 1, true));
    out.resize(stream.position);
    return out;
}

template <class Idl>
void expectCopiesAndResets(Idl type, auto initialize, auto finalize, auto initializeEx, auto copyValue) {
    Values<Idl> values;
    typename Idl::Value copy;
    ASSERT_TRUE(initialize(&copy));
    const Bytes initial = bytesOf(type, copy);
    const Bytes filled = bytesOf(type, values.each[1]);
    EXPECT_NE(initial, filled);
    EXPECT_TRUE(copyValue(&copy, &values.each[1]));
    EXPECT_EQ(bytesOf(type, copy), filled);
    EXPECT_TRUE(initializeEx(&copy, false, false));
    EXPECT_EQ(bytesOf(type, copy), initial);
    finalize(&copy);
    EXPECT_FALSE(copyValue(nullptr, &values.each[1]) || copyValue(&values.each[1], nullptr));
}

// The numbers that endpoints of other makers reckon with.
struct Bounds {
    const char* type;
    std::size_t largest, smallest;
    std::size_t alignment = 4; // of the first member
};
const Bounds BOUNDS[] = {
    {"EntityName", 260, 5},          {"XmlUrl", 4105, 9, 1},
    {"EntityDescription", 4365, 13}, {"PeerUpdateDescription", 4428, 12},
    {"CommandKind", 4, 4},           {"CommandResponseKind", 4, 4},
    {"CommandId", 12, 12},           {"Command", 4468, 28},
    {"CommandRequest", 4788, 88},    {"CommandResponse", 4118, 22},
};

template <class Write, class Read, class Skip, class Size, class Bound, class Print>
struct Plugin {
    Write write[2];
    Read read[3];
    Skip skip;
    Size size;
    Bound bounds[3]; // largest sample, largest key, smallest sample
    Print print;
};

// At every parity of the position: a header is aligned to 2, and members count from after it.
template <class Idl>
void expectPlugin(Idl type, std::string_view name, const auto& plugin) {
    const Bounds* bounds = BOUNDS;
    while (!name.ends_with(std::string("_") + bounds->type)) {
        ASSERT_NE(++bounds, std::end(BOUNDS));
    }
    const Values<Idl> values;
    for (std::size_t at = 0; at < 16; ++at) {
        SCOPED_TRACE(std::string(name) + " at " + std::to_string(at));
        const bool header = at < 8;
        const auto id = static_cast<std::uint16_t>(at % 4);
        // Without a header, a value that begins with a boolean takes up part of its own padding.
        const std::size_t extra = header                   ? 4 + at % 2
                                  : bounds->alignment == 4 ? (4 - at % 4) % 4
                                                           : 0 - at % 4;
        EXPECT_EQ(plugin.bounds[0](nullptr, header, id, at), bounds->largest + extra);
        EXPECT_EQ(plugin.bounds[1](nullptr, header, id, at), bounds->largest + extra);
        EXPECT_EQ(plugin.bounds[2](nullptr, header, id, at), bounds->smallest + extra);
        EXPECT_EQ(plugin.bounds[0](nullptr, true, 4, at), 1U);
        EXPECT_EQ(plugin.size(nullptr, true, 4, at, &values.each[0]), 1U);
        for (const auto& value : values.each) {
            const std::size_t end = at + plugin.size(nullptr, header, id, at, &value);
            EXPECT_LE(end, at + bounds->largest + extra);
            for (const auto write : plugin.write) {
                Bytes wire(end);
                ZULCdrOutput small{.data = wire.data(), .capacity = end - 1, .position = at};
                EXPECT_FALSE(write(nullptr, &value, &small, header, id, true, nullptr));
                ZULCdrOutput out{.data = wire.data(), .capacity = end, .position = at};
                ASSERT_TRUE(write(nullptr, &value, &out, header, id, true, nullptr));
                EXPECT_EQ(out.position, end);
                const ZULCdrInput start{.data = wire.data(), .size = end, .position = at};
                for (const auto read : plugin.read) {
                    Values<Idl> decoded;
                    ZULCdrInput in = start;
                    EXPECT_TRUE(read(nullptr, &decoded.each[0], &in, header, true, nullptr));
                    EXPECT_EQ(bytesOf(type, decoded.each[0]), bytesOf(type, value));
                }
                ZULCdrInput in = start;
                EXPECT_TRUE(plugin.skip(nullptr, &in, header, true, nullptr));
                EXPECT_EQ(in.position, end);
            }
        }
    }
    testing::internal::CaptureStdout();
    plugin.print(&values.each[0], "one", 0);
    EXPECT_TRUE(testing::internal::GetCapturedStdout().starts_with("one:"));
}

#define ZUL_TEXT_OF(name) #name
#define ZUL_TEXT(name) ZUL_TEXT_OF(name)
#define ZUL_TEMPLATE "tests/admin_types/every_type.inc"

TEST(EveryType, AValueThatIsNotCopiedResetWrittenReadSkippedOrSizedAlike){
#include "admin_types/family/federation_types.inc"
#define ZUL_MEMBER_PLUGINS
#include "admin_types/family/routing_types.inc"
}

// One template defines the sequence operations of every type: one type shows that each goes where it should.
#define ZUL_RESPONSES(operation) ZUL_RoutingService_Administration_CommandResponseSeq##operation
TEST(NamedSequence, AnOperationThatForwardsToAnother) {
    using Seq = ZUL_RESPONSES();
    Values<zul::idl::Struct<Response>> values;
    Response* const elements = values.each;
    Seq loan{}, own{};
    ASSERT_TRUE(ZUL_RESPONSES(_loan_contiguous)(&loan, elements, 2, 4));
    EXPECT_FALSE(ZUL_RESPONSES(_has_ownership)(&loan));
    EXPECT_EQ(ZUL_RESPONSES(_get_length)(&loan), 2);
    EXPECT_EQ(ZUL_RESPONSES(_get_maximum)(&loan), 4);
    EXPECT_EQ(ZUL_RESPONSES(_get_reference)(&loan, 1), &elements[1]);
    EXPECT_EQ(ZUL_RESPONSES(_get)(&loan, 1).message, elements[1].message);
    void* tokens[2] = {&loan, &own};
    ZUL_RESPONSES(_set_read_token)(&loan, tokens[0], tokens[1]);
    ZUL_RESPONSES(_get_read_token)(&loan, &tokens[1], &tokens[0]);
    EXPECT_TRUE(tokens[0] == &own && tokens[1] == &loan);
    EXPECT_EQ(ZUL_RESPONSES(_copy_no_alloc)(&own, &loan), nullptr); // no room
    EXPECT_EQ(ZUL_RESPONSES(_copy)(&own, &loan), &own);
    ASSERT_TRUE(ZUL_RESPONSES(_unloan)(&loan));

    Response* reversed[] = {&elements[1], &elements[0]};
    ASSERT_TRUE(ZUL_RESPONSES(_loan_discontiguous)(&loan, reversed, 2, 2));
    EXPECT_TRUE(ZUL_RESPONSES(_to_array)(&loan, own.contiguous, 2));
    EXPECT_EQ(text(own.contiguous[0]), text(elements[1]));
    ASSERT_TRUE(ZUL_RESPONSES(_unloan)(&loan));
    EXPECT_TRUE(ZUL_RESPONSES(_from_array)(&own, elements, 2));
    EXPECT_EQ(text(own.contiguous[0]), text(elements[0]));

    // Exhausted memory at any element leaves the old elements whole.
    bool isGrown = false;
    for (long allocations = 0; !isGrown; ++allocations) {
        ZULHeap_failAfter(allocations);
        isGrown = ZUL_RESPONSES(_set_maximum)(&own, 3);
        ZULHeap_failAfter(-1);
        ASSERT_EQ(own.maximum, isGrown ? 3 : 2);
        EXPECT_EQ(text(own.contiguous[1]), text(elements[1]));
    }
    EXPECT_FALSE(ZUL_RESPONSES(_set_length)(&own, 4));
    EXPECT_TRUE(ZUL_RESPONSES(_ensure_length)(&own, 4, 5));
    EXPECT_EQ(own.maximum, 5);

    // Elements are allocated as the parameters say.
    const DDS_TypeAllocationParams_t bare{};
    DDS_TypeAllocationParams_t got{};
    EXPECT_TRUE(ZUL_RESPONSES(_get_element_allocation_params)(&own, &got));
    EXPECT_EQ(got.allocate_memory, 1);
    ASSERT_TRUE(ZUL_RESPONSES(_set_element_allocation_params)(&loan, &bare));
    ZULHeap_failAfter(1); // one array, and nothing for its elements
    EXPECT_TRUE(ZUL_RESPONSES(_set_maximum)(&loan, 2));
    ZULHeap_failAfter(-1);
    EXPECT_TRUE(ZUL_RESPONSES(_finalize)(&own) && ZUL_RESPONSES(_finalize)(&loan));
}

TEST(Enumerations, AValueOrABranchThatIsMissing) {
    ZUL_RoutingService_Administration_CommandKindSeq values{};
    ASSERT_TRUE(ZULSequence::set_maximum(&values, 20, __func__)); // shrinks as well as it grows
    ASSERT_TRUE(ZUL_RoutingService_Administration_CommandKind_getValues(&values));
    EXPECT_TRUE(values.length == 14 && values.maximum == 14);
    for (const int kind : {INT32_MIN, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}) {
        const bool isKind = kind >= 1 && kind <= values.length;
        EXPECT_TRUE(!isKind || values.contiguous[kind - 1] == kind) << kind;
        EXPECT_EQ(ZUL_RoutingService_Administration_Command_isCaseHandled(
                      static_cast<ZUL_RoutingService_Administration_CommandKind>(kind)),
                  isKind)
            << kind;
    }
    EXPECT_TRUE(ZULSequence::finalize(&values, __func__));
    EXPECT_FALSE(ZUL_RoutingService_Administration_CommandKind_getValues(nullptr));
    EXPECT_EQ(ZUL_FederationService_Administration_Command_getDefaultDiscriminator(), 1);
}

} // namespace
