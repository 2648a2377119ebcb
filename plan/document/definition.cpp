// A content model is turned into the automaton of its positions (Glushkov's): a bit set is the state, so one
// pass over the children checks them, and a second pass from the end finds the places where one more may go.
#include "plan/document/definition.h"

#include "plan/document/text.h"
#include "plan/document/xml_nodes.h"
#include "product/product_info.h"

#include <libxml/parser.h>
#include <libxml/valid.h>

#include <algorithm>
#include <array>
#include <bit>
#include <memory>
#include <utility>

namespace zul::plan {

namespace {

constexpr std::size_t MAX_POSITIONS = 64;

template <class Action>
void forEach(ContentModel::Positions positions, Action action) {
    for (; positions != 0; positions &= positions - 1) {
        action(static_cast<std::size_t>(std::countr_zero(positions)));
    }
}

} // namespace

ContentModel::ContentModel(const xmlElementContent* content) {
    const Part whole = content != nullptr ? build(content) : Part{0, 0, true};
    begin_ = {whole.first, whole.isOptional};
    last_ = whole.last;
}

ContentModel::Part ContentModel::addPosition(std::string_view name) {
    requireMemory(names_.size() < MAX_POSITIONS); // the definitions are part of the program and smaller
    const Positions bit = Positions{1} << names_.size();
    names_.emplace_back(name);
    follow_.push_back(0);
    positions_[names_.back()] |= bit;
    return {bit, bit, false};
}

void ContentModel::link(Positions from, Positions to) {
    forEach(from, [&](std::size_t position) { follow_[position] |= to; });
}

ContentModel::Part ContentModel::build(const xmlElementContent* content) {
    Part part{0, 0, true}; // of text
    if (content->type == XML_ELEMENT_CONTENT_ELEMENT) {
        part = addPosition(toView(content->name));
    } else if (content->type != XML_ELEMENT_CONTENT_PCDATA) {
        const Part left = build(content->c1);
        const Part right = build(content->c2);
        if (content->type == XML_ELEMENT_CONTENT_SEQ) {
            link(left.last, right.first);
            part = {left.first | (left.isOptional ? right.first : 0),
                    right.last | (right.isOptional ? left.last : 0), left.isOptional && right.isOptional};
        } else {
            part = {left.first | right.first, left.last | right.last, left.isOptional || right.isOptional};
        }
    }
    if (content->ocur == XML_ELEMENT_CONTENT_MULT || content->ocur == XML_ELEMENT_CONTENT_PLUS) {
        link(part.last, part.first);
    }
    part.isOptional = part.isOptional || content->ocur == XML_ELEMENT_CONTENT_MULT ||
                      content->ocur == XML_ELEMENT_CONTENT_OPT;
    return part;
}

ContentModel::Positions ContentModel::following(Positions positions) const {
    Positions next = 0;
    forEach(positions, [&](std::size_t position) { next |= follow_[position]; });
    return next;
}

ContentModel::Positions ContentModel::positionsOf(std::string_view tag) const {
    const auto found = positions_.find(tag);
    return found != positions_.end() ? found->second : 0;
}

std::optional<ContentModel::State> ContentModel::after(const State& state, std::string_view tag) const {
    const Positions taken = state.next & positionsOf(tag);
    return taken != 0 ? std::optional(State{following(taken), (taken & last_) != 0}) : std::nullopt;
}

std::optional<xmlNode*> ContentModel::placeFor(std::string_view tag, const xmlNode* parent) const {
    std::vector<Positions> nextAt; // what may come before each child, and at the end
    std::optional<State> state = begin_;
    std::vector<xmlNode*> children;
    for (xmlNode* child = firstChild(parent); child != nullptr && state; child = nextElement(child)) {
        nextAt.push_back(state->next);
        children.push_back(child);
        state = after(*state, tagOf(child));
    }
    if (!state) {
        return std::nullopt;
    }
    nextAt.push_back(state->next);
    Positions fitting = last_; // those after which the rest of the children may follow
    for (std::size_t i = children.size();; --i) {
        if ((nextAt[i] & positionsOf(tag) & fitting) != 0) {
            return i < children.size() ? children[i] : nullptr;
        }
        if (i == 0) {
            return std::nullopt;
        }
        const Positions child = positionsOf(tagOf(children[i - 1])) & fitting;
        fitting = 0;
        for (std::size_t position = 0; position < follow_.size(); ++position) {
            fitting |= (follow_[position] & child) != 0 ? Positions{1} << position : 0;
        }
    }
}

bool ContentModel::repeats(std::string_view tag) const {
    const Positions own = positionsOf(tag);
    Positions reached = following(own);
    for (Positions before = 0; before != reached;) {
        before = reached;
        reached |= following(reached);
    }
    return (reached & own) != 0;
}

std::string ContentModel::expected(const State& state) const {
    std::vector<std::string> words;
    forEach(state.next, [&](std::size_t position) { words.push_back(names_[position]); });
    if (state.isComplete) {
        words.emplace_back("nothing more");
    }
    return listed(words);
}

Definition::Definition(const xmlDtd& dtd) {
    for (const xmlNode* node = dtd.children; node != nullptr; node = node->next) {
        if (node->type != XML_ELEMENT_DECL) {
            continue;
        }
        const auto& declaration = *reinterpret_cast<const xmlElement*>(node);
        Rule rule{.content = ContentModel(declaration.content),
                  .isEmpty = declaration.etype == XML_ELEMENT_TYPE_EMPTY,
                  .allowsText = declaration.etype == XML_ELEMENT_TYPE_MIXED,
                  .attributes = {}};
        for (const xmlAttribute* each = declaration.attributes; each != nullptr; each = each->nexth) {
            Attribute attribute{std::string(toView(each->name)), each->def == XML_ATTRIBUTE_REQUIRED, {}};
            for (const xmlEnumeration* word = each->tree; word != nullptr; word = word->next) {
                attribute.words.emplace_back(toView(word->name));
            }
            rule.attributes.push_back(std::move(attribute));
        }
        rules_.emplace(toView(declaration.name), std::move(rule));
    }
}

const Definition& Definition::ofProduct() {
    static std::array<std::unique_ptr<const Definition>, std::size(ROUTER_g_productInfo)> definitions;
    auto& definition = definitions[static_cast<std::size_t>(ROUTER_getProductId())];
    if (definition == nullptr) {
        const ROUTERProductInfo& product = *ROUTER_getProductInfo();
        std::string text;
        for (std::int32_t i = 0; i < product.dtdChunkCount; ++i) {
            text += product.dtdChunks[i];
        }
        xmlParserInputBuffer* input =
            xmlParserInputBufferCreateMem(text.data(), static_cast<int>(text.size()), XML_CHAR_ENCODING_NONE);
        const std::unique_ptr<xmlDtd, XmlDeleter> dtd(
            input != nullptr ? xmlIOParseDTD(nullptr, input, XML_CHAR_ENCODING_NONE) : nullptr);
        requireMemory(dtd != nullptr);
        definition = std::make_unique<const Definition>(*dtd);
    }
    return *definition;
}

const Definition::Rule* Definition::find(std::string_view tag) const {
    const auto rule = rules_.find(tag);
    return rule != rules_.end() ? &rule->second : nullptr;
}

void Definition::check(const Rule& rule, const xmlNode* element, const Report& report) {
    checkAttributes(rule, element, report);
    checkContent(rule, element, report);
}

void Definition::checkAttributes(const Rule& rule, const xmlNode* element, const Report& report) {
    for (const xmlAttr* attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
        if (isSchemaLocation(attribute)) {
            continue;
        }
        const std::string_view name = toView(attribute->name);
        const auto declared = std::ranges::find(rule.attributes, name, &Attribute::name);
        if (declared == rule.attributes.end() || attribute->ns != nullptr) {
            std::vector<std::string> names;
            for (const Attribute& each : rule.attributes) {
                names.push_back(each.name);
            }
            report(element, describe(element) + " has no attribute " + shortened(name) + "; expected " +
                                (names.empty() ? "no attribute" : listed(names)));
        } else if (!declared->words.empty()) {
            std::string copy;
            const std::string_view value = valueOf(attribute, copy);
            if (std::ranges::find(declared->words, value) == declared->words.end()) {
                report(element, "the attribute " + declared->name + " of " + describe(element) + " is " +
                                    quoted(value) + "; expected " + listed(declared->words));
            }
        }
    }
    for (const Attribute& each : rule.attributes) {
        if (each.isRequired && xmlHasProp(element, toXml(each.name)) == nullptr) {
            report(element, describe(element) + " lacks an attribute; expected " + each.name);
        }
    }
}

// After the first wrong child only those are reported that may be nowhere in the element: the others, and
// what is missing at the end, may well follow from it.
void Definition::checkContent(const Rule& rule, const xmlNode* element, const Report& report) {
    if (rule.isEmpty) {
        if (element->children != nullptr) {
            report(element, describe(element) + " has content; expected none");
        }
        return;
    }
    ContentModel::State state = rule.content.begin();
    bool holdsText = false;
    bool isInOrder = true;
    for (const xmlNode* child = element->children; child != nullptr; child = child->next) {
        if (!rule.allowsText && !holdsText && isText(child)) {
            holdsText = true;
            report(element, describe(element) + " holds text; expected " + rule.content.expected(state));
        }
        if (child->type != XML_ELEMENT_NODE) {
            continue;
        }
        if (const auto next = rule.content.after(state, tagOf(child))) {
            state = *next;
        } else if (std::exchange(isInOrder, false) || !rule.content.knows(tagOf(child))) {
            report(child, describe(child) + " cannot stand here in " + describe(element) + "; expected " +
                              rule.content.expected(state));
        }
    }
    if (isInOrder && !holdsText && !state.isComplete) {
        report(element, describe(element) + " is not complete; expected " + rule.content.expected(state));
    }
}

} // namespace zul::plan
