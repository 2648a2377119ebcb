// The thread-settings mask of a configuration document: keywords with "|" between them.
#pragma once

#include <cstddef>
#include <cstdint>

constexpr std::uint32_t DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT = 0;
constexpr std::uint32_t DDS_THREAD_SETTINGS_FLOATING_POINT = 1;
constexpr std::uint32_t DDS_THREAD_SETTINGS_STDIO = 2;
constexpr std::uint32_t DDS_THREAD_SETTINGS_REALTIME_PRIORITY = 8;
constexpr std::uint32_t DDS_THREAD_SETTINGS_PRIORITY_ENFORCE = 16;

constexpr std::size_t ROUTER_THREAD_SETTINGS_TEXT_MAX = 1023; // characters of a mask's text

// Ends `text` at its first "|" and returns the text after it. Without one, null, and `text` is as it was.
char* ROUTERUtils_separateFirstElementFromMask(char* text);

// The bits that the text names; 0 for one of blanks only. Each keyword may be written bare, or in full, with
// or without "DDS_" (STDIO, THREAD_SETTINGS_STDIO, DDS_THREAD_SETTINGS_STDIO), in any case. Sets `*error` to
// whether the text is wrong, which is logged with `line`, its line in the document; the result is 0 then.
std::uint32_t ROUTERUtils_getThreadSettingsKindMaskElement(std::int32_t line, const char* text, bool* error);
