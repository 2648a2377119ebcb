// Encoding and decoding of the administration samples through the type plugin, against Fast CDR writing and
// reading the same fields: strings as generated code for that library holds them, every object reused, one
// stream object a sample. A request's parameter headers are ours alone: that library writes its fields
// without any.
#include "benchmarks/samples.h"

#include <benchmark/benchmark.h>
#include <fastcdr/Cdr.h>
#include <fastcdr/FastBuffer.h>
#include <string>

namespace {

using eprosima::fastcdr::Cdr;
using eprosima::fastcdr::FastBuffer;

constexpr DDS_Long ID = 0x01020304;
constexpr std::size_t BUFFER_SIZE = 8192;

struct PlainId {
    std::int32_t host = ID;
    std::int32_t app = ID;
    std::int32_t invocation = ID;
};
struct PlainRequest {
    PlainId id;
    std::string targetRouter;
    std::int32_t kind = 0;
    std::string entityName;
};
struct PlainResponse {
    PlainId id;
    std::int32_t kind = 0;
    std::string message;
    bool isFinal = false;
};
void put(Cdr& stream, const PlainId& id) {
    stream << id.host << id.app << id.invocation;
}
void put(Cdr& stream, const PlainRequest& request) {
    put(stream, request.id);
    stream << request.targetRouter << request.kind << request.entityName;
}
void put(Cdr& stream, const PlainResponse& response) {
    put(stream, response.id);
    stream << response.kind << response.message << response.isFinal;
}
void get(Cdr& stream, PlainId& id) {
    stream >> id.host >> id.app >> id.invocation;
}
void get(Cdr& stream, PlainRequest& request) {
    get(stream, request.id);
    stream >> request.targetRouter >> request.kind >> request.entityName;
}
void get(Cdr& stream, PlainResponse& response) {
    get(stream, response.id);
    stream >> response.kind >> response.message >> response.isFinal;
}

// What one measurement of a type needs of each side.
struct RequestCase {
    static ZULTypePlugin* newPlugin() { return ZUL_RoutingService_Administration_CommandRequestPlugin_new(); }
    static samples::RequestPtr ours() { return samples::enableRequest(ID); }
    static PlainRequest plain() {
        return {.id = {},
                .targetRouter = samples::ROUTER,
                .kind = ZUL_ROUTING_SERVICE_COMMAND_ENABLE,
                .entityName = samples::ENTITY};
    }
};
struct ResponseCase {
    static ZULTypePlugin* newPlugin() {
        return ZUL_RoutingService_Administration_CommandResponsePlugin_new();
    }
    static std::string message() { return std::string(admin::XML_CONTENT_BOUND, 'x'); }
    static samples::ResponsePtr ours() { return samples::response(ID, message()); }
    static PlainResponse plain() { return {.id = {}, .kind = 0, .message = message(), .isFinal = true}; }
};

template <class Case>
void encodeOurs(benchmark::State& state) {
    const samples::Codec codec(Case::newPlugin());
    const auto sample = Case::ours();
    raw::Bytes buffer(BUFFER_SIZE);
    for (auto _ : state) {
        benchmark::DoNotOptimize(codec.encode(sample.get(), buffer.data(), buffer.size()));
        benchmark::ClobberMemory();
    }
}

template <class Case>
void decodeOurs(benchmark::State& state) {
    const samples::Codec codec(Case::newPlugin());
    const auto sample = Case::ours();
    raw::Bytes buffer(BUFFER_SIZE);
    const std::size_t size = codec.encode(sample.get(), buffer.data(), buffer.size());
    for (auto _ : state) {
        if (!codec.decode(buffer.data(), size, sample.get())) {
            state.SkipWithError("a sample could not be decoded");
            break;
        }
        benchmark::ClobberMemory();
    }
}

template <class Plain>
std::size_t encodePlain(const Plain& sample, raw::Bytes& buffer) {
    FastBuffer memory(reinterpret_cast<char*>(buffer.data()), buffer.size());
    Cdr stream(memory, Cdr::LITTLE_ENDIANNESS, Cdr::DDS_CDR);
    stream.serialize_encapsulation();
    put(stream, sample);
    return stream.getSerializedDataLength();
}

template <class Case>
void encodeBaseline(benchmark::State& state) {
    const auto sample = Case::plain();
    raw::Bytes buffer(BUFFER_SIZE);
    for (auto _ : state) {
        benchmark::DoNotOptimize(encodePlain(sample, buffer));
        benchmark::ClobberMemory();
    }
}

template <class Case>
void decodeBaseline(benchmark::State& state) {
    auto sample = Case::plain();
    raw::Bytes buffer(BUFFER_SIZE);
    const std::size_t size = encodePlain(sample, buffer);
    for (auto _ : state) {
        FastBuffer memory(reinterpret_cast<char*>(buffer.data()), size);
        Cdr stream(memory, Cdr::LITTLE_ENDIANNESS, Cdr::DDS_CDR);
        stream.read_encapsulation();
        get(stream, sample);
        benchmark::DoNotOptimize(sample);
        benchmark::ClobberMemory();
    }
}

BENCHMARK(encodeOurs<RequestCase>)->Name("encode_request/ours");
BENCHMARK(encodeBaseline<RequestCase>)->Name("encode_request/baseline");
BENCHMARK(decodeOurs<RequestCase>)->Name("decode_request/ours");
BENCHMARK(decodeBaseline<RequestCase>)->Name("decode_request/baseline");
BENCHMARK(encodeOurs<ResponseCase>)->Name("encode_response/ours");
BENCHMARK(encodeBaseline<ResponseCase>)->Name("encode_response/baseline");
BENCHMARK(decodeOurs<ResponseCase>)->Name("decode_response/ours");
BENCHMARK(decodeBaseline<ResponseCase>)->Name("decode_response/baseline");

} // namespace
