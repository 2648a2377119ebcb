#include "practice_router/save_file.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>
#include <unistd.h>

namespace {

constexpr std::size_t MAX_FILE_NAME = 200; // characters, extensions not counted

std::string fileNameFor(std::string_view routerName) {
    std::string name(routerName.substr(0, MAX_FILE_NAME));
    for (char& c : name) {
        const auto code = static_cast<unsigned char>(c);
        if (code >= 0x80 || (std::isalnum(code) == 0 && c != '-' && c != '_' && c != '.')) {
            c = '_';
        }
    }
    if (name.empty() || name.front() == '.') {
        name.insert(name.begin(), '_');
    }
    return name + ".xml";
}

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

bool writeWhole(const std::string& path, std::string_view text) {
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wbe"));
    return file != nullptr && std::fwrite(text.data(), 1, text.size(), file.get()) == text.size() &&
           std::fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0;
}

} // namespace

PracticeAnswer PracticeSaveFile_write(const std::string& directory, std::string_view routerName,
                                      std::string_view text) {
    const std::string path = directory + "/" + fileNameFor(routerName);
    const std::string fresh = path + ".new";
    if (!writeWhole(fresh, text) || std::rename(fresh.c_str(), path.c_str()) != 0) {
        const std::string reason = std::system_category().message(errno);
        std::remove(fresh.c_str());
        return PracticeAnswer_error("cannot write the file " + path + ": " + reason);
    }
    return PracticeAnswer_ok("saved the configuration to " + path);
}
