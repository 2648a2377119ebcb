// What is derived for every type, through the named operations: values, plugins and sizes.
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

template <class Idl>
struct Filled {
    Filled(int seed) {
        EXPECT_TRUE(zul::idl::initialize(Idl{}, value, DDS_TYPE_ALLOCATION_PARAMS_DEFAULT));
        fill(Idl{}, value, seed);
    }
    ~Filled() { zul::idl::finalize(Idl{}, value); }
    typename Idl::Value value;
};
// A form to compare: the encoded bytes.
template <class Idl>
Bytes bytesOf(Idl, const typename Idl::Value& value) {
    Bytes out(8192);
    ZULCdrOutput stream{.data = out.data(), .capacity = out.size()};
    EXPECT_TRUE(zul::idl::PluginOperations<Idl>::serializeSample(nullptr, value, stream, true, 1, true));
    out.resize(stream.position);
    return out;
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

// At every parity of the position: a header is aligned to 2, and members count from after it.
template <class Idl>
void expectOperations(Idl type, std::string_view name, auto initialize, auto finalize, auto reset,
                      auto copyValue, const auto& writes, const auto& reads, auto skip, auto size,
                      auto largestSample, auto largestKey, auto smallestSample) {
    const Bounds* bounds = BOUNDS;
    while (!name.ends_with(std::string("_") + bounds->type)) {
        ASSERT_NE(++bounds, std::end(BOUNDS));
    }
    const Filled<Idl> values[] = {1, 2, 3, 4};
    typename Idl::Value copy;
    ASSERT_TRUE(initialize(&copy));
    const Bytes initial = bytesOf(type, copy);
    EXPECT_NE(bytesOf(type, values[1].value), initial);
    EXPECT_FALSE(copyValue(nullptr, &values[1].value) || copyValue(&copy, nullptr));
    for (std::size_t at = 0; at < 16; ++at) {
        SCOPED_TRACE(std::string(name) + " at " + std::to_string(at));
        const bool header = at < 8;
        const auto id = static_cast<std::uint16_t>(at % 4);
        // Without a header, a value that begins with a boolean takes up part of its own padding.
        const std::size_t extra = header                   ? 4 + at % 2
                                  : bounds->alignment == 4 ? (4 - at % 4) % 4
                                                           : 0 - at % 4;
        EXPECT_EQ(largestSample(nullptr, header, id, at), bounds->largest + extra);
        EXPECT_EQ(largestKey(nullptr, header, id, at), bounds->largest + extra);
        EXPECT_EQ(smallestSample(nullptr, header, id, at), bounds->smallest + extra);
        EXPECT_EQ(largestSample(nullptr, true, 4, at), 1U);
        EXPECT_EQ(size(nullptr, true, 4, at, &copy), 1U);
        for (const auto& [value] : values) {
            EXPECT_TRUE(copyValue(&copy, &value));
            EXPECT_EQ(bytesOf(type, copy), bytesOf(type, value));
            const std::size_t end = at + size(nullptr, header, id, at, &value);
            EXPECT_LE(end, at + bounds->largest + extra);
            for (const auto write : writes) {
                Bytes wire(end);
                ZULCdrOutput small{.data = wire.data(), .capacity = end - 1, .position = at};
                EXPECT_FALSE(write(nullptr, &value, &small, header, id, true, nullptr));
                ZULCdrOutput out{.data = wire.data(), .capacity = end, .position = at};
                ASSERT_TRUE(write(nullptr, &value, &out, header, id, true, nullptr));
                EXPECT_EQ(out.position, end);
                const ZULCdrInput start{.data = wire.data(), .size = end, .position = at};
                for (const auto read : reads) {
                    EXPECT_TRUE(reset(&copy, false, false));
                    EXPECT_EQ(bytesOf(type, copy), initial);
                    ZULCdrInput in = start;
                    EXPECT_TRUE(read(nullptr, &copy, &in, header, true, nullptr));
                    EXPECT_EQ(bytesOf(type, copy), bytesOf(type, value));
                }
                ZULCdrInput in = start;
                EXPECT_TRUE(skip(nullptr, &in, header, true, nullptr));
                EXPECT_EQ(in.position, end);
            }
        }
    }
    finalize(&copy);
}

#define ZUL_TEXT_OF(name) #name
#define ZUL_TEXT(name) ZUL_TEXT_OF(name)
#define ZUL_TEMPLATE "tests/admin_types/every_type.inc"

TEST(EveryType, AValueThatIsNotCopiedResetWrittenReadSkippedOrSizedAlike){
#include "admin_types/family/routing_types.inc"
}

TEST(Enumerations, AValueOrABranchThatIsMissing) {
    ZUL_RoutingService_Administration_CommandKindSeq values{};
    ASSERT_TRUE(ZULSequence::set_maximum(&values, 20, __func__)); // shrinks as well as it grows
    ASSERT_TRUE(ZUL_RoutingService_Administration_CommandKind_getValues(&values));
    EXPECT_TRUE(values.length == 14 && values.maximum == 14);
    for (int kind = 0; kind <= 15; ++kind) {
        const auto asKind = static_cast<ZUL_RoutingService_Administration_CommandKind>(kind);
        const bool isKind = kind >= 1 && kind <= values.length;
        EXPECT_TRUE(!isKind || values.contiguous[kind - 1] == kind) << kind;
        EXPECT_EQ(ZUL_RoutingService_Administration_Command_isCaseHandled(asKind), isKind) << kind;
    }
    EXPECT_TRUE(ZULSequence::finalize(&values, __func__));
    EXPECT_FALSE(ZUL_RoutingService_Administration_CommandKind_getValues(nullptr));
    EXPECT_EQ(ZUL_FederationService_Administration_Command_getDefaultDiscriminator(), 1);
}

} // namespace
