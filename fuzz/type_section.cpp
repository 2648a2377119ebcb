// Any bytes as a document with a types section: type codes, or an error.
#include "middleware/xml/parser.h"
#include "middleware/xml/type_reader.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ZULXMLDocument* document = ZULXMLParser_readText(nullptr, {reinterpret_cast<const char*>(data), size});
    if (document->root != nullptr) {
        ZULXMLTypeSet types;
        ZULXMLError error;
        zul::xml::TypeReader(types, error).read(*document);
    }
    ZULXMLDocument_delete(document);
    return 0;
}
