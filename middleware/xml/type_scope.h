// The names of a types section: what each scoped name means.
#pragma once

#include "middleware/xml/document.h"
#include "middleware/xml/type_words.h"

#include <map>

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

// The scoped name of `name` in `scope` ("" is the outermost).
std::string scopedName(const std::string& scope, std::string_view name);

class Symbols {
public:
    // The symbol of exactly that scoped name, or null. Valid as long as the table.
    Symbol* find(const std::string& scopedName);
    // Looks a name up as it is used in `scope`: there, then in the scopes around it; "::" in front starts
    // from the outermost. Null when nothing has that name.
    Symbol* resolve(const std::string& scope, std::string_view name);
    // Adds a symbol. Throws a ZULXMLError when the scoped name is taken.
    Symbol& add(const std::string& scopedName, const Symbol& symbol);

    const std::map<std::string, Symbol>& all() const { return symbols_; }

private:
    std::map<std::string, Symbol> symbols_;
};

} // namespace zul::xml
