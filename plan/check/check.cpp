// One walk holds each element against the definition, the table of fields and the relations; what is known of
// a tag is looked up once. What can be referred to is collected before it; circles and types come after it.
#include "plan/check/check.h"

#include "plan/check/fields.h"
#include "plan/check/references.h"
#include "plan/check/relations.h"
#include "plan/check/routes.h"
#include "plan/check/types.h"
#include "plan/document/entity.h"
#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"

#include <algorithm>

namespace zul::plan {

namespace {

constexpr std::string_view ROOT_TAG = "dds";
const std::string NO_PATH;
constexpr std::size_t MAX_PARAMETERS = 100; // of a content filter

// What there is to check of the elements with one tag.
struct Rules {
    const Definition::Rule* rule; // null: the element is not declared
    const FieldsOfTag* fields;
    std::vector<const Relation*> relations;
    std::optional<EntityLevel> level;
    bool isRoute;
    bool hasOwnNames; // elements of other tags may have the same
};

class Check {
public:
    // With `keepsFirst`, no finding but the first one is kept.
    Check(const xmlDoc* document, const std::string& path, const std::stop_token& stop, bool keepsFirst)
        : root_(xmlDocGetRootElement(document)), path_(path), stop_(stop), keepsFirst_(keepsFirst) {}

    std::vector<Finding> run();

private:
    using Names = std::unordered_set<std::string>;
    struct TypeReference {
        const xmlNode* element;
        std::string path;
    };

    void add(int line, std::string what);
    void addAt(const xmlNode* at, std::string what);
    const Rules& rulesOf(const xmlNode* element);
    void checkElement(const xmlNode* element, const Rules& rules, Names& siblings);
    void checkName(const xmlNode* element, const Rules& rules, Names& siblings);
    void checkField(const Field& field, const xmlNode* element);
    void checkAttribute(const Field& field, const xmlNode* element);
    void checkOthers(const xmlNode* element);
    void checkTypeSections();

    const xmlNode* root_;
    const std::string& path_;
    const std::stop_token& stop_;
    const bool keepsFirst_;
    const Definition& definition_ = Definition::ofProduct();
    const Report report_ = [this](const xmlNode* at, std::string what) {
        addAt(at, std::move(what));
    };
    std::optional<References> references_;
    // The name of a tag is in memory once for all its elements, as a rule.
    std::unordered_map<const xmlChar*, Rules> rules_;
    Sides sides_; // of the domain route that the walk is in
    std::vector<TypeReference> typeReferences_;
    KnownFaults faultyTypes_;
    std::vector<Finding> findings_;
};

std::vector<Finding> Check::run() {
    if (tagOf(root_) != ROOT_TAG) {
        addAt(root_, "the root element is " + describe(root_) + "; it must be dds");
        return std::move(findings_);
    }
    references_.emplace(root_);
    Names none;
    checkElement(root_, rulesOf(root_), none);
    references_->reportCircles(report_);
    checkTypeSections();
    std::ranges::stable_sort(findings_, {}, &Finding::line);
    return std::move(findings_);
}

void Check::add(int line, std::string what) {
    if (keepsFirst_ && !findings_.empty()) {
        if (findings_.front().line <= line) {
            return;
        }
        findings_.clear();
    }
    findings_.push_back({line, std::move(what)});
}

void Check::addAt(const xmlNode* at, std::string what) {
    add(lineOf(at), std::move(what));
    // Notes the definition of a type that the fault is in, if it is in one.
    for (const xmlNode* element = at; element != root_ && element->parent != nullptr;
         element = element->parent) {
        const std::string_view around = tagOf(element->parent);
        if (around == "types" || around == "module" || tagOf(element) == "types") {
            faultyTypes_.insert(element);
            return;
        }
    }
}

const Rules& Check::rulesOf(const xmlNode* element) {
    const auto known = rules_.find(element->name);
    if (known != rules_.end()) {
        return known->second;
    }
    const std::string_view tag = tagOf(element);
    return rules_
        .emplace(element->name, Rules{.rule = definition_.find(tag),
                                      .fields = findFields(tag),
                                      .relations = findRelations(tag),
                                      .level = levelOf(element),
                                      .isRoute = levelOf(element) == EntityLevel::ROUTE,
                                      .hasOwnNames = tag.ends_with("_library") || tag.ends_with("_plugin") ||
                                                     tag == "qos_profile"})
        .first->second;
}

// `siblings` are the names of the entities, libraries, profiles and plugins before it in the same parent.
void Check::checkElement(const xmlNode* element, const Rules& rules, Names& siblings) {
    if (stop_.stop_requested()) {
        throw Refusal{STOPPED};
    }
    const bool isKnown = keepsFirst_ && !findings_.empty() && lineOf(element) >= findings_.front().line;
    if (isKnown || rules.rule == nullptr) {
        return; // nothing in it comes before the first finding; or it was reported with its parent
    }
    Definition::check(*rules.rule, element, report_);
    if (rules.level || rules.hasOwnNames) {
        checkName(element, rules, siblings);
    }
    if (rules.fields != nullptr) {
        for (const Field* field : rules.fields->attributes) {
            checkAttribute(*field, element);
        }
        if (const Field* field = rules.fields->contentOf(element)) {
            checkField(*field, element);
        }
    }
    for (const Relation* relation : rules.relations) {
        checkRelation(*relation, element, report_);
    }
    if (rules.level == EntityLevel::DOMAIN_ROUTE) {
        sides_ = sidesOf(element);
    } else if (rules.isRoute) {
        checkRoute(element, sides_, report_);
    } else {
        checkOthers(element);
    }
    if (rules.rule->isEmpty) {
        return;
    }
    Names names;
    for (const xmlNode* child : elementsIn(element)) {
        checkElement(child, rulesOf(child), names);
    }
}

void Check::checkName(const xmlNode* element, const Rules& rules, Names& siblings) {
    const std::string name = nameOf(element);
    const std::string tag(tagOf(element));
    const std::string what = "the name " + quoted(name) + " of this " + tag;
    if (xmlHasProp(element, toXml("name")) == nullptr || (rules.hasOwnNames && !isName(name))) {
        return; // reported as a missing attribute, or with the fields
    }
    if (!isName(name)) {
        addAt(element, what + " is not allowed; expected 1 to 254 letters, digits, \"_\" and \"-\"");
    } else if (!siblings.insert(rules.hasOwnNames ? tag + std::string(PATH_SEPARATOR) + name : name).second) {
        addAt(element, what + " is taken by an element beside it; choose another");
    }
}

void Check::checkField(const Field& field, const xmlNode* element) {
    const std::string expected = expectedInstead(field, element);
    if (expected.empty()) {
        return;
    }
    const std::string own = std::string(tagOf(element)) + " of " + describe(element->parent);
    addAt(element,
          "the " + own +
              (field.form == Form::ELEMENTS || field.form == Form::PAIR || firstChild(element) != nullptr
                   ? " is not made up as it should be"
                   : " is " + quoted(textOf(element))) +
              "; expected " + expected);
}

void Check::checkAttribute(const Field& field, const xmlNode* element) {
    const std::string attribute(attributeIn(field.place));
    const xmlAttr* given = xmlHasProp(element, toXml(attribute));
    if (given == nullptr) {
        return;
    }
    std::string copy;
    const std::string_view value = valueOf(given, copy);
    std::string expected;
    if (field.form != Form::REFERENCE) {
        expected = expectedInstead(field, value);
    } else if (field.target == Target::TYPE) {
        typeReferences_.push_back({element, std::string(value)});
    } else if (!references_->knows(field.target, std::string(value))) {
        expected = field.target == Target::PROFILE
                       ? "the path Library::Profile of a qos_profile in the document"
                   : field.target == Target::ADAPTER
                       ? "the path Library::Plugin of an adapter_plugin in the document"
                       : "the path Library::Plugin of a transformation_plugin in the document";
    }
    if (!expected.empty()) {
        addAt(element, "the attribute " + attribute + " of " + describe(element) + " is " + quoted(value) +
                           "; expected " + expected);
    }
}

// What no table has a form for.
void Check::checkOthers(const xmlNode* element) {
    if (tagOf(element) == "administration") {
        const xmlNode* saves = nullptr;
        bool hasPath = false;
        for (const xmlNode* child : elementsIn(element)) {
            saves = tagOf(child) == "save_on_update" ? child : saves;
            hasPath = tagOf(child) == "save_path" ? !textOf(child).empty() : hasPath;
        }
        if (saves != nullptr && !hasPath && textOf(saves) == "true") {
            addAt(saves, "save_on_update is true and the administration has no save_path; expected one");
        }
    } else if (tagOf(element) == "content_filter") {
        std::size_t parameters = 0;
        for (const xmlNode* child : elementsIn(element)) {
            parameters += tagOf(child) == "parameter" ? 1 : 0;
            if (parameters > MAX_PARAMETERS) {
                addAt(child, "this is parameter " + std::to_string(parameters) +
                                 " of the content_filter; expected at most " +
                                 std::to_string(MAX_PARAMETERS));
                return;
            }
        }
    }
}

void Check::checkTypeSections() {
    const IsType isType =
        checkTypes(root_, path_, faultyTypes_, stop_,
                   [this](int line, const std::string& what) { add(line, shortened(what, MAX_FAILURE)); });
    for (const TypeReference& reference : typeReferences_) {
        if (!isType(reference.path)) {
            addAt(reference.element, "the attribute type_ref of " + describe(reference.element) + " is " +
                                         quoted(reference.path) +
                                         "; expected the path Module::Type of a type in the document");
        }
    }
}

void refuse(const Finding& finding) {
    throw Refusal{.why = lineInWords(finding.line) + finding.message, .line = finding.line};
}

} // namespace

std::vector<Finding> findFaults(const xmlDoc* document, const std::string& path,
                                const std::stop_token& stop) {
    return Check(document, path, stop, false).run();
}

std::vector<Finding> findFaults(std::string_view xml, const std::string& path, const std::stop_token& stop) {
    XmlDocument document;
    try {
        document = parseContent(xml, stop);
    } catch (const Refusal& refusal) {
        return {{refusal.line, refusal.why.substr(lineInWords(refusal.line).size())}};
    }
    return findFaults(document.get(), path, stop);
}

void checkDocument(const xmlDoc* document, const std::stop_token& stop) {
    const std::vector<Finding> findings = Check(document, NO_PATH, stop, true).run();
    if (!findings.empty()) {
        refuse(findings.front());
    }
}

XmlDocument readDocument(std::string_view xml, const std::stop_token& stop) {
    XmlDocument document = parseXml(xml, stop);
    checkDocument(document.get(), stop);
    return document;
}

} // namespace zul::plan
