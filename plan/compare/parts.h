// What counts in an element: its parts, each with the one text in which its value is compared. Blanks,
// comments, repetitions that do not count and the order of attributes are gone; what is left out and has a
// default counts as that default.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>
#include <vector>

namespace zul::plan {

// An attribute, an element, or an item of a list. Borrows from its document.
struct Part {
    std::string_view tag{};           // an item of a list has none
    std::string identity{};           // what tells it from others of its tag; empty when there is but one
    std::string value{};              // of one that holds a text
    const xmlNode* element = nullptr; // of one that may hold parts of its own
    const char* absent = nullptr;     // the value that counts where there is none
    std::string_view written{};       // the attribute's own name, where another one may say the same
    std::string_view order{};         // the order of the parts with this word counts; empty: it does not
    bool isAttribute = false;
    bool isPresent = false; // it configures something, whatever it holds
    bool isDuration = false;
    bool isEntity = false;

    bool isSame(const Part& other) const {
        return tag == other.tag && isAttribute == other.isAttribute && identity == other.identity;
    }
};

// The parts of an element, none twice, in the order of the document.
std::vector<Part> partsOf(const xmlNode* element);
// The sections of a document that its configurations use: types, libraries.
std::vector<Part> sectionsOf(const xmlDoc* document);

// Whether the items of an element of that tag are pairs of a name and a value.
bool holdsPairs(std::string_view tag);

} // namespace zul::plan
