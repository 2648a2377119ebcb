// Small views and edits of an XML tree. Texts come back as copies.
#pragma once

#include <libxml/tree.h>

#include <string>
#include <string_view>

inline std::string_view PracticeNode_tag(const xmlNode* node) {
    return reinterpret_cast<const char*>(node->name);
}
// The value of an attribute; empty when it is absent.
std::string PracticeNode_attribute(const xmlNode* node, const char* name);
inline std::string PracticeNode_name(const xmlNode* node) {
    return PracticeNode_attribute(node, "name");
}
// Its tag and, in quotes, its name attribute, for messages.
std::string PracticeNode_describe(const xmlNode* node);
// All text inside, without the blanks around it.
std::string PracticeNode_text(const xmlNode* node);

// Element children: the first, and the one after `node`; null when there is none.
xmlNode* PracticeNode_firstChild(const xmlNode* node);
xmlNode* PracticeNode_next(const xmlNode* node);

// Puts `text`, taken literally, in place of everything inside `node`. False when memory is exhausted.
bool PracticeNode_setText(xmlNode* node, const std::string& text);
