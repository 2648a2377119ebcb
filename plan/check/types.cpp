// The type reader gets the elements of the types sections, without the rest of the document and without a
// copy of its texts. Their number, and so the time, is within the limits of the document's own reader.
#include "plan/check/types.h"

#include "middleware/xml/type_reader.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <deque>
#include <memory>

namespace zul::plan {

namespace {

constexpr std::string_view SECTION = "types";

class Sections {
public:
    Sections(const xmlNode* root, const std::string& path, const KnownFaults& known, std::stop_token stop);
    const xml::TypeSections& elements() const { return elements_; }
    bool hasInclude() const { return hasInclude_; }
    // The names of the modules that definitions are in take more memory than they may.
    bool isTooLarge() const { return scopes_ > ZUL_XML_FULL_NAMES_MAX; }
    bool hasKnownFault(const xml::TypeElement* definition) const { return faulty_.contains(definition); }

private:
    void add(const xmlNode* node, xml::TypeElement* parent, std::size_t scope, bool isDefinition);
    std::span<const ZULXMLAttribute> attributesOf(const xmlNode* node);

    const KnownFaults& known_;
    const std::stop_token stop_;
    xml::TypeSections elements_;
    std::unordered_set<const xml::TypeElement*> faulty_;
    std::deque<std::string> copies_; // of values that are not in memory as a whole
    std::size_t scopes_ = 0;         // bytes of all scoped names
    bool hasInclude_ = false;
};

Sections::Sections(const xmlNode* root, const std::string& path, const KnownFaults& known,
                   std::stop_token stop)
    : known_(known), stop_(std::move(stop)), elements_(path) {
    for (const xmlNode* section : elementsIn(root)) {
        if (tagOf(section) == SECTION && !isTooLarge()) {
            add(section, nullptr, 0, true);
        }
    }
}

std::span<const ZULXMLAttribute> Sections::attributesOf(const xmlNode* node) {
    std::size_t count = 0;
    for (const xmlAttr* each = node->properties; each != nullptr; each = each->next) {
        ++count;
    }
    const std::span<ZULXMLAttribute> attributes = elements_.allocateAttributes(count);
    const xmlAttr* given = node->properties;
    for (ZULXMLAttribute& attribute : attributes) {
        std::string copy;
        attribute = {toView(given->name).data(), valueOf(given, copy).data()};
        if (!copy.empty()) {
            attribute.value = copies_.emplace_back(std::move(copy)).c_str();
        }
        given = given->next;
    }
    return attributes;
}

// `parent` is null for a section; `scope` is the length of the name of the scope around it.
void Sections::add(const xmlNode* node, xml::TypeElement* parent, std::size_t scope, bool isDefinition) {
    if (stop_.stop_requested()) {
        throw Refusal{STOPPED};
    }
    const std::string_view tag = tagOf(node);
    const bool isScope = tag == SECTION || tag == "module";
    const xml::TypeElement read{.tag = tag, .attributes = attributesOf(node), .line = lineOf(node)};
    xml::TypeElement& element = parent != nullptr ? elements_.add(read, *parent) : elements_.add(read);
    hasInclude_ = hasInclude_ || tag == "include";
    if (isDefinition && known_.contains(node)) {
        faulty_.insert(&element);
    }
    const std::size_t length = isScope ? scope + nameOf(node).size() : scope;
    scopes_ += length;
    for (const xmlNode* child : elementsIn(node)) {
        if (isTooLarge()) {
            return;
        }
        add(child, &element, length, isScope);
    }
}

bool isTypeTag(std::string_view tag) {
    return tag != "const" && tag != "module" && tag != "include";
}

} // namespace

IsType checkTypes(const xmlNode* root, const std::string& path, const KnownFaults& known,
                  const std::stop_token& stop, const TypeReport& report) {
    const Sections sections(root, path, known, stop);
    if (sections.isTooLarge()) {
        report(lineOf(root), "the names of the modules are too long in all; shorten the outer ones");
    }
    if (sections.isTooLarge() || (sections.hasInclude() && path.empty())) {
        return [](std::string_view) {
            return true;
        };
    }
    const auto types = std::make_shared<ZULXMLTypeSet>();
    ZULXMLError first;
    xml::TypeReader(*types, first, [&](const xml::TypeElement* definition, const ZULXMLError& error) {
        if (!sections.hasKnownFault(definition)) {
            report(error.line, error.text);
        }
    }).read(sections.elements());
    return [types](std::string_view name) {
        const auto found = types->byName.find(name.starts_with("::") ? name.substr(2) : name);
        return found != types->byName.end() ? isTypeTag(found->second.tag) : !types->missing.text.empty();
    };
}

} // namespace zul::plan
