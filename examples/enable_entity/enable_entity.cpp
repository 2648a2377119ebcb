// enable_entity DOMAIN ROUTER ENTITY: enables an entity of a router and says what the router answered.
#include <cstdio>
#include <cstdlib>
#include <remote_config/entity_commands.h>
#include <remote_config/exchange.h>

int main(int count, char** arguments) {
    auto* client = count == 4 ? ROUTERRemoteConfigClient_new(std::atoi(arguments[1]), 10) : nullptr;
    if (client == nullptr) {
        std::fprintf(stderr, "usage: enable_entity DOMAIN ROUTER ENTITY\n");
        return EXIT_FAILURE;
    }
    for (int i = 0; i < 500 && !ROUTERRemoteConfigClient_hasMatchingServer(client); ++i) {
        ZULSleep(0, 10'000'000); // up to five seconds, until a router is discovered
    }
    ROUTERRemoteConfigResult result;
    ROUTERRemoteConfigResult_initialize(&result);
    const bool answered =
        ROUTERRemoteConfigClient_sendCommandEnable(client, arguments[2], arguments[3], &result);
    std::printf("%s\n", result.text != nullptr ? result.text : answered ? "OK" : "no response");
    const bool enabled = answered && result.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    ROUTERRemoteConfigResult_finalize(&result);
    ROUTERRemoteConfigClient_delete(client);
    return enabled ? EXIT_SUCCESS : EXIT_FAILURE;
}
