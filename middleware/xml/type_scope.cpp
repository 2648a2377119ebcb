// A flat table by scoped name; scopes are only prefixes.
#include "middleware/xml/type_scope.h"

#include <algorithm>

namespace zul::xml {

std::string scopedName(std::string_view scope, std::string_view name) {
    std::string scoped(scope);
    return scoped.append(scope.empty() ? "" : "::").append(name);
}

Symbol* Symbols::find(std::string_view scopedName) {
    const auto found = symbols_.find(scopedName);
    return found != symbols_.end() ? &found->second : nullptr;
}

Symbol* Symbols::resolve(std::string_view scope, std::string_view name) {
    if (name.starts_with("::")) {
        return find(name.substr(2));
    }
    while (!scope.empty()) {
        if (Symbol* found = find(scopedName(scope, name))) {
            return found;
        }
        const std::size_t last = scope.rfind("::");
        scope = scope.substr(0, last != std::string_view::npos ? last : 0);
    }
    return find(name);
}

Symbol& Symbols::add(const std::string& scopedName, const Symbol& symbol) {
    const auto [place, isNew] = symbols_.try_emplace(scopedName, symbol);
    if (!isNew) {
        throw ZULXMLError{symbol.line, "'" + scopedName + "' is already defined in line " +
                                           std::to_string(place->second.line) + "; give it another name"};
    }
    if (symbol.kind == SymbolKind::TYPE) {
        types_.emplace_back(place->first, &place->second);
    }
    return place->second;
}

NamedTypes Symbols::types() const {
    NamedTypes types = types_;
    std::ranges::sort(types);
    return types;
}

} // namespace zul::xml
