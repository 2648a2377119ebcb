// XML URLs: "str://" followed by XML in double quotes, or "file://" followed by a path on this machine.
#pragma once

#include <optional>
#include <string>
#include <string_view>

// The XML that a URL stands for. Nothing on failure; `error` then says what is wrong.
std::optional<std::string> PracticeXmlUrl_read(std::string_view url, std::string& error);

// The content of a regular file of at most PRACTICE_XML_MAX_SIZE bytes. Anything else, a FIFO among them, is
// refused without waiting. Nothing on failure.
std::optional<std::string> PracticeXmlUrl_readFile(const std::string& path, std::string& error);
