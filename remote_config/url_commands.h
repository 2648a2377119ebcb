// Senders of the commands that carry configuration XML to a router: inline, as a file that the router reads
// itself, as a local file that is read here, or as a dotted assignment. Text longer than one sample goes out
// in pieces under one request id, all but the last with `is_final` false.
#pragma once

#include "remote_config/client.h"
#include "remote_config/result.h"

enum ROUTERUrlCommandStatus {
    ROUTER_URL_COMMAND_OK = 0, // answered or interrupted, or an argument was refused: see the result
    ROUTER_URL_COMMAND_FILE_OPEN_ERROR = 1, // the local file could not be opened
    ROUTER_URL_COMMAND_FILE_READ_ERROR = 2, // reading the local file failed
    ROUTER_URL_COMMAND_SEND_ERROR = 3,      // a piece was not written, nobody answered, or no memory
};

// Fills `xml_url` and drives the exchange, piece by piece; with `wait`, the last piece gathers the answers.
// The caller has set target, kind and name and counted `invocation`. `isRemote`: the router reads a path
// itself; else the file is read here. An interrupt between two pieces ends the upload like an interrupted
// wait; routers drop what they have of it.
ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendUrlCommand(ROUTERRemoteConfigClient* self,
                                                               const char* xmlUrl, bool isRemote, bool wait,
                                                               ROUTERRemoteConfigResult* result);

// Router names have at most 254 characters, names of configurations and entities at most 255, of parents at
// most 254 (oddity 5). A refused name is reported in the result's `textBuffer`, nothing is sent, and the
// status is OK (oddity 6).
ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommandLoad(ROUTERRemoteConfigClient* self,
                                                                const char* targetRouter, const char* cfgName,
                                                                const char* xmlUrl, bool isRemote,
                                                                ROUTERRemoteConfigResult* result);
ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommandUpdate(ROUTERRemoteConfigClient* self,
                                                                  const char* targetRouter,
                                                                  const char* entityName, const char* xmlUrl,
                                                                  bool isRemote,
                                                                  ROUTERRemoteConfigResult* result);
ROUTERUrlCommandStatus ROUTERRemoteConfigClient_sendCommandCreate(ROUTERRemoteConfigClient* self,
                                                                  const char* targetRouter,
                                                                  const char* parentEntityName,
                                                                  const char* xmlUrl, bool isRemote,
                                                                  ROUTERRemoteConfigResult* result);

// Disables the entity, updates it and enables it again; only the answer to the enable is waited for. An
// interrupt before the last piece of the update is sent drops what is left of it. True: the enable was
// answered or interrupted. Not a status of the family above.
bool ROUTERRemoteConfigClient_sendCommandsDUE(ROUTERRemoteConfigClient* self, const char* targetRouter,
                                              const char* entityName, const char* xmlUrl, bool isRemote,
                                              ROUTERRemoteConfigResult* result);
