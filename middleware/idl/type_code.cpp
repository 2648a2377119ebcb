// Type codes may contain themselves, so a comparison remembers the pairs that it is in the middle of.
#include "middleware/idl/type_code.h"

#include <algorithm>
#include <array>
#include <set>

const DDS_TypeCode* DDS_TypeCode_primitive(DDS_TCKind kind) {
    static const auto codes = [] {
        std::array<DDS_TypeCode, DDS_TK_STRING> all;
        for (std::size_t i = 0; i < all.size(); ++i) {
            all[i].kind = static_cast<DDS_TCKind>(i);
            all[i].extensibility = DDS_FINAL_EXTENSIBILITY;
        }
        return all;
    }();
    return kind > DDS_TK_NULL && kind < DDS_TK_STRING ? &codes[kind] : nullptr;
}

namespace {

// Pairs compared or under comparison. A pair met again counts as equal: if it is not, the comparison has
// failed anyway.
using ComparedPairs = std::set<std::pair<const DDS_TypeCode*, const DDS_TypeCode*>>;

bool equalCodes(const DDS_TypeCode* left, const DDS_TypeCode* right, ComparedPairs& compared);

bool equalMembers(const DDS_TypeCodeMember& a, const DDS_TypeCodeMember& b, ComparedPairs& compared) {
    return a.name == b.name && a.id == b.id && a.labels == b.labels && a.isDefault == b.isDefault &&
           a.value == b.value && a.isKey == b.isKey && a.isRequired == b.isRequired &&
           equalCodes(a.type, b.type, compared);
}

bool equalCodes(const DDS_TypeCode* left, const DDS_TypeCode* right, ComparedPairs& compared) {
    if (left == nullptr || right == nullptr) {
        return left == right;
    }
    if (left == right || !compared.emplace(left, right).second) {
        return true;
    }
    return left->kind == right->kind && left->name == right->name &&
           left->extensibility == right->extensibility && left->bound == right->bound &&
           left->dimensions == right->dimensions && equalCodes(left->content, right->content, compared) &&
           std::equal(left->members.begin(), left->members.end(), right->members.begin(),
                      right->members.end(),
                      [&compared](const auto& a, const auto& b) { return equalMembers(a, b, compared); });
}

} // namespace

bool DDS_TypeCode_equals(const DDS_TypeCode* left, const DDS_TypeCode* right) {
    ComparedPairs compared;
    return equalCodes(left, right, compared);
}
