#include "middleware/idl/type_code.h"

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
