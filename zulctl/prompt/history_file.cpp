// Once there are twice as many lines as are wanted, the file is cut when it is loaded: in place, because
// other sessions have it open, and by one at a time, while none of them appends.
#include "zulctl/prompt/history_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zul::ctl::prompt {

namespace {

constexpr std::size_t MAX_LINE = 16U << 10; // bytes; a longer one is not remembered
constexpr off_t MAX_FILE = 4L << 20;        // bytes that are read, the last of the file

std::filesystem::path stateFolder() {
    const char* state = secure_getenv("XDG_STATE_HOME");
    if (state != nullptr && *state == '/') { // a relative one is to be ignored
        return state;
    }
    const char* home = secure_getenv("HOME");
    return home != nullptr && *home != '\0' ? std::filesystem::path(home) / ".local" / "state"
                                            : std::filesystem::path();
}

// Makes the missing ones, for the user alone.
bool createFolders(const std::filesystem::path& folder) {
    std::filesystem::path made;
    for (const auto& part : folder) {
        made /= part;
        if (mkdir(made.c_str(), S_IRWXU) != 0 && errno != EEXIST && errno != EROFS && errno != EACCES) {
            return false;
        }
    }
    return true; // if one of them could not be made, opening the file says so
}

// The whole lines in the last part of the file.
std::vector<std::string> readLines(int fd, off_t size) {
    const off_t begin = std::max<off_t>(size - MAX_FILE, 0);
    std::string text(static_cast<std::size_t>(size - begin), '\0');
    const ssize_t count = pread(fd, text.data(), text.size(), begin);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    if (begin > 0) {
        text.erase(0, text.find('\n') + 1);
    }
    std::vector<std::string> lines;
    for (std::size_t at = 0, end = 0; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        lines.push_back(text.substr(at, end - at));
    }
    return lines;
}

bool writeAll(int fd, const std::string& text) {
    return write(fd, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// Somebody may hold the file for as long as he likes; commands do not wait for that. Where there are no
// locks, as on some network file systems, nobody holds it.
bool takeLock(int fd) {
    return flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
}

} // namespace

HistoryFile HistoryFile::ofUser(std::string& warning) {
    const std::filesystem::path state = stateFolder();
    if (state.empty()) {
        warning = "no history is kept: HOME is not set";
        return HistoryFile(-1);
    }
    const std::filesystem::path path = state / "zulctl" / "history";
    const int fd =
        createFolders(path.parent_path())
            ? open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, S_IRUSR | S_IWUSR)
            : -1;
    struct stat status {};
    if (fd < 0 || fstat(fd, &status) != 0 || !S_ISREG(status.st_mode)) {
        warning = "no history is kept: " + path.string() + ": " +
                  (fd < 0 ? std::generic_category().message(errno) : "it is no plain file");
        if (fd >= 0) {
            close(fd);
        }
        return HistoryFile(-1);
    }
    fchmod(fd, S_IRUSR | S_IWUSR);
    return HistoryFile(fd);
}

HistoryFile::~HistoryFile() {
    if (fd_ >= 0) {
        writeUnwritten();
        close(fd_);
    }
}

std::vector<std::string> HistoryFile::load() {
    if (fd_ < 0) {
        return {};
    }
    const bool isMine = takeLock(fd_);
    struct stat status {};
    fstat(fd_, &status);
    std::vector<std::string> lines = readLines(fd_, status.st_size);
    const bool isLong = lines.size() > 2 * MAX_HISTORY || status.st_size > MAX_FILE;
    if (lines.size() > MAX_HISTORY) {
        lines.erase(lines.begin(), lines.end() - MAX_HISTORY);
    }
    if (isLong && isMine && ftruncate(fd_, 0) == 0) {
        std::string text;
        for (const std::string& line : lines) {
            text += line + "\n";
        }
        writeAll(fd_, text);
    }
    flock(fd_, LOCK_UN);
    return lines;
}

void HistoryFile::append(const std::string& line) {
    if (fd_ >= 0 && line.size() <= MAX_LINE && line.find('\n') == std::string::npos) {
        unwritten_ += line + "\n";
        writeUnwritten();
    }
}

void HistoryFile::writeUnwritten() {
    if (!unwritten_.empty() && takeLock(fd_)) {
        writeAll(fd_, std::exchange(unwritten_, {}));
        flock(fd_, LOCK_UN);
    }
}

} // namespace zul::ctl::prompt
