// A router's name comes from the network: it may become part of a file's name, never of a path.
#include "zulctl/files.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace zul::ctl {

namespace {

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

constexpr std::size_t MAX_FILE = 256U << 20; // bytes; more is no configuration

std::string explain(const char* what, const std::string& path) {
    return std::string("cannot ") + what + " " + path + ": " + std::generic_category().message(errno);
}

bool writeAll(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), text.size());
        if (count < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(count > 0 ? static_cast<std::size_t>(count) : 0);
    }
    return true;
}

} // namespace

std::optional<std::string> readFile(const std::string& path, std::string& error) {
    const File file(std::fopen(path.c_str(), "rbe"));
    if (file == nullptr) {
        error = explain("open", path);
        return std::nullopt;
    }
    std::string text;
    std::array<char, 65536> block;
    while (const std::size_t count = std::fread(block.data(), 1, block.size(), file.get())) {
        text.append(block.data(), count);
        if (text.size() > MAX_FILE) {
            error = path + " is longer than 256 MiB";
            return std::nullopt;
        }
    }
    if (std::ferror(file.get()) != 0) {
        error = explain("read", path);
        return std::nullopt;
    }
    return text;
}

bool writeFile(const std::string& path, const std::string& text, std::string& error) {
    File file(std::fopen(path.c_str(), "wbe"));
    const bool isWritten =
        file != nullptr && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    if (isWritten && std::fclose(file.release()) == 0) {
        return true;
    }
    error = explain("write", path);
    return false;
}

// Under another name first, then linked to its own: that fails where there is a file already.
bool writeOnce(const std::string& path, const std::string& text, std::string& error) {
    if (access(path.c_str(), F_OK) == 0) {
        const auto there = readFile(path, error);
        return there && *there == text;
    }
    std::string fresh = path + ".XXXXXX";
    const int descriptor = mkstemp(fresh.data());
    if (descriptor < 0) {
        error = explain("write", path);
        return false;
    }
    bool isWritten = writeAll(descriptor, text) && fsync(descriptor) == 0;
    isWritten = close(descriptor) == 0 && isWritten;
    bool isThere = isWritten && link(fresh.c_str(), path.c_str()) == 0;
    if (isWritten && !isThere && errno == EPERM) { // a file system without links
        isThere = rename(fresh.c_str(), path.c_str()) == 0;
    }
    if (!isThere && errno != EEXIST) {
        error = explain("write", path);
    }
    unlink(fresh.c_str());
    return isThere;
}

std::string pathFor(std::string pattern, const std::string& router) {
    std::string name;
    for (const char character : router) {
        const bool isDotName = character == '.' && name.empty();
        if (character == '/' || character == '%' || isDotName ||
            static_cast<unsigned char>(character) < ' ') {
            std::array<char, 4> code{};
            std::snprintf(code.data(), code.size(), "%%%02x", static_cast<unsigned char>(character));
            name += code.data();
        } else {
            name += character;
        }
    }
    const std::string_view place = ROUTER_PLACE;
    for (std::size_t at = pattern.find(place); at != std::string::npos;
         at = pattern.find(place, at + name.size())) {
        pattern.replace(at, place.size(), name);
    }
    return pattern;
}

} // namespace zul::ctl
