// Any text becomes nothing or, if it is an assignment, an inline XML URL of one quoted element.
#include "product/assignment.h"
#include "middleware/base/strings.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const ZULStringPtr snippet(ROUTERRemoteConfigClient_convertAssignmentToXmlSnippet(text.c_str()));
    if (snippet != nullptr) {
        const std::string_view url = snippet.get();
        const bool isQuoted = url.starts_with("str://\"<") && url.ends_with(">\"");
        if (!isQuoted || text.find('=') == std::string::npos) {
            std::abort();
        }
    }
    return 0;
}
