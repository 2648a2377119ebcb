// Local files: whole texts read, and configurations written.
#pragma once

#include <optional>
#include <string>

namespace zul::ctl {

// Nothing, with `error` filled, when it cannot be read.
std::optional<std::string> readFile(const std::string& path, std::string& error);
// The same of what standard input has left.
std::optional<std::string> readStandardInput(std::string& error);
// Replaces a file by one with the same rights, or leaves it as it was. Written in place are what is no plain
// file, until an interrupt, and a file beside which none can be made with its rights. False, with `error`
// filled, when it cannot be written whole.
bool writeFile(const std::string& path, const std::string& text, std::string& error);
// Writes a file that is not there yet, whole or not at all; one that holds the text already is fine. False
// without `error` when it holds something else.
bool writeOnce(const std::string& path, const std::string& text, std::string& error);

constexpr const char* ROUTER_PLACE = "{router}";
// The path with each {router} replaced by the router's name. What in a name could lead to another folder, and
// each control character, is written as %NN.
std::string pathFor(std::string pattern, const std::string& router);

} // namespace zul::ctl
