// enable_entity DOMAIN ROUTER ENTITY: enables an entity of a router and says what became of it.
//
// A request that is sent before the addressed router is discovered is lost. The client can tell that some
// router is there, not which, so the addressed one is first asked for its configuration, which changes
// nothing, until it answers.
#include <cstdio>
#include <cstdlib>
#include <remote_config/entity_commands.h>
#include <remote_config/exchange.h>

static constexpr int ANSWER_SECONDS = 5;   // time-out of each request
static constexpr int DISCOVERY_POLLS = 50; // of 100 ms
static constexpr int QUESTIONS = 3;

static bool routerAnswers(ROUTERRemoteConfigClient* client, const char* router) {
    for (int i = 0; i < DISCOVERY_POLLS && !ROUTERRemoteConfigClient_hasMatchingServer(client); ++i) {
        ZULSleep(0, 100'000'000);
    }
    ROUTERRemoteConfigResult result;
    ROUTERRemoteConfigResult_initialize(&result);
    bool answered = false;
    for (int i = 0; i < QUESTIONS && !answered; ++i) {
        answered = ROUTERRemoteConfigClient_sendCommandGet(client, router, &result);
        ROUTERRemoteConfigResult_finalize(&result); // the next one would forget a long text
    }
    return answered;
}

static bool enable(ROUTERRemoteConfigClient* client, const char* router, const char* entity) {
    ROUTERRemoteConfigResult result;
    ROUTERRemoteConfigResult_initialize(&result);
    const bool answered = ROUTERRemoteConfigClient_sendCommandEnable(client, router, entity, &result);
    const bool enabled = answered && result.kind == ZUL_ROUTING_SERVICE_COMMAND_RESPONSE_OK;
    const char* text = result.text != nullptr ? result.text : "no reason given";
    if (enabled) {
        std::printf("%s: enabled %s\n", router, entity);
    } else if (answered) {
        std::fprintf(stderr, "%s did not enable %s: %s\n", router, entity, text);
    } else {
        std::fprintf(stderr, "%s did not say within %d s whether it enabled %s\n", router, ANSWER_SECONDS,
                     entity);
    }
    ROUTERRemoteConfigResult_finalize(&result);
    return enabled;
}

int main(int count, char** arguments) {
    char* end = nullptr;
    const long domain = count == 4 ? std::strtol(arguments[1], &end, 10) : -1;
    if (end == nullptr || end == arguments[1] || *end != '\0' || domain < 0 || domain > 232) {
        std::fprintf(stderr, "usage: enable_entity DOMAIN ROUTER ENTITY, with a DOMAIN of 0 to 232\n");
        return EXIT_FAILURE;
    }
    auto* client = ROUTERRemoteConfigClient_new(static_cast<int>(domain), ANSWER_SECONDS);
    if (client == nullptr) {
        std::fprintf(stderr, "cannot join domain %ld; the log line above names the step that failed\n",
                     domain);
        return EXIT_FAILURE;
    }
    bool enabled = false;
    if (routerAnswers(client, arguments[2])) {
        enabled = enable(client, arguments[2], arguments[3]);
    } else {
        std::fprintf(stderr,
                     "no answer from %s in domain %ld: is it running there, and reachable from here?\n",
                     arguments[2], domain);
    }
    ROUTERRemoteConfigClient_delete(client);
    return enabled ? EXIT_SUCCESS : EXIT_FAILURE;
}
