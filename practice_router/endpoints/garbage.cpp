// Blueprints of bad responses, then cut and random ones.
#include "practice_router/endpoints/garbage.h"

#include "middleware/cdr/stream.h"

#include <algorithm>
#include <string_view>

namespace zul::practice {

namespace {

constexpr std::size_t MAX_NOISE = 512;   // bytes
constexpr std::size_t MAX_SAMPLE = 8192; // bytes
constexpr std::int32_t UNKNOWN_KIND = 99;
constexpr std::string_view TEXT = "this is no answer";

// A response sample that is right except for what is set here.
struct Blueprint {
    std::uint16_t encapsulation = ZUL_ENCAPSULATION_CDR_LE;
    std::int32_t kind = 0;
    std::size_t textLength = TEXT.size(); // characters really there
    std::uint32_t lengthField = 0;        // the length that is claimed; 0: the true one
    bool isTerminated = true;
};

constexpr Blueprint BLUEPRINTS[] = {
    {.kind = UNKNOWN_KIND},      // unknown enumerator
    {.kind = -1},                // the same, negative
    {.lengthField = 0xFFFFFFFF}, // text longer than anything
    {.lengthField = 0x7FFFFFFF}, // the largest signed length
    {.lengthField = 5000},       // text longer than the sample, and than its bound
    {.textLength = 4200},        // text really longer than its bound
    {.isTerminated = false},     // text without its NUL
    {.encapsulation = 0x00FF},   // no known encapsulation
    {.encapsulation = ZUL_ENCAPSULATION_PL_CDR_LE, .kind = UNKNOWN_KIND}, // not really a parameter list
    {.encapsulation = ZUL_ENCAPSULATION_CDR_BE}, // byte order swapped: all numbers become others
};

std::vector<std::uint8_t> build(const Blueprint& plan, const RequestId& id) {
    std::vector<std::uint8_t> bytes(MAX_SAMPLE);
    ZULCdrOutput stream{.data = bytes.data(), .capacity = bytes.size()};
    ZULCdrOutput_putEncapsulation(stream, ZUL_ENCAPSULATION_CDR_LE);
    for (const std::int32_t number : {id.host, id.app, id.invocation, plan.kind}) {
        stream.put32(static_cast<std::uint32_t>(number));
    }
    std::string text(TEXT);
    text.resize(plan.textLength, '.');
    const std::size_t lengthAt = stream.position;
    stream.putString(text);
    if (plan.lengthField != 0) {
        stream.store32(lengthAt, plan.lengthField);
    }
    if (!plan.isTerminated) {
        bytes[stream.position - 1] = '!';
    }
    stream.put8(1); // is_final
    bytes.resize(stream.position);
    bytes[0] = static_cast<std::uint8_t>(plan.encapsulation >> 8);
    bytes[1] = static_cast<std::uint8_t>(plan.encapsulation);
    return bytes;
}

} // namespace

std::vector<std::uint8_t> Garbage::next(const RequestId& id) {
    constexpr std::size_t KINDS = std::size(BLUEPRINTS) + 2;
    const std::size_t kind = made_++ % KINDS;
    if (kind < std::size(BLUEPRINTS)) {
        return build(BLUEPRINTS[kind], id);
    }
    // A reader may accept a sample that lacks its last members as an older sender's, so it gets another id.
    std::vector<std::uint8_t> bytes =
        build({}, {.host = ~id.host, .app = id.app, .invocation = id.invocation});
    if (kind == std::size(BLUEPRINTS)) {
        bytes.resize(std::uniform_int_distribution<std::size_t>(1, bytes.size() - 1)(random_));
        return bytes;
    }
    bytes.resize(std::uniform_int_distribution<std::size_t>(1, MAX_NOISE)(random_));
    std::generate(bytes.begin(), bytes.end(), [this] { return static_cast<std::uint8_t>(random_()); });
    return bytes;
}

} // namespace zul::practice
