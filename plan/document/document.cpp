// One walk checks what the definition says and what it cannot express.
#include "plan/document/document.h"

#include "middleware/dds/dds.h"
#include "plan/document/definition.h"
#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"
#include "product/product_info.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace zul::plan {

namespace {

constexpr std::string_view ROOT_TAG = "dds";

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

bool isName(std::string_view name) {
    return !name.empty() && name.size() <= MAX_ENTITY_NAME && std::ranges::all_of(name, isNameCharacter);
}

// Decimal with an optional sign, or hexadecimal after 0x; false for anything else or out of range.
bool isDomainId(std::string_view text) {
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        base = 16;
        text.remove_prefix(2);
    } else if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    DDS_DomainId_t value = -1;
    const auto [end, code] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    return code == std::errc{} && end == text.data() + text.size() && value >= 0 &&
           value <= DDS_DOMAIN_ID_MAX;
}

void checkName(const xmlNode* node, std::set<std::string>& siblings) {
    const std::string name = nameOf(node);
    const std::string what = "the name " + quoted(name) + " of this " + std::string(tagOf(node));
    if (!isName(name)) {
        refuseAt(node, what + " is not allowed; expected 1 to 254 letters, digits, \"_\" and \"-\"");
    }
    if (!siblings.insert(name).second) {
        refuseAt(node, what + " is taken by an element beside it; choose another");
    }
}

// An element and everything inside; documents are not deep. `siblings` are the names of entities before it.
void checkElement(const xmlNode* node, const Definition& definition, const std::stop_token& stop,
                  std::set<std::string>& siblings) {
    if (stop.stop_requested()) {
        throw Refusal{STOPPED};
    }
    definition.check(node);
    if (levelOf(node)) {
        checkName(node, siblings);
    }
    if (tagOf(node) == "domain_id" && !isDomainId(textOf(node))) {
        refuseAt(node, quoted(textOf(node)) + " is no domain id; expected an integer from 0 to " +
                           std::to_string(DDS_DOMAIN_ID_MAX));
    }
    std::set<std::string> names;
    for (const xmlNode* child : elementsIn(node)) {
        checkElement(child, definition, stop, names);
    }
}

} // namespace

void checkDocument(const xmlDoc* document, const std::stop_token& stop) {
    const xmlNode* root = xmlDocGetRootElement(document);
    if (tagOf(root) != ROOT_TAG) {
        refuseAt(root, "the root element is " + describe(root) + "; it must be dds");
    }
    std::set<std::string> none;
    checkElement(root, Definition::ofProduct(), stop, none);
}

XmlDocument readDocument(std::string_view xml, const std::stop_token& stop) {
    XmlDocument document = parseXml(xml, stop);
    checkDocument(document.get(), stop);
    return document;
}

} // namespace zul::plan
