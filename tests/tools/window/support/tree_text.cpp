#include "support/tree_text.h"

namespace {

std::string quoted(const char* text) {
    return text ? '\'' + std::string(text) + '\'' : "''";
}

} // namespace

std::string treeText(const tools::window::SourceElement& root) {
    std::string text = root.name + "[";
    for (const auto& attribute : root.attributes)
        text += attribute.name + "=" + quoted(attribute.value.c_str()) + " ";
    text += "] " + quoted(root.text.c_str()) + " {";
    for (const auto& child : root.children)
        text += treeText(child);
    return text + "}";
}

std::string treeText(const XmlNode& root) {
    std::string text = std::string(root.name) + "[";
    for (const XmlAttr* attribute = root.attrs; attribute; attribute = attribute->next)
        text += std::string(attribute->name) + "=" + quoted(attribute->value) + " ";
    text += "] " + quoted(root.text) + " {";
    for (const XmlNode* child = root.child; child; child = child->next)
        text += treeText(*child);
    return text + "}";
}
