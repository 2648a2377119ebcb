// Words are turned on the way in and once more on the way out.
#include "utils/guid.h"

#include <arpa/inet.h>

void ROUTERUtils_calculateGUID(ROUTERUtilsGuid* guid, std::uint32_t host, std::uint32_t application,
                               std::uint32_t instance, std::uint32_t object) {
    *guid = {htonl(host), htonl(application), htonl(instance), htonl(object)};
}

// oddity 29: the words are in network byte order already.
void ROUTERUtils_guidToBuiltinTopicKey(ROUTERUtilsBuiltinTopicKey* key, const ROUTERUtilsGuid* guid) {
    *key = {{htonl(guid->host), htonl(guid->application), htonl(guid->instance), htonl(guid->object)}};
}
