// Any bytes as a document with a types section: type codes, or an error.
#include "middleware/xml/type_reader.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ZULXMLError error;
    ZULXMLTypeReader_check(data, size, &error);
    return 0;
}
