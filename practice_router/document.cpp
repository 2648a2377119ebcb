#include "practice_router/document.h"

#include "middleware/dds.h"
#include "practice_router/entity.h"
#include "practice_router/xml_nodes.h"
#include "product/product_info.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace {

constexpr std::string_view ROOT_TAG = "dds";

std::string atLine(const xmlNode* node, const std::string& what) {
    return "line " + std::to_string(xmlGetLineNo(node)) + ": " + what;
}

bool isNameCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' || c == '-';
}

bool isName(std::string_view name) {
    return !name.empty() && name.size() <= PRACTICE_ENTITY_NAME_MAX &&
           std::all_of(name.begin(), name.end(), isNameCharacter);
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

bool checkEntity(const xmlNode* node, std::set<std::string>& siblings, std::string& error) {
    const std::string name = PracticeNode_name(node);
    const std::string tag(PracticeNode_tag(node));
    if (!isName(name)) {
        error = atLine(node, "the name \"" + name + "\" of this " + tag +
                                 " is not allowed; use 1 to 254 letters, digits, \"_\" and \"-\"");
        return false;
    }
    if (!siblings.insert(name).second) {
        error = atLine(node, "the name \"" + name + "\" of this " + tag +
                                 " is taken by an element beside it; choose another");
        return false;
    }
    return true;
}

// What the definition cannot express, for everything inside `parent`. As deep as documents may be.
bool checkMeaning(const xmlNode* parent, std::string& error) {
    std::set<std::string> siblings; // names of the entities among the children
    for (const xmlNode* node = PracticeNode_firstChild(parent); node != nullptr;
         node = PracticeNode_next(node)) {
        if (PracticeEntity_level(PracticeNode_tag(node)) && !checkEntity(node, siblings, error)) {
            return false;
        }
        if (PracticeNode_tag(node) == "domain_id" && !isDomainId(PracticeNode_text(node))) {
            error = atLine(node, "\"" + PracticeNode_text(node) +
                                     "\" is no domain id; use an integer from 0 to " +
                                     std::to_string(DDS_DOMAIN_ID_MAX));
            return false;
        }
        if (!checkMeaning(node, error)) {
            return false;
        }
    }
    return true;
}

} // namespace

PracticeXmlDocument PracticeDocument_read(std::string_view xml, std::string& error) {
    PracticeXmlDocument document = PracticeXml_parse(xml, error);
    if (document == nullptr) {
        return nullptr;
    }
    const xmlNode* root = xmlDocGetRootElement(document.get());
    if (PracticeNode_tag(root) != ROOT_TAG) {
        error =
            atLine(root, "the root element is " + std::string(PracticeNode_tag(root)) + "; it must be dds");
        return nullptr;
    }
    return PracticeXml_followsDtd(document.get(), error) && checkMeaning(root, error) ? std::move(document)
                                                                                      : nullptr;
}
