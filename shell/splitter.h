// The line splitter: cuts a line into words, in place. Words are separated by anything but printable ASCII;
// double quotes keep blanks; from certain beginnings on, such as "str://", a word runs to the end of
// the line.
#pragma once

constexpr int ROUTER_SHELL_MAX_WORDS = 256;

// `line` is writable, terminated text, or null (then nothing is done). `words` has room for
// ROUTER_SHELL_MAX_WORDS references into `line`; further words are dropped.
void ROUTERShell_createArgv(char* line, char** words, int* wordCount);
