// The exchange: writes the prepared request, recognises the responses that answer it, and gathers them.
//
// A request is identified by the `id` of `commandSample`: `host` and `app` are the connection's, `invocation`
// counts requests. Only a response with exactly that id is ever credited to it.
#pragma once

#include "remote_config/client.h"
#include "remote_config/result.h"

// Counts the request's `invocation` up by one, as a sender does right before it hands its request over.
void ROUTERRemoteConfigClient_nextInvocation(ROUTERRemoteConfigClient* self);

// Writes `commandSample`, whose target, command and `invocation` the caller has set, and with `wait` gathers
// responses into `result` until a final one. True: a final response arrived, nothing was to be waited for, or
// the wait was interrupted (kind 0, "Response not received" in `textBuffer`). False: the write failed, or no
// response came within `responseTimeout`, which starts afresh for every response, or memory or a
// semaphore failed.
bool ROUTERRemoteConfigClient_sendCommandRequest(ROUTERRemoteConfigClient* self,
                                                 ROUTERRemoteConfigResult* result, bool wait);
// The same for a request that goes on with what an earlier send without waiting began, such as the next piece
// of an upload: an interrupt since that beginning counts, and ends the wait at once. A caller with several
// requests to send asks `isInterrupted` before each.
bool ROUTERRemoteConfigClient_continueCommandRequest(ROUTERRemoteConfigClient* self,
                                                     ROUTERRemoteConfigResult* result, bool wait);
// Whether an interrupt has come since a send without waiting.
bool ROUTERRemoteConfigClient_isInterrupted(ROUTERRemoteConfigClient* self);
// Writes an ANNOUNCE request to every router; never waits.
bool ROUTERRemoteConfigClient_sendCommandAnnounce(ROUTERRemoteConfigClient* self);
// Ends a pending wait; always true. May be called from a signal handler on the sending thread, at any moment.
bool ROUTERRemoteConfigClient_abortResponseWait(ROUTERRemoteConfigClient* self);

// Makes the result that of an interrupted wait.
void ROUTERRemoteConfigClient_reportInterrupted(ROUTERRemoteConfigResult* result);

// Whether the response answers the current request, or is an unsolicited announcement to every shell.
bool ROUTERRemoteConfigClient_isResponseDestination(
    ROUTERRemoteConfigClient* self, const ZUL_RoutingService_Administration_CommandResponse* response);
// Whether a router's request reader and response writer are both matched.
bool ROUTERRemoteConfigClient_hasMatchingServer(ROUTERRemoteConfigClient* self);
