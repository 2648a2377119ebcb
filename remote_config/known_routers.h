// The ring of the most recent router names. Kept for interactive completion; nothing stores a name yet.
#pragma once

#include "remote_config/client.h"

// Stores a copy of the name in the next slot, over the oldest once the ring is full, and returns the slot
// after it (0..127). When memory is exhausted the slot becomes empty.
DDS_Long ROUTERRemoteConfigClient_addKnownRouter(ROUTERRemoteConfigClient* self, const char* name);
// The next stored name, from slot `*index` on, that begins with `text` (case-sensitive); `*index` is then the
// slot after it. Null at the first empty slot, where `*index` stays. The name is the client's.
const char* ROUTERRemoteConfigClient_matchKnownRouter(const ROUTERRemoteConfigClient* self, const char* text,
                                                      DDS_Long* index);
