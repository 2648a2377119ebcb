// A file is read up to the limit of documents.
#include "practice_router/actions/xml_url.h"

#include "middleware/xml/file.h"
#include "middleware/xml/text.h"
#include "plan/document/text.h"
#include "plan/document/xml.h"
#include "product/vocabulary.h"

#include <cerrno>
#include <system_error>

namespace zul::practice {

using namespace plan;

using product::FILE_SCHEME;
using product::INLINE_SCHEME;

std::string readFile(const std::string& path) {
    const auto refuse = [&path](const std::string& reason) {
        throw Refusal{"cannot read the file " + path + ": " + reason};
    };
    const xml::File file(path.c_str());
    if (!file.isReadable()) {
        refuse(file.failure() != 0 ? std::system_category().message(file.failure())
                                   : "it is no regular file");
    }
    std::string content;
    char block[65536];
    int count = 0;
    while ((count = file.read(block, sizeof(block))) > 0) {
        content.append(block, static_cast<std::size_t>(count));
        if (content.size() > MAX_DOCUMENT_SIZE) {
            refuse("it has more than " + std::to_string(MAX_DOCUMENT_SIZE) + " bytes");
        }
    }
    if (count < 0) {
        refuse(std::system_category().message(errno));
    }
    return content;
}

std::string readXmlUrl(std::string_view url) {
    if (url.starts_with(FILE_SCHEME)) {
        return readFile(std::string(xml::trimmed(url.substr(FILE_SCHEME.size()))));
    }
    if (!url.starts_with(INLINE_SCHEME)) {
        throw Refusal{"the XML is not complete: it must begin with str:// or file://; send it again"};
    }
    std::string_view text = xml::trimmed(url.substr(INLINE_SCHEME.size()));
    if (text.starts_with('"')) {
        if (text.size() < 2 || !text.ends_with('"')) {
            throw Refusal{"the XML is not complete: its closing double quote is missing; send it again"};
        }
        text = text.substr(1, text.size() - 2);
    }
    return std::string(text);
}

} // namespace zul::practice
