// A fresh file is written and flushed, then renamed over the old one.
#include "practice_router/actions/save_file.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <fcntl.h>
#include <random>
#include <system_error>
#include <unistd.h>

namespace zul::practice {

namespace {

constexpr int MAX_ATTEMPTS = 100; // at a name that is not taken

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
           c == '_' || c == '.';
}

// A new file in the directory, open for writing; its name goes into `path`. -1 when there can be none.
int createFresh(const std::string& directory, std::string& path) {
    std::random_device random;
    for (int attempt = 0; attempt < MAX_ATTEMPTS; ++attempt) {
        std::array<char, 32> name;
        std::snprintf(name.data(), name.size(), "/.save-%08x%08x", random(), random());
        path = directory + name.data();
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (file >= 0 || errno != EEXIST) {
            return file;
        }
    }
    return -1;
}

bool writeWhole(int file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        text.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    return fsync(file) == 0;
}

// So that the new name survives a power failure, too; without that the file is saved all the same.
void syncDirectory(const std::string& directory) {
    const int file = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file >= 0) {
        fsync(file);
        close(file);
    }
}

// 0, or why the file at `path` could not be replaced.
int replace(const std::string& directory, const std::string& path, std::string_view text) {
    std::string fresh;
    const int file = createFresh(directory, fresh);
    if (file < 0) {
        return errno;
    }
    int reason = writeWhole(file, text) ? 0 : errno;
    if (close(file) != 0 && reason == 0) {
        reason = errno;
    }
    if (reason == 0 && std::rename(fresh.c_str(), path.c_str()) != 0) {
        reason = errno;
    }
    if (reason != 0) {
        unlink(fresh.c_str());
    }
    return reason;
}

} // namespace

std::string saveFileName(std::string_view routerName) {
    constexpr const char* DIGITS = "0123456789ABCDEF";
    std::string name;
    for (const char c : routerName) {
        if (isPlain(c) && !(name.empty() && c == '.')) {
            name += c;
        } else {
            const auto code = static_cast<std::uint8_t>(c);
            name += {'%', DIGITS[code >> 4], DIGITS[code & 0xF]};
        }
    }
    name += ".xml";
    return name.size() <= NAME_MAX ? name : "";
}

Answer writeSaveFile(const std::string& directory, std::string_view routerName, std::string_view text) {
    const std::string path = directory + "/" + saveFileName(routerName);
    Answer done = Answer::ok("saved the configuration to " + path);
    const int reason = replace(directory, path, text);
    if (reason != 0) {
        return Answer::error("cannot write the file " + path + ": " + std::system_category().message(reason));
    }
    syncDirectory(directory);
    return done;
}

} // namespace zul::practice
