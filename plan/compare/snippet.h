// The XML of an update, put together from differences as they are found.
#pragma once

#include "plan/compare/compare.h"

#include <memory>
#include <string>

namespace zul::plan {

// An element and what is inside as XML on one line, without comments.
std::string textOfElement(const xmlNode* element);

class Snippet {
public:
    explicit Snippet(std::string_view tag) : root_{std::string(tag)} {}
    // Names the outermost element.
    void name(const std::string& name) { setName(root_, name); }

    // Adds what makes the difference vanish. What an update cannot say is left out.
    void add(Steps steps, Change change, const std::string& to);
    void setAttribute(std::string_view name, const std::string& value) { setAttribute(root_, name, value); }
    // Puts another one inside, after what is there.
    void nest(Snippet&& inner) { root_.children.push_back(std::move(inner.root_)); }
    bool isEmpty() const { return root_.children.empty() && !hasAttributes_; }
    std::string text() const;

private:
    struct Element {
        std::string tag;
        std::string key{}; // identity of the part that it is for
        std::vector<std::pair<std::string, std::string>> attributes{};
        std::string text{};
        std::vector<Element> children{};
    };
    static Element& childOf(Element& parent, std::string_view tag, const std::string& key = {});
    static Element& enter(Element& parent, const Part& step);
    static Element& enterItem(Element& list, const std::string& identity);
    static void setName(Element& element, const std::string& name);
    void setAttribute(Element& element, std::string_view name, const std::string& value);
    static void write(const Element& element, std::string& text);

    Element root_;
    bool hasAttributes_ = false;
};

} // namespace zul::plan
