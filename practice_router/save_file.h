// Writing the configuration to a file of the router's own name.
#pragma once

#include "practice_router/answer.h"

#include <string>
#include <string_view>

// Writes `text` to "<directory>/<routerName>.xml", in place of an older file at once or not at all.
// Characters of the name that do not belong in a file name become "_". The answer names the file.
PracticeAnswer PracticeSaveFile_write(const std::string& directory, std::string_view routerName,
                                      std::string_view text);
