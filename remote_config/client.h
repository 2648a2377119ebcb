// The remote configuration client: the shell's one connection to the domain in which the routers run. This
// header is the record and its life; exchange.h sends and gathers, entity_commands.h holds the senders.
//
// Construction, sends and destruction belong to one thread. The response listener runs on a thread of the
// middleware and shares with it only `waitingForResponse`, `currentResponse`, the request id and two
// of the semaphores.
#pragma once

#include "admin_types/records.h"
#include "middleware/base/semaphore.h"
#include "middleware/dds/dds.h"

#include <atomic>

constexpr DDS_Long ROUTER_KNOWN_ROUTERS_MAX = 128;

// The client owns everything it refers to. A record of zeroes may be finalised.
struct ROUTERRemoteConfigClient {
    DDS_Long domainId;
    DDS_DomainParticipant* participant; // null when there is no connection
    DDS_Publisher* publisher;
    DDS_Subscriber* subscriber;
    DDS_Topic* commandTopic;
    DDS_Topic* responseTopic;
    DDS_DataWriter* commandWriter;
    DDS_DataReader* responseReader;
    // The one request that every command reuses: senders overwrite target and command and count `invocation`
    // up. The routing module's record in both variants (oddity 18).
    ZUL_RoutingService_Administration_CommandRequest* commandSample;
    ZULSemaphore* responseReadySemaphore; // given when a response is handed over, or a wait is aborted
    ZULSemaphore* responseTakenSemaphore; // given when the handed-over response has been consumed
    ZULSemaphore* spareSemaphore;         // never used (oddity 20)
    bool noResponseWait;                  // sends return right after writing; nothing sets it
    std::atomic<bool> waitingForResponse; // a request awaits responses
    // The sample being handed over, on loan from the reader: valid until `responseTakenSemaphore` is given.
    std::atomic<const ZUL_RoutingService_Administration_CommandResponse*> currentResponse;
    ZULTime responseTimeout;   // longest wait for one response
    DDS_Long knownRouterIndex; // next slot to fill, 0..127
    // The most recent router names, owned; the slot after the ring stays null and ends every scan.
    char* knownRouters[ROUTER_KNOWN_ROUTERS_MAX + 1];
    ZULTypePlugin* commandTypePlugin;
    ZULTypePlugin* responseTypePlugin;
};

// Allocates and initialises; null, with a log line, on failure.
ROUTERRemoteConfigClient* ROUTERRemoteConfigClient_new(DDS_Long domainId, DDS_Long timeoutSeconds);
// Finalises and frees a record made by `_new`.
void ROUTERRemoteConfigClient_delete(ROUTERRemoteConfigClient* self);

// Creates the semaphores and connects. Takes the record as raw memory. On failure no DDS entity is left, but
// `finalize` is still due for the semaphores. `timeoutSeconds`: see ZULTime.
bool ROUTERRemoteConfigClient_initialize(ROUTERRemoteConfigClient* self, DDS_Long domainId,
                                         DDS_Long timeoutSeconds);
// Disconnects and deletes the semaphores, but keeps the names of known routers (oddity 14). False when an
// entity could not be deleted; the semaphores then stay.
bool ROUTERRemoteConfigClient_finalize(ROUTERRemoteConfigClient* self);

// The two halves of the above that deal with DDS.
bool ROUTERRemoteConfigClient_createConnection(ROUTERRemoteConfigClient* self);
bool ROUTERRemoteConfigClient_closeConnection(ROUTERRemoteConfigClient* self);
