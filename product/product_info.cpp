// The two rows of the product table. A row's type and topic names follow from two spellings of its service.
#include "product/product_info.h"

#include "product/default_configuration.h"
#include "product/dtd.h"

// Of the monitoring names only the service's own status and data repeat its name after the module.
#define ZUL_ADMINISTRATION_NAMES(Camel, snake)                                                               \
    .administrationRequestTypeName = "ZUL::" Camel "::Administration::CommandRequest",                       \
    .administrationRequestTopicName = "zul/" snake "/administration/command_request",                        \
    .administrationResponseTypeName = "ZUL::" Camel "::Administration::CommandResponse",                     \
    .administrationResponseTopicName = "zul/" snake "/administration/command_response"
#define ZUL_MONITORING_PAIR(Camel, snake, Type, topic)                                                       \
    { "ZUL::" Camel "::Monitoring::" Type, "zul/" snake "/monitoring/" topic }
#define ZUL_MONITORING_NAMES(Camel, snake)                                                                   \
    .monitoring = {                                                                                          \
        ZUL_MONITORING_PAIR(Camel, snake, "RouteStatusSet", "route_status_set"),                             \
        ZUL_MONITORING_PAIR(Camel, snake, "DomainRouteStatusSet", "domain_route_status_set"),                \
        ZUL_MONITORING_PAIR(Camel, snake, "AutoRouteStatusSet", "auto_route_status_set"),                    \
        ZUL_MONITORING_PAIR(Camel, snake, Camel "StatusSet", snake "_status_set"),                           \
        ZUL_MONITORING_PAIR(Camel, snake, "SessionStatusSet", "session_status_set"),                         \
        ZUL_MONITORING_PAIR(Camel, snake, "RouteData", "route_data"),                                        \
        ZUL_MONITORING_PAIR(Camel, snake, "DomainRouteData", "domain_route_data"),                           \
        ZUL_MONITORING_PAIR(Camel, snake, "AutoRouteData", "auto_route_data"),                               \
        ZUL_MONITORING_PAIR(Camel, snake, Camel "Data", snake "_data"),                                      \
        ZUL_MONITORING_PAIR(Camel, snake, "SessionData", "session_data"),                                    \
    }

const ROUTERProductInfo ROUTER_g_productInfo[2] = {
    {
        .serviceExecutableName = "zulroutingservice",
        .shellProgramName = "zulrssh",
        .productName = "ZUL Routing Service",
        .serviceName = "routing service",
        .productNameUnderscored = "ZUL_Routing_Service",
        .xmlTagName = "routing_service",
        .dtdChunks = ROUTER_DTD,
        .dtdChunkCount = ROUTER_DTD_CHUNK_COUNT,
        .defaultXmlFilePath = "../../resource/xml/ZUL_ROUTING_SERVICE.xml",
        .builtinDefaultConfiguration = &ROUTER_g_routingServiceDefaultConfiguration,
        .userXmlFileName = "USER_ROUTING_SERVICE.xml",
        ZUL_ADMINISTRATION_NAMES("RoutingService", "routing_service"),
        ZUL_MONITORING_NAMES("RoutingService", "routing_service"),
    },
    {
        .serviceExecutableName = "zulfederationservice",
        .shellProgramName = "zulfssh",
        .productName = "ZUL Federation Service",
        .serviceName = "federation service",
        .productNameUnderscored = "ZUL_Federation_Service",
        .xmlTagName = "federation_service",
        .dtdChunks = FEDERATION_DTD,
        .dtdChunkCount = FEDERATION_DTD_CHUNK_COUNT,
        .defaultXmlFilePath = "../../resource/xml/ZUL_FEDERATION_SERVICE.xml",
        .builtinDefaultConfiguration = &ROUTER_g_federationServiceDefaultConfiguration,
        .userXmlFileName = "USER_FEDERATION_SERVICE.xml",
        ZUL_ADMINISTRATION_NAMES("FederationService", "federation_service"),
        ZUL_MONITORING_NAMES("FederationService", "federation_service"),
    },
};

std::int32_t ROUTER_g_productId = ROUTER_PRODUCT_ROUTING_SERVICE;

void ROUTER_setProductId(std::int32_t productId) {
    ROUTER_g_productId = productId;
}

std::int32_t ROUTER_getProductId() {
    return ROUTER_g_productId;
}

const ROUTERProductInfo* ROUTER_getProductInfo() {
    return &ROUTER_g_productInfo[ROUTER_g_productId];
}
