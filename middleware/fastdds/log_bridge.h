// Log bridge: the library's own log lines go to this system's logging facility, never to the operator's
// terminal by themselves.
#pragma once

namespace zul {

// Takes over the library's log; before the first library call that may log. Again is harmless.
void installLogBridge();
// Ends the library's log thread; it starts again with the next line or installation.
void endLogThread();

} // namespace zul
