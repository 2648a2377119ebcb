// The types sections of a document as the type reader sees them: elements alone, in whatever tree they were
// read. All texts are borrowed from that tree.
#pragma once

#include "middleware/xml/document.h"

#include <memory_resource>

namespace zul::xml {

struct TypeElement {
    std::string_view tag;
    std::span<const ZULXMLAttribute> attributes;
    std::int32_t line = 0;
    bool holdsText = false;
    // Its children in the order of the document, and how many there are.
    const TypeElement* first = nullptr;
    TypeElement* last = nullptr;
    std::size_t count = 0;
    const TypeElement* next = nullptr; // after it in its parent
};

// Owns the elements; none of them moves.
class TypeSections {
public:
    // No sections yet. `path` is that of the document's file; empty when it came as text.
    explicit TypeSections(std::string path) : path_(std::move(path)) {}
    // The sections of the document, which has a root and must stay as it is.
    explicit TypeSections(const ZULXMLDocument& document);
    TypeSections(const TypeSections&) = delete;
    TypeSections& operator=(const TypeSections&) = delete;

    const std::string& path() const { return path_; }
    // The first section; the others are after it. Null when there is none.
    const TypeElement* first() const { return all_.first; }
    // How many elements there are in all sections.
    std::size_t count() const { return count_; }

    // Adds a section.
    TypeElement& add(const TypeElement& section) { return add(section, all_); }
    // Adds a last child.
    TypeElement& add(const TypeElement& child, TypeElement& parent);
    // Room for the attributes of an element.
    std::span<ZULXMLAttribute> allocateAttributes(std::size_t count);

private:
    void addTree(const ZULXMLObject& object, TypeElement& parent);

    std::pmr::monotonic_buffer_resource memory_;
    std::string path_;
    TypeElement all_{}; // the sections are its children
    std::size_t count_ = 0;
};

} // namespace zul::xml
