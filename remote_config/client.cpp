// A client that failed to initialise is finalised by its caller, so every step tolerates what was never made.
#include "remote_config/client.h"

#include "middleware/base/heap.h"
#include "remote_config/log.h"

#include <new>

ROUTERRemoteConfigClient* ROUTERRemoteConfigClient_new(DDS_Long domainId, DDS_Long timeoutSeconds) {
    auto* self = ZULHeap_allocate<ROUTERRemoteConfigClient>();
    if (self == nullptr) {
        remoteConfigError(__func__, ZUL_LOG_OUT_OF_HEAP_STRUCT_d, sizeof(ROUTERRemoteConfigClient));
        return nullptr;
    }
    if (!ROUTERRemoteConfigClient_initialize(self, domainId, timeoutSeconds)) {
        remoteConfigError(__func__, ZUL_LOG_INIT_FAILURE_s, "ROUTERRemoteConfigClient object");
        ROUTERRemoteConfigClient_finalize(self);
        ZULHeap_free(self);
        return nullptr;
    }
    return self;
}

void ROUTERRemoteConfigClient_delete(ROUTERRemoteConfigClient* self) {
    if (self == nullptr) {
        remoteConfigError(__func__, ZUL_LOG_ANY_s, "bad parameter self");
        return;
    }
    if (!ROUTERRemoteConfigClient_finalize(self)) {
        remoteConfigError(__func__, ZUL_LOG_DESTRUCTION_FAILURE_s, "remote config client");
    }
    ZULHeap_free(self);
}

bool ROUTERRemoteConfigClient_initialize(ROUTERRemoteConfigClient* self, DDS_Long domainId,
                                         DDS_Long timeoutSeconds) {
    new (self) ROUTERRemoteConfigClient{};
    self->domainId = domainId;
    self->responseTimeout = {.sec = timeoutSeconds, .frac = 0};

    struct Semaphore {
        ZULSemaphore*& field;
        std::int32_t initialCount;
        const char* name;
    };
    const Semaphore semaphores[] = {{self->responseReadySemaphore, 0, "semaphore 1"},
                                    {self->responseTakenSemaphore, 0, "semaphore 2"},
                                    {self->spareSemaphore, 1, "semaphore 3"}};
    for (const Semaphore& semaphore : semaphores) {
        semaphore.field = ZULSemaphore_new({.initialCount = semaphore.initialCount});
        if (semaphore.field == nullptr) {
            remoteConfigError(__func__, ZUL_LOG_CREATION_FAILURE_s, semaphore.name);
            return false;
        }
    }
    if (!ROUTERRemoteConfigClient_createConnection(self)) {
        remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "create connection");
        return false;
    }
    return true;
}

bool ROUTERRemoteConfigClient_finalize(ROUTERRemoteConfigClient* self) {
    if (!ROUTERRemoteConfigClient_closeConnection(self)) {
        remoteConfigError(__func__, ZUL_LOG_ANY_FAILURE_s, "close connection");
        return false;
    }
    for (ZULSemaphore** semaphore :
         {&self->responseReadySemaphore, &self->responseTakenSemaphore, &self->spareSemaphore}) {
        ZULSemaphore_delete(*semaphore);
        *semaphore = nullptr;
    }
    // oddity 14: the names of known routers stay
    return true;
}
