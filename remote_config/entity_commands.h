// Senders of the commands that act on a router, or on one entity inside it, without carrying XML.
//
// Each fills the client's request, counts `invocation` up and waits for the answers; the result record is the
// caller's and initialised. True: answered or interrupted. False: no answer, or an argument was refused, with
// the reason in the result's `textBuffer` and nothing sent. A router name has at most 254 characters
// (oddity 5).
#pragma once

#include "remote_config/client.h"
#include "remote_config/result.h"

bool ROUTERRemoteConfigClient_sendCommandUnload(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                ROUTERRemoteConfigResult* result);
bool ROUTERRemoteConfigClient_sendCommandSave(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                              ROUTERRemoteConfigResult* result);
bool ROUTERRemoteConfigClient_sendCommandGet(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                             ROUTERRemoteConfigResult* result);

// An empty entity name addresses the router itself. At most 255 characters; delete takes at most 254.
bool ROUTERRemoteConfigClient_sendCommandPause(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                               const char* entityName, ROUTERRemoteConfigResult* result);
bool ROUTERRemoteConfigClient_sendCommandResume(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                const char* entityName, ROUTERRemoteConfigResult* result);
bool ROUTERRemoteConfigClient_sendCommandEnable(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                const char* entityName, ROUTERRemoteConfigResult* result);
bool ROUTERRemoteConfigClient_sendCommandDisable(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                 const char* entityName, ROUTERRemoteConfigResult* result);
bool ROUTERRemoteConfigClient_sendCommandDelete(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                const char* entityName, ROUTERRemoteConfigResult* result);

// `peerList` is at most 16 peers of at most 254 characters, separated by commas; empty pieces are passed
// over. A list without any peer sends the previous one again (oddity 31).
bool ROUTERRemoteConfigClient_sendCommandAddPeer(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                                 const char* domainRouteName, bool isFirstParticipant,
                                                 const char* peerList, ROUTERRemoteConfigResult* result);
