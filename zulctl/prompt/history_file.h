// The lines of earlier sessions, in a file that only the user can read, a line each. A line is appended when
// it is entered, so nothing is lost however the program ends, except while another process has locked the
// file. Programs share it.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zul::ctl::prompt {

constexpr std::size_t MAX_HISTORY = 1000; // lines

class HistoryFile {
public:
    // zulctl/history in the user's state folder, which is created. When it cannot be used, `warning` says
    // why, and this remembers nothing.
    static HistoryFile ofUser(std::string& warning);
    ~HistoryFile();
    HistoryFile(HistoryFile&& other) noexcept
        : fd_(std::exchange(other.fd_, -1)), unwritten_(std::move(other.unwritten_)) {}
    HistoryFile& operator=(HistoryFile&&) = delete;

    // The last lines, the oldest first.
    std::vector<std::string> load();
    // A line that cannot be written is lost. While another process has locked the file, lines wait for the
    // next one, or for the end.
    void append(const std::string& line);

private:
    explicit HistoryFile(int fd) : fd_(fd) {}

    void writeUnwritten();

    int fd_; // -1: there is none
    std::string unwritten_;
};

} // namespace zul::ctl::prompt
