// The names of a types section: what each scoped name means.
#pragma once

#include "middleware/xml/document.h"
#include "middleware/xml/type_words.h"

#include <memory_resource>
#include <unordered_map>
#include <vector>

namespace zul::xml {

enum class SymbolKind { MODULE, TYPE, CONSTANT };

struct Symbol {
    SymbolKind kind = SymbolKind::MODULE;
    std::int32_t line = 0;                     // where it was introduced
    DDS_TypeCode* type = nullptr;              // TYPE: its code, owned by the type set
    bool isDefined = false;                    // TYPE: its definition was read
    bool isWrong = false;                      // TYPE, CONSTANT: its definition was refused
    bool isDiscrete = false;                   // CONSTANT: of a discrete type
    Integer value{};                           // CONSTANT: its value, if it is discrete
    const DDS_TypeCode* enumeration = nullptr; // CONSTANT: the enum that it is an enumerator of, or null
};

struct HashOfName {
    using is_transparent = void;
    std::size_t operator()(std::string_view name) const { return std::hash<std::string_view>()(name); }
};
// What is known of scoped names; none of it moves.
template <class Known>
using ByName = std::pmr::unordered_map<std::string, Known, HashOfName, std::equal_to<>>;

// The scoped name of `name` in `scope` ("" is the outermost).
std::string scopedName(std::string_view scope, std::string_view name);

// Types with their scoped names, which belong to a table of symbols.
using NamedTypes = std::vector<std::pair<std::string_view, const Symbol*>>;

class Symbols {
public:
    // The symbol of exactly that scoped name, or null. Valid as long as the table.
    Symbol* find(std::string_view scopedName);
    // Looks a name up as it is used in `scope`: there, then in the scopes around it; "::" in front starts
    // from the outermost. Null when nothing has that name.
    Symbol* resolve(std::string_view scope, std::string_view name);
    // Makes room for `count` symbols.
    void reserve(std::size_t count) { symbols_.reserve(count); }
    // Adds a symbol. Throws a ZULXMLError when the scoped name is taken.
    Symbol& add(const std::string& scopedName, const Symbol& symbol);

    // The types in the order of their names.
    NamedTypes types() const;

private:
    std::pmr::monotonic_buffer_resource memory_;
    ByName<Symbol> symbols_{&memory_};
    NamedTypes types_; // in the order in which they were added
};

} // namespace zul::xml
