// A router's name comes from the network: it may become part of a file's name, never of a path.
#include "zulctl/files.h"

#include "zulctl/signals.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
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

// What is no plain file may take nothing for as long as it likes: there an interrupt ends the writing. A pipe
// takes pieces of that size whole or not at all, so one interrupt is enough.
bool writeUnlessInterrupted(int descriptor, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = write(descriptor, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (count < 0) {
            return false;
        }
        text.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
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

// A new file beside the one that it is to become; deleted at the end unless it has become that. Each step is
// true when it succeeded, else `errno` says why not.
class FreshFile {
public:
    explicit FreshFile(const std::string& path)
        : path_(path), name_(path + ".XXXXXX"), descriptor_(mkstemp(name_.data())) {}
    ~FreshFile() {
        const int error = errno;
        if (descriptor_ >= 0) {
            close(descriptor_);
            unlink(name_.c_str());
        }
        errno = error;
    }
    FreshFile(const FreshFile&) = delete;
    FreshFile& operator=(const FreshFile&) = delete;

    bool isOpen() const { return descriptor_ >= 0; }
    // Gives it the owner and mode of `other`; null: those of any new file. Until then it is the user's alone.
    bool hasAccessOf(const struct stat* other) const {
        if (other != nullptr) {
            return fchown(descriptor_, other->st_uid, other->st_gid) == 0 &&
                   fchmod(descriptor_, other->st_mode) == 0;
        }
        const mode_t mask = umask(0);
        umask(mask);
        return fchmod(descriptor_, 0666 & ~mask) == 0;
    }
    bool write(std::string_view text) const { return writeAll(descriptor_, text) && fsync(descriptor_) == 0; }
    // In place of what may be there.
    bool replace() const { return rename(name_.c_str(), path_.c_str()) == 0; }
    // Only where there is nothing; EEXIST otherwise.
    bool appear() const {
        return link(name_.c_str(), path_.c_str()) == 0 ||
               ((errno == EPERM || errno == EOPNOTSUPP) && replace()); // a file system without links
    }

private:
    const std::string& path_;
    std::string name_;
    int descriptor_;
};

// Whether the byte there is a control character, or one of the two bytes of such in UTF-8: C0, DEL, C1.
bool isControl(const std::string& text, std::size_t at) {
    const auto byte = [&text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const auto isSecond = [&byte](std::size_t i) {
        return i > 0 && byte(i - 1) == 0xC2 && byte(i) >= 0x80 && byte(i) <= 0x9F;
    };
    return byte(at) < ' ' || byte(at) == 0x7F || isSecond(at) || isSecond(at + 1);
}

std::optional<std::string> readWhole(const File& file, const std::string& path, std::string& error) {
    if (file == nullptr) {
        error = explain("open", path);
        return std::nullopt;
    }
    std::optional<UsualTerminal> terminal; // on which a document is typed
    if (isatty(fileno(file.get())) != 0) {
        terminal.emplace();
    }
    std::string text;
    std::array<char, 65536> block;
    std::size_t count = 0;
    do {
        count = std::fread(block.data(), 1, block.size(), file.get());
        text.append(block.data(), count);
        if (text.size() > MAX_FILE) {
            error = path + " is longer than 256 MiB";
            return std::nullopt;
        }
    } while (count == block.size()); // or a terminal would be asked for a second end
    if (std::ferror(file.get()) != 0) {
        error = explain("read", path);
        return std::nullopt;
    }
    return text;
}

} // namespace

std::optional<std::string> readFile(const std::string& path, std::string& error) {
    return readWhole(File(std::fopen(path.c_str(), "rbe")), path, error);
}

std::optional<std::string> readStandardInput(std::string& error) {
    const int descriptor = fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0);
    const File file(descriptor < 0 ? nullptr : fdopen(descriptor, "rb"));
    if (file == nullptr && descriptor >= 0) {
        const int failure = errno;
        close(descriptor);
        errno = failure;
    }
    return readWhole(file, "standard input", error);
}

bool writeFile(const std::string& path, const std::string& text, std::string& error) {
    struct stat before {};
    const bool isNew = lstat(path.c_str(), &before) != 0 && errno == ENOENT;
    if (isNew || S_ISREG(before.st_mode)) {
        FreshFile fresh(path);
        // Where the folder is read-only or the file somebody else's, it may still be writable.
        if (fresh.isOpen() && fresh.hasAccessOf(isNew ? nullptr : &before)) {
            const bool isWritten = fresh.write(text) && fresh.replace();
            error = isWritten ? "" : explain("write", path);
            return isWritten;
        }
    }
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    bool isWritten = descriptor >= 0 && writeUnlessInterrupted(descriptor, text) &&
                     (fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS); // it may have no disk
    error = isWritten ? "" : explain("write", path);
    if (descriptor >= 0 && close(descriptor) != 0 && isWritten) {
        error = explain("write", path);
        isWritten = false;
    }
    return isWritten;
}

bool writeOnce(const std::string& path, const std::string& text, std::string& error) {
    if (access(path.c_str(), F_OK) == 0) {
        const auto there = readFile(path, error);
        return there && *there == text;
    }
    FreshFile fresh(path);
    const bool isWritten = fresh.isOpen() && fresh.write(text) && fresh.appear();
    if (!isWritten && errno != EEXIST) {
        error = explain("write", path);
    }
    return isWritten;
}

std::string pathFor(std::string pattern, const std::string& router) {
    std::string name;
    for (std::size_t i = 0; i < router.size(); ++i) {
        const char character = router[i];
        const bool isDotName = character == '.' && name.empty();
        if (character == '/' || character == '%' || isDotName || isControl(router, i)) {
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
