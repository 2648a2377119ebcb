// Writing the configuration to a file of the router's own name.
#pragma once

#include "practice_router/actions/answer.h"

#include <string>
#include <string_view>

namespace zul::practice {

// The name of the file that a router's configuration is saved to: "<routerName>.xml", with each byte that is
// no ASCII letter, digit, "-", "_" or ".", and a leading dot, written as "%" and two hexadecimal digits. So
// no two routers share a file. Empty when it would be longer than a file name may be.
std::string saveFileName(std::string_view routerName);

// Writes `text` to the router's file in the directory: an older one is replaced as a whole or not at all. The
// text first goes to a fresh name, never that of an existing file or link. The answer names the file.
Answer writeSaveFile(const std::string& directory, std::string_view routerName, std::string_view text);

} // namespace zul::practice
