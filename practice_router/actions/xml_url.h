// XML URLs: "str://" followed by XML in double quotes, or "file://" followed by a path on this machine.
#pragma once

#include <string>
#include <string_view>

namespace zul::practice {

// The XML that a URL stands for.
std::string readXmlUrl(std::string_view url);

// The content of a regular file of at most MAX_DOCUMENT_SIZE bytes. Anything else, a FIFO among them, is
// refused without waiting.
std::string readFile(const std::string& path);

} // namespace zul::practice
