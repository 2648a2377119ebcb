// Differences come in the order of the tree, so the element that a step leads into is the last child or new.
#include "plan/compare/snippet.h"

#include "plan/compare/values.h"
#include "plan/document/xml_nodes.h"

namespace zul::plan {

namespace {

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\t':
        case '\n':
        case '\r':
            result.append("&#").append(std::to_string(static_cast<int>(c))).append(";");
            break;
        default:
            result += c;
        }
    }
    return result;
}

void writeAttribute(std::string_view name, const std::string& value, std::string& text) {
    text.append(" ").append(name).append("=\"").append(escaped(value)).append("\"");
}

void writeElement(const xmlNode* element, std::string& text) {
    text.append("<").append(tagOf(element));
    for (const xmlAttr* each = element->properties; each != nullptr; each = each->next) {
        if (!isSchemaLocation(each)) {
            writeAttribute(toView(each->name),
                           attributeOf(element, reinterpret_cast<const char*>(each->name)), text);
        }
    }
    const std::string content = firstChild(element) == nullptr ? textOf(element) : "";
    if (content.empty() && firstChild(element) == nullptr) {
        text += "/>";
        return;
    }
    text.append(">").append(escaped(content));
    for (const xmlNode* child : elementsIn(element)) {
        writeElement(child, text);
    }
    text.append("</").append(tagOf(element)).append(">");
}

} // namespace

std::string textOfElement(const xmlNode* element) {
    std::string text;
    writeElement(element, text);
    return text;
}

Snippet::Element& Snippet::childOf(Element& parent, std::string_view tag, const std::string& key) {
    if (parent.children.empty() || parent.children.back().tag != tag || parent.children.back().key != key) {
        parent.children.push_back({.tag = std::string(tag), .key = key});
    }
    return parent.children.back();
}

void Snippet::setName(Element& element, const std::string& name) {
    if (!name.empty()) {
        element.attributes.emplace_back("name", name);
    }
}

void Snippet::setAttribute(Element& element, std::string_view name, const std::string& value) {
    element.attributes.emplace_back(name, value);
    hasAttributes_ = true;
}

Snippet::Element& Snippet::enterItem(Element& list, const std::string& identity) {
    if (!holdsPairs(list.tag)) {
        Element& texts = list.tag == "partition" ? childOf(list, "name") : list;
        Element& item = childOf(texts, "element", identity);
        item.text = identity;
        return item;
    }
    Element& pair = childOf(childOf(list, "value"), "element", identity);
    if (pair.children.empty()) {
        childOf(pair, "name").text = identity;
    }
    return pair;
}

Snippet::Element& Snippet::enter(Element& parent, const Part& step) {
    if (step.tag.empty()) {
        return enterItem(parent, step.identity);
    }
    const bool isNew = parent.children.empty() || parent.children.back().tag != step.tag ||
                       parent.children.back().key != step.identity;
    Element& element = childOf(parent, step.tag, step.identity);
    if (isNew && step.element != nullptr) {
        setName(element, step.tag.ends_with("_qos") ? "" : zul::plan::nameOf(step.element));
    }
    return element;
}

void Snippet::add(Steps steps, Change change, const std::string& to) {
    // An update adds and replaces; of the values of a filter it would replace the last.
    const bool canSay = change == Change::ADDED || change == Change::CHANGED;
    if (!canSay || steps.empty() || steps.back()->tag == "parameter") {
        return;
    }
    const Part& last = *steps.back();
    Element* element = &root_;
    for (const Part* step : steps.first(steps.size() - 1)) {
        element = &enter(*element, *step);
    }
    if (last.isAttribute) {
        setAttribute(*element, last.written.empty() ? last.tag : last.written, to);
        return;
    }
    element = &enter(*element, last);
    if (last.isDuration) {
        const DurationParts parts = splitDuration(to);
        childOf(*element, "sec").text = parts.sec;
        childOf(*element, "nanosec").text = parts.nanosec;
    } else if (last.tag.empty()) {
        if (holdsPairs(steps[steps.size() - 2]->tag)) {
            childOf(*element, "value").text = to;
        }
    } else {
        element->text = to;
    }
}

void Snippet::write(const Element& element, std::string& text) {
    text.append("<").append(element.tag);
    for (const auto& [name, value] : element.attributes) {
        writeAttribute(name, value, text);
    }
    text.append(">").append(escaped(element.text));
    for (const Element& child : element.children) {
        write(child, text);
    }
    text.append("</").append(element.tag).append(">");
}

std::string Snippet::text() const {
    std::string text;
    write(root_, text);
    return text;
}

} // namespace zul::plan
