#include "middleware/type_code.h"

#include <algorithm>
#include <array>

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

using PairPath = std::vector<std::pair<const DDS_TypeCode*, const DDS_TypeCode*>>;

bool equalCodes(const DDS_TypeCode* left, const DDS_TypeCode* right, PairPath& path);

bool equalMembers(const DDS_TypeCodeMember& a, const DDS_TypeCodeMember& b, PairPath& path) {
    return a.name == b.name && a.id == b.id && a.labels == b.labels && a.isDefault == b.isDefault &&
           a.value == b.value && a.isKey == b.isKey && a.isRequired == b.isRequired &&
           equalCodes(a.type, b.type, path);
}

// `path` holds the pairs under comparison, so that a recursive type ends.
bool equalCodes(const DDS_TypeCode* left, const DDS_TypeCode* right, PairPath& path) {
    const std::pair pair{left, right};
    if (left == right || std::find(path.begin(), path.end(), pair) != path.end()) {
        return true;
    }
    if (left == nullptr || right == nullptr) {
        return false;
    }
    path.push_back(pair);
    const bool equal =
        left->kind == right->kind && left->name == right->name &&
        left->extensibility == right->extensibility && left->bound == right->bound &&
        left->dimensions == right->dimensions && equalCodes(left->content, right->content, path) &&
        std::equal(left->members.begin(), left->members.end(), right->members.begin(), right->members.end(),
                   [&path](const auto& a, const auto& b) { return equalMembers(a, b, path); });
    path.pop_back();
    return equal;
}

} // namespace

bool DDS_TypeCode_equals(const DDS_TypeCode* left, const DDS_TypeCode* right) {
    PairPath path;
    return equalCodes(left, right, path);
}
