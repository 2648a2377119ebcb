// A flat table by scoped name; scopes are only prefixes.
#include "middleware/xml/type_scope.h"

namespace zul::xml {

std::string scopedName(const std::string& scope, std::string_view name) {
    return scope.empty() ? std::string(name) : scope + "::" + std::string(name);
}

Symbol* Symbols::find(const std::string& scopedName) {
    const auto found = symbols_.find(scopedName);
    return found != symbols_.end() ? &found->second : nullptr;
}

Symbol* Symbols::resolve(const std::string& scope, std::string_view name) {
    if (name.starts_with("::")) {
        return find(std::string(name.substr(2)));
    }
    for (std::string around = scope;;) {
        Symbol* found = find(scopedName(around, name));
        if (found != nullptr || around.empty()) {
            return found;
        }
        const std::size_t last = around.rfind("::");
        around.resize(last != std::string::npos ? last : 0);
    }
}

Symbol& Symbols::add(const std::string& scopedName, const Symbol& symbol) {
    const auto [place, isNew] = symbols_.try_emplace(scopedName, symbol);
    if (!isNew) {
        throw ZULXMLError{symbol.line, "'" + scopedName + "' is already defined in line " +
                                           std::to_string(place->second.line) + "; give it another name"};
    }
    return place->second;
}

} // namespace zul::xml
