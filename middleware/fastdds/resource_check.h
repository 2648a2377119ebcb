// Resource check: whether there is enough of what the library does not survive running out of. Without
// threads it ends the process from its own clean-up, and without descriptors it starts deaf.
#pragma once

namespace zul {

// Whether a participant can have the file descriptors and threads it needs at this moment. False with a log
// line under `context` that says what to raise.
bool hasResourcesForParticipant(const char* context);

} // namespace zul
