// Text from elsewhere on its way to the operator: a terminal must show it, not obey it.
#pragma once

#include <array>
#include <cstdio>
#include <string>
#include <string_view>

using ZULTerminalEscape = std::array<char, 5>; // \xNN and a terminator

// Takes the next piece off `text`, which is not empty: as many bytes as a terminal only shows, or else one
// byte as \xNN, written to `escape`. What is shown is UTF-8, line feed and tab; what is not: the other
// control characters, C0, DEL and C1, and bytes that are no UTF-8. The piece lives as long as both arguments.
std::string_view ZULTerminal_takePiece(std::string_view& text, ZULTerminalEscape& escape);

// The whole text as a terminal shows it.
std::string ZULTerminal_shown(std::string_view text);

// Prints the text: piece by piece where `out` is a terminal, unchanged elsewhere.
void ZULTerminal_print(std::FILE* out, std::string_view text);
