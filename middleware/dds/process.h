// What the platform does for a program that owns its process. A program that only links the client library
// calls none of this, and its process stays as it is.
#pragma once

// Opens /dev/null on standard streams that are closed, and routes the DDS library's own log lines, which it
// would print by itself, to this system's log. First thing in `main`, before any thread is started.
void ZULProcess_takeOver();

// Ends the program with all output written. The library's static destructors, which only cost time (a sleep
// of 100 ms), are not run: everything must have been closed before.
[[noreturn]] void ZULProcess_exit(int status);
