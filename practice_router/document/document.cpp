// What the definition cannot express is checked in the same walk as what it can.
#include "practice_router/document/document.h"

#include "middleware/dds/dds.h"
#include "practice_router/document/definition.h"
#include "practice_router/document/entity.h"
#include "practice_router/document/text.h"
#include "practice_router/document/xml_nodes.h"
#include "product/product_info.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace zul::practice {

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

// What is wrong with the name of an entity; empty when nothing is.
std::string faultInName(const xmlNode* node, std::set<std::string>& siblings) {
    const std::string name = nameOf(node);
    const std::string what = "the name " + quoted(name) + " of this " + std::string(tagOf(node));
    if (!isName(name)) {
        return what + " is not allowed; expected 1 to 254 letters, digits, \"_\" and \"-\"";
    }
    return siblings.insert(name).second ? "" : what + " is taken by an element beside it; choose another";
}

class Check {
public:
    Check(const Definition& definition, const std::stop_token& stop, std::string& error)
        : definition_(definition), stop_(stop), error_(error) {}

    // An element and everything inside. As deep as documents may be. `siblings` are the names of the entities
    // in front of it.
    bool passes(const xmlNode* node, std::set<std::string>& siblings) {
        if (stop_.stop_requested()) {
            error_ = STOPPED;
            return false;
        }
        if (const auto fault = definition_.faultIn(node)) {
            return failed(fault->element, fault->what);
        }
        const std::string wrong = levelOf(node) ? faultInName(node, siblings) : "";
        if (!wrong.empty()) {
            return failed(node, wrong);
        }
        if (tagOf(node) == "domain_id" && !isDomainId(textOf(node))) {
            return failed(node, quoted(textOf(node)) + " is no domain id; expected an integer from 0 to " +
                                    std::to_string(DDS_DOMAIN_ID_MAX));
        }
        std::set<std::string> names;
        for (const xmlNode* child : elementsIn(node)) {
            if (!passes(child, names)) {
                return false;
            }
        }
        return true;
    }

private:
    bool failed(const xmlNode* node, const std::string& what) {
        error_ = "line " + std::to_string(lineOf(node)) + ": " + what;
        return false;
    }

    const Definition& definition_;
    const std::stop_token& stop_;
    std::string& error_;
};

} // namespace

bool isAcceptable(const xmlDoc* document, const std::stop_token& stop, std::string& error) {
    const xmlNode* root = xmlDocGetRootElement(document);
    if (tagOf(root) != ROOT_TAG) {
        error = "line " + std::to_string(lineOf(root)) + ": the root element is " + describe(root) +
                "; it must be dds";
        return false;
    }
    std::set<std::string> none;
    return Check(Definition::ofProduct(), stop, error).passes(root, none);
}

XmlDocument readDocument(std::string_view xml, const std::stop_token& stop, std::string& error) {
    XmlDocument document = parseXml(xml, stop, error);
    return document != nullptr && isAcceptable(document.get(), stop, error) ? std::move(document) : nullptr;
}

} // namespace zul::practice
