// XML URLs: "str://" followed by XML in double quotes, or "file://" followed by a path on this machine.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zul::practice {

// The XML that a URL stands for. Nothing on failure; `error` then says what is wrong.
std::optional<std::string> readXmlUrl(std::string_view url, std::string& error);

// The content of a regular file of at most MAX_DOCUMENT_SIZE bytes. Anything else, a FIFO among them, is
// refused without waiting. Nothing on failure.
std::optional<std::string> readFile(const std::string& path, std::string& error);

} // namespace zul::practice
