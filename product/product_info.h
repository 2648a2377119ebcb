// The product variants: one record of names per variant, shared by the shell and the service programs, and
// the process-wide product id that selects it. The id is set at start, or before each command,
// while no other thread reads it.
#pragma once

#include <cstdint>

constexpr std::int32_t ROUTER_PRODUCT_ROUTING_SERVICE = 0;
constexpr std::int32_t ROUTER_PRODUCT_FEDERATION_SERVICE = 1;

struct ROUTERMonitoringNames {
    const char* monitoringTypeName;
    const char* monitoringTopicName;
};

// All texts are constant and live for ever.
struct ROUTERProductInfo {
    const char* serviceExecutableName;
    const char* shellProgramName;
    const char* productName; // for display
    const char* serviceName;
    const char* productNameUnderscored;
    const char* xmlTagName;       // element of a service instance in a configuration document
    const char* const* dtdChunks; // the document type definition is the concatenation of all chunks
    std::int32_t dtdChunkCount;
    const char* defaultXmlFilePath;
    const char* const* builtinDefaultConfiguration;
    const char* userXmlFileName;
    const char* administrationRequestTypeName;
    const char* administrationRequestTopicName;
    const char* administrationResponseTypeName;
    const char* administrationResponseTopicName;
    // Route, domain route, auto route, service and session status; then the data of each.
    ROUTERMonitoringNames monitoring[10];
};

extern const ROUTERProductInfo ROUTER_g_productInfo[2]; // by product id
extern std::int32_t ROUTER_g_productId;

// No range check: only 0 and 1 are valid.
void ROUTER_setProductId(std::int32_t productId);
std::int32_t ROUTER_getProductId();
const ROUTERProductInfo* ROUTER_getProductInfo();
