// Any bytes as a skin file: the reader either refuses them or gives a tree that keeps to the dialect, and a
// tree that is written out in the dialect comes back the same.
#include "skin_language/xml_reader.h"

#include "base/ascii.h"
#include "promise.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

/// Closing names from 256 bytes on end the process, as they should. A text that may hold one is not tried.
bool mayEndTheProcess(std::string_view text) {
    for (std::size_t at = text.find("</"); at != std::string_view::npos; at = text.find("</", at + 1)) {
        const std::size_t begin = text.find_first_not_of("\t\n\r ", at + 2);
        if (begin == std::string_view::npos)
            return false;
        std::size_t end = begin;
        while (end < text.size() && base::isNameByte(text[end]))
            ++end;
        if (end - begin >= 256)
            return true;
    }
    return false;
}

void expectName(const char* name, bool mayBeginWithUnderscore) {
    promise(name != nullptr, "a name");
    promise(base::isLetter(name[0]) || (mayBeginWithUnderscore && name[0] == '_'), "a name's first byte");
    promise(base::nameAt(name).size() == std::strlen(name), "a name's further bytes");
}

void expectDialect(const XmlNode* node) {
    expectName(node->name, false);
    for (const XmlAttr* attribute = node->attrs; attribute; attribute = attribute->next) {
        expectName(attribute->name, true);
        promise(!attribute->value || *attribute->value, "an empty value is null");
        promise(!attribute->value || !std::strchr(attribute->value, '"'), "no quote in a value");
    }
    promise(!node->text || *node->text, "an empty text is null");
    promise(!node->text || !std::strchr("\t\n\r ", node->text[0]), "no white space before a text");
    promise(!node->text || !std::strchr(node->text, '<'), "no tag in a text");
    for (const XmlNode* child = node->child; child; child = child->next)
        expectDialect(child);
}

void write(const XmlNode* node, std::string& text) {
    text.append("<").append(node->name);
    for (const XmlAttr* attribute = node->attrs; attribute; attribute = attribute->next) {
        text.append(" ").append(attribute->name).append("=\"");
        text.append(attribute->value ? attribute->value : "").append("\"");
    }
    if (!node->text && !node->child) {
        text.append("/>");
        return;
    }
    text.append(">");
    for (const XmlNode* child = node->child; child; child = child->next)
        write(child, text);
    text.append(node->text ? node->text : "").append("</").append(node->name).append(">");
}

std::string written(const XmlNode* root) {
    std::string text;
    write(root, text);
    return text;
}

void expectToComeBack(const std::string& text) {
    XmlNode* root = nullptr;
    promise(xmlParseNode(text.c_str(), 0, &root) == static_cast<int>(text.size()),
            "a written tree can be read");
    promise(written(root) == text, "a written tree comes back the same");
    xmlFreeNode(root);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A block of exactly the text's size, so that a step too far is noticed.
    std::vector<char> text(data, data + size);
    text.push_back('\0');
    if (mayEndTheProcess({text.data(), size}))
        return 0;

    XmlNode* root = nullptr;
    const int end = xmlParseNode(text.data(), 0, &root);
    if (root)
        expectDialect(root);
    if (end != -1) {
        promise(root != nullptr, "a tree");
        promise(end >= 2 && end <= static_cast<int>(std::strlen(text.data())), "an end inside the text");
        expectToComeBack(written(root));
    }
    xmlFreeNode(root);
    return 0;
}
