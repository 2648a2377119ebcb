// The practice router takes any bytes as a document, an update and a new entity: it changes its configuration
// whole or not at all.
#include "practice_router/configuration.h"
#include "product/product_info.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    PracticeConfiguration configuration;
    PracticeConfiguration_load(configuration, bytes, "BuiltinDefault");
    PracticeConfiguration_loadFirst(configuration, *ROUTER_getProductInfo()->builtinDefaultConfiguration);
    const std::string before = PracticeConfiguration_text(configuration);
    const bool isChanged = PracticeConfiguration_update(configuration, "DefaultDomainRoute", bytes).kind ==
                               ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK ||
                           PracticeConfiguration_create(configuration, "DefaultDomainRoute", bytes).kind ==
                               ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    const std::string after = PracticeConfiguration_text(configuration);
    if (!isChanged && after != before) {
        std::abort();
    }
    return 0;
}
