#include "middleware/xml/type_check.h"

#include <algorithm>
#include <unordered_map>

namespace xml_types {

namespace {

// A walk over type codes along what they are made of. By value, a sequence ends the walk, and coming back to
// an open type is the error; through everything, coming back is how recursive types end.
class Walk {
public:
    Walk(bool byValue, const Symbols& symbols, ZULXMLError& error)
        : byValue_(byValue), symbols_(symbols), error_(error) {}

    // The levels from `type` down; 0 with the error set. `line` is that of the type where the walk began.
    int depthOf(const DDS_TypeCode* type, std::int32_t line, int level = 0) {
        if (type == nullptr || (type->name.empty() && type->content == nullptr)) {
            return 1;
        }
        const auto [place, isNew] = depths_.try_emplace(type, OPEN);
        if (!isNew && place->second == OPEN) {
            // An open type is named: nothing but its owner leads to an anonymous one.
            if (byValue_) {
                error_.set(symbols_.all().at(type->name).line,
                           "'" + type->name + "' contains itself; put a sequence of it there");
            }
            return byValue_ ? 0 : 1;
        }
        if (!isNew) {
            return place->second;
        }
        int deepest = byValue_ && type->kind == DDS_TK_SEQUENCE ? 1 : below(type->content, line, level);
        for (const DDS_TypeCodeMember& member : type->members) {
            deepest = deepest == 0 ? 0 : std::max(deepest, below(member.type, line, level));
            if (!error_.text.empty()) {
                return 0;
            }
        }
        if (deepest >= TYPE_DEPTH_MAX) {
            error_.set(line, "types stand more than " + std::to_string(TYPE_DEPTH_MAX) +
                                 " levels inside each other");
        }
        depths_[type] = deepest + 1;
        return error_.text.empty() ? deepest + 1 : 0;
    }

private:
    static constexpr int OPEN = 0;

    int below(const DDS_TypeCode* type, std::int32_t line, int level) {
        if (level >= TYPE_DEPTH_MAX) {
            error_.set(line, "types stand more than " + std::to_string(TYPE_DEPTH_MAX) +
                                 " levels inside each other");
            return 0;
        }
        return depthOf(type, line, level + 1);
    }

    bool byValue_;
    const Symbols& symbols_;
    ZULXMLError& error_;
    std::unordered_map<const DDS_TypeCode*, int> depths_;
};

} // namespace

bool checkTypes(const Symbols& symbols, ZULXMLError& error) {
    Walk byValue(true, symbols, error);
    Walk throughAll(false, symbols, error);
    for (const auto& [name, symbol] : symbols.all()) {
        if (symbol.kind != SymbolKind::TYPE) {
            continue;
        }
        if (!symbol.isDefined) {
            return error.set(symbol.line, "'" + name + "' is announced but never defined");
        }
        if (byValue.depthOf(symbol.type, symbol.line) == 0 ||
            throughAll.depthOf(symbol.type, symbol.line) == 0) {
            return false;
        }
    }
    return true;
}

} // namespace xml_types
