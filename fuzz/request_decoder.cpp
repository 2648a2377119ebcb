#include "fuzz/decoder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Decoder<ZUL_RoutingService_Administration_CommandRequest> decoder;
    return decoder(data, size);
}
