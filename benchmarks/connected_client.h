// The product's client, connected to a responder that has answered once.
#pragma once

#include "remote_config/client.h"
#include "remote_config/result.h"

class ConnectedClient {
public:
    explicit ConnectedClient(DDS_Long domainId); // ends the process when nobody answers
    ~ConnectedClient();
    ConnectedClient(const ConnectedClient&) = delete;
    ConnectedClient& operator=(const ConnectedClient&) = delete;

    ROUTERRemoteConfigClient* get() const { return client_; }
    // One `enable` and its answer; false when none came.
    bool enable();
    // The answer to a `get` has this many characters, 0 when none came.
    std::size_t getDocument();
    // Uploads a local file; false when it was not taken.
    bool load(const char* path);

private:
    ROUTERRemoteConfigClient* client_;
    ROUTERRemoteConfigResult result_{};
};
