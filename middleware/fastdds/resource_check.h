// Resource check: the library does not survive running out of threads (it ends the process) or of descriptors
// (it starts, and hears nothing). So both are counted first.
#pragma once

namespace zul {

// Whether a participant can have the file descriptors and threads it needs at this moment. False with a log
// line under `context` that says what to raise.
bool hasResourcesForParticipant(const char* context);

} // namespace zul
