// The three standard descriptors of a process.
#pragma once

// Opens /dev/null on each that is closed. Called first in a program: the next file or socket would get the
// number otherwise, and output and log lines would go there. Where there is no /dev/null, nothing is done.
void ZULStandardStreams_open();
