// XML URLs: "str://" and XML, in double quotes or without, or "file://" and a path on this machine.
#pragma once

#include <string>
#include <string_view>

namespace zul::practice {

// The XML that a URL stands for. Refuses one that is cut off.
std::string readXmlUrl(std::string_view url);

// The content of a regular file of at most MAX_DOCUMENT_SIZE bytes. Anything else, a FIFO among them, is
// refused without waiting.
std::string readFile(const std::string& path);

} // namespace zul::practice
