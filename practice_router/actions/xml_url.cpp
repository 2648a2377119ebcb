#include "practice_router/actions/xml_url.h"

#include "practice_router/document/xml.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr std::string_view INLINE_SCHEME = "str://";
constexpr std::string_view FILE_SCHEME = "file://";
constexpr std::string_view BLANKS = " \t\r\n";

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(BLANKS);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(BLANKS) - first + 1);
}

struct File {
    int descriptor;
    explicit File(const char* path) : descriptor(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {}
    ~File() {
        if (descriptor >= 0) {
            close(descriptor);
        }
    }
    File(const File&) = delete;
    File& operator=(const File&) = delete;
};

// Why the file cannot be read; empty when `content` holds it.
std::string readInto(const std::string& path, std::string& content) {
    const auto systemError = [] {
        return std::system_category().message(errno);
    };
    const File file(path.c_str());
    struct stat status {};
    if (file.descriptor < 0 || fstat(file.descriptor, &status) != 0) {
        return systemError();
    }
    if (!S_ISREG(status.st_mode)) {
        return "it is no regular file";
    }
    char block[65536];
    ssize_t count = 0;
    while ((count = read(file.descriptor, block, sizeof(block))) > 0) {
        content.append(block, static_cast<std::size_t>(count));
        if (content.size() > PRACTICE_XML_MAX_SIZE) {
            return "it has more than " + std::to_string(PRACTICE_XML_MAX_SIZE) + " bytes";
        }
    }
    return count < 0 ? systemError() : "";
}

} // namespace

std::optional<std::string> PracticeXmlUrl_readFile(const std::string& path, std::string& error) {
    std::string content;
    const std::string reason = readInto(path, content);
    if (!reason.empty()) {
        error = "cannot read the file " + path + ": " + reason;
        return std::nullopt;
    }
    return content;
}

std::optional<std::string> PracticeXmlUrl_read(std::string_view url, std::string& error) {
    if (url.starts_with(FILE_SCHEME)) {
        return PracticeXmlUrl_readFile(std::string(trimmed(url.substr(FILE_SCHEME.size()))), error);
    }
    if (!url.starts_with(INLINE_SCHEME)) {
        error = "the XML is not complete: it must begin with str:// or file://; send it again";
        return std::nullopt;
    }
    std::string_view xml = trimmed(url.substr(INLINE_SCHEME.size()));
    if (xml.starts_with('"')) {
        if (xml.size() < 2 || !xml.ends_with('"')) {
            error = "the XML is not complete: its closing double quote is missing; send it again";
            return std::nullopt;
        }
        xml = xml.substr(1, xml.size() - 2);
    }
    return std::string(xml);
}
