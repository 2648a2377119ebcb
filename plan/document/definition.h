// The product's document type definition as rules: what is wrong with an element, in one line that says what
// was expected, and where one more child may go. Every answer takes time linear in the element's own
// children and attributes. Immutable once built.
#pragma once

#include <libxml/tree.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zul::plan {

// Which elements an element may hold, and in which order: the occurrences of names in the content model
// are numbered (its positions), and of each it is known which may come next.
class ContentModel {
public:
    using Positions = std::uint64_t; // a set, a bit for each

    // How far a list of children has got.
    struct State {
        Positions next = 0;      // what may come next
        bool isComplete = false; // or nothing more
    };

    explicit ContentModel(const xmlElementContent* content);

    State begin() const { return begin_; }
    // Nothing: `tag` cannot come next.
    std::optional<State> after(const State& state, std::string_view tag) const;
    // The last place among the children of `parent` where one of that tag may go: the element that it goes
    // before, null for the end. Nothing: it can go nowhere.
    std::optional<xmlNode*> placeFor(std::string_view tag, const xmlNode* parent) const;
    // Whether an element of that tag may occur at all.
    bool knows(std::string_view tag) const { return positionsOf(tag) != 0; }
    // Whether an element of that tag may occur more than once.
    bool repeats(std::string_view tag) const;
    // What may come next, in words.
    std::string expected(const State& state) const;

private:
    struct Part {
        Positions first, last;
        bool isOptional;
    };

    Part build(const xmlElementContent* content);
    Part addPosition(std::string_view name);
    void link(Positions from, Positions to);
    Positions following(Positions positions) const;
    Positions positionsOf(std::string_view tag) const;

    std::vector<std::string> names_; // of the positions
    std::vector<Positions> follow_;  // by position
    std::map<std::string, Positions, std::less<>> positions_;
    State begin_;
    Positions last_ = 0; // may end the list
};

// Takes what is wrong with an element, in one line that says what was expected.
using Report = std::function<void(const xmlNode* at, std::string what)>;

class Definition {
public:
    struct Attribute {
        std::string name;
        bool isRequired;
        std::vector<std::string> words; // the values allowed; none: any
    };
    struct Rule {
        ContentModel content;
        bool isEmpty;
        bool allowsText;
        std::vector<Attribute> attributes;
    };

    // The selected product's. The first call builds it; no other thread may call meanwhile.
    static const Definition& ofProduct();
    explicit Definition(const xmlDtd& dtd);

    // Null when an element is not declared.
    const Rule* find(std::string_view tag) const;
    // Reports everything that is wrong with the attributes of an element or the list of its children, and
    // nothing that follows from what was reported. What is inside the children is not looked at.
    static void check(const Rule& rule, const xmlNode* element, const Report& report);

private:
    static void checkAttributes(const Rule& rule, const xmlNode* element, const Report& report);
    static void checkContent(const Rule& rule, const xmlNode* element, const Report& report);

    std::map<std::string, Rule, std::less<>> rules_; // by tag
};

} // namespace zul::plan
