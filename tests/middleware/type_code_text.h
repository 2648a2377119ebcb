// A type code as one line of text: named types inside it by their names alone.
#pragma once

#include "middleware/idl/type_code.h"

#include <string>

inline std::string describe(const DDS_TypeCode* code, bool isOuter = false) {
    static const char* const KINDS[] = {"null",      "short", "long",   "ushort",     "ulong",   "longlong",
                                        "ulonglong", "float", "double", "longdouble", "boolean", "char",
                                        "wchar",     "octet", "string", "wstring",    "seq",     "array",
                                        "alias",     "enum",  "struct", "union",      "value",   "sparse"};
    if (code == nullptr) {
        return "-";
    }
    if (!code->name.empty() && !isOuter) {
        return code->name;
    }
    std::string text = KINDS[code->kind];
    text += code->bound != 0 ? "(" + std::to_string(code->bound) + ")" : "";
    for (const std::uint32_t dimension : code->dimensions) {
        text += "[" + std::to_string(dimension) + "]";
    }
    text += code->content != nullptr ? "<" + describe(code->content) + ">" : "";
    if (code->name.empty()) {
        return text;
    }
    text += code->extensibility == DDS_FINAL_EXTENSIBILITY     ? " final"
            : code->extensibility == DDS_MUTABLE_EXTENSIBILITY ? " mutable"
                                                               : "";
    for (const DDS_TypeCodeMember& member : code->members) {
        text += " " + member.name + ":" + std::to_string(member.id);
        text += code->kind == DDS_TK_ENUM ? "=" + std::to_string(member.value) : ":" + describe(member.type);
        for (const std::int32_t label : member.labels) {
            text += "," + std::to_string(label);
        }
        text += std::string(member.isDefault ? ",default" : "") + (member.isKey ? "!" : "") +
                (member.isRequired ? "" : "?");
    }
    return text;
}
