// The type reader works on objects: the elements of the types sections, without the rest of the document,
// become such. What they cost in time is limited by what they cost the document's own reader.
#include "plan/check/types.h"

#include "middleware/xml/type_reader.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <deque>
#include <memory>

namespace zul::plan {

namespace {

constexpr std::string_view SECTION = "types";

// All objects of the sections, below an object for the root.
class Objects {
public:
    Objects(const xmlNode* root, const KnownFaults& known, std::stop_token stop);
    ZULXMLDocument& document() { return document_; }
    bool hasInclude() const { return hasInclude_; }
    // The names of the modules that definitions are in take more memory than they may.
    bool isTooLarge() const { return scopes_ > ZUL_XML_FULL_NAMES_MAX; }
    bool hasKnownFault(const ZULXMLObject* definition) const { return faulty_.contains(definition); }

private:
    void add(const xmlNode* node, ZULXMLObject* parent, std::size_t scope, bool isDefinition);
    ZULXMLObject* make(const xmlNode* node, ZULXMLObject* parent);

    struct Delete {
        void operator()(ZULXMLObject* object) const { ZULXMLObject_delete(object); }
    };

    const KnownFaults& known_;
    const std::stop_token stop_;
    ZULXMLDocument document_;
    std::unique_ptr<ZULXMLObject, Delete> root_; // the document's
    std::unordered_set<const ZULXMLObject*> faulty_;
    std::vector<ZULXMLAttribute> attributes_; // of the object that is made
    std::deque<std::string> copies_;          // of their values, where needed; they stay where they are
    std::size_t scopes_ = 0;                  // bytes of all scoped names
    bool hasInclude_ = false;
};

Objects::Objects(const xmlNode* root, const KnownFaults& known, std::stop_token stop)
    : known_(known), stop_(std::move(stop)) {
    root_.reset(make(root, nullptr));
    document_.root = root_.get();
    for (const xmlNode* section : elementsIn(root)) {
        if (tagOf(section) == SECTION && !isTooLarge()) {
            add(section, document_.root, 0, true);
        }
    }
}

ZULXMLObject* Objects::make(const xmlNode* node, ZULXMLObject* parent) {
    attributes_.clear();
    copies_.clear();
    for (const xmlAttr* attribute = node->properties; attribute != nullptr; attribute = attribute->next) {
        attributes_.push_back(
            {toView(attribute->name).data(), valueOf(attribute, copies_.emplace_back()).data()});
    }
    const std::string name =
        std::to_string(parent != nullptr ? parent->children.count : 0); // any that differ
    ZULXMLObject* object = ZULXMLObject_new(tagOf(node).data(), name.c_str(), parent, attributes_);
    requireMemory(object != nullptr);
    object->line = lineOf(node);
    object->context = &document_;
    if (parent != nullptr && ZULXMLObject_insertChild(parent, object) != ZUL_XML_INSERTED) {
        ZULXMLObject_delete(object);
        requireMemory(false);
    }
    return object;
}

// `scope` is the length of the name of the scope around it.
void Objects::add(const xmlNode* node, ZULXMLObject* parent, std::size_t scope, bool isDefinition) {
    if (stop_.stop_requested()) {
        throw Refusal{STOPPED};
    }
    const std::string_view tag = tagOf(node);
    const bool isScope = tag == SECTION || tag == "module";
    ZULXMLObject* object = make(node, parent);
    hasInclude_ = hasInclude_ || tag == "include";
    if (isDefinition && known_.contains(node)) {
        faulty_.insert(object);
    }
    const std::size_t length = isScope ? scope + nameOf(node).size() : scope;
    scopes_ += length;
    for (const xmlNode* child : elementsIn(node)) {
        if (isTooLarge()) {
            return;
        }
        add(child, object, length, isScope);
    }
}

bool isTypeTag(std::string_view tag) {
    return tag != "const" && tag != "module" && tag != "include";
}

} // namespace

IsType checkTypes(const xmlNode* root, const std::string& path, const KnownFaults& known,
                  const std::stop_token& stop, const TypeReport& report) {
    Objects objects(root, known, stop);
    if (objects.isTooLarge()) {
        report(lineOf(root), "the names of the modules are too long in all; shorten the outer ones");
    }
    if (objects.isTooLarge() || (objects.hasInclude() && path.empty())) {
        return [](std::string_view) {
            return true;
        };
    }
    objects.document().path = path;
    const auto types = std::make_shared<ZULXMLTypeSet>();
    ZULXMLError first;
    xml::TypeReader(*types, first, [&](const ZULXMLObject* definition, const ZULXMLError& error) {
        if (!objects.hasKnownFault(definition)) {
            report(error.line, error.text);
        }
    }).read(objects.document());
    return [types](std::string_view name) {
        const auto found = types->byName.find(name.starts_with("::") ? name.substr(2) : name);
        return found != types->byName.end() ? isTypeTag(found->second.tag) : !types->missing.text.empty();
    };
}

} // namespace zul::plan
