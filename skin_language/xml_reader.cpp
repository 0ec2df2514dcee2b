#include "skin_language/xml_reader.h"

#include "base/ascii.h"

#include <atomic>
#include <climits>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <utility>

namespace {

/// A skin nests four deep. The limit keeps a damaged file from using up the stack of the host's thread.
constexpr int kDeepestElement = 1000;

constexpr std::size_t kLongestClosingName = 255;

/// Records of elements that nobody uses, linked by `next`. They are never given back while the library is
/// loaded: the next skin takes them again. A host may unload the library and live on, so then they go.
/// Several windows may open at once, each on a thread of its own: the list is only ever taken whole or added
/// to, which needs no lock.
class SpareRecords {
  public:
    SpareRecords() = default;
    ~SpareRecords() {
        XmlNode* node = first_.load();
        while (node)
            std::free(std::exchange(node, node->next));
    }
    SpareRecords(const SpareRecords&) = delete;
    SpareRecords& operator=(const SpareRecords&) = delete;

    /// A record with all fields null; null if memory is out.
    XmlNode* take() {
        if (XmlNode* node = first_.exchange(nullptr)) {
            if (node->next)
                putBack(node->next);
            *node = {};
            return node;
        }
        void* memory = std::malloc(sizeof(XmlNode));
        return memory ? new (memory) XmlNode : nullptr;
    }

    void giveBack(XmlNode* node) {
        *node = {};
        putBack(node);
    }

  private:
    /// Adds a list of records in front of those that are there; mostly there are none.
    void putBack(XmlNode* list) {
        XmlNode* there = nullptr;
        if (first_.compare_exchange_strong(there, list))
            return;
        XmlNode* last = list;
        while (last->next)
            last = last->next;
        do
            last->next = there;
        while (!first_.compare_exchange_weak(there, list));
    }

    std::atomic<XmlNode*> first_ = nullptr;
};

SpareRecords spareRecords;

void freeAttributes(XmlAttr* attribute) {
    while (attribute) {
        XmlAttr* next = attribute->next;
        std::free(attribute->name);
        std::free(attribute->value);
        std::free(attribute);
        attribute = next;
    }
}

/// Null if memory is out.
char* copyOf(std::string_view bytes) {
    char* copy = static_cast<char*>(std::malloc(bytes.size() + 1));
    if (copy) {
        bytes.copy(copy, bytes.size());
        copy[bytes.size()] = '\0';
    }
    return copy;
}

// Each of the following reads one thing at `at` and gives the place behind it, or null if that failed.

/// Fails at the end of the text: no element ends in white space.
const char* skipSpace(const char* at) {
    while (*at == '\t' || *at == '\n' || *at == '\r' || *at == ' ')
        ++at;
    return *at == '\0' ? nullptr : at;
}

/// Reads `"value"` and appends the attribute at `*tail`, which moves on.
const char* parseValue(const char* at, std::string_view name, XmlAttr**& tail) {
    if (*at != '"')
        return nullptr;
    const char* begin = at + 1;
    const char* end = std::strchr(begin, '"');
    void* memory = end ? std::malloc(sizeof(XmlAttr)) : nullptr;
    if (!memory)
        return nullptr;
    auto* attribute = new (memory) XmlAttr;
    attribute->name = copyOf(name);
    if (begin != end)
        attribute->value = copyOf({begin, end});
    if (!attribute->name || (begin != end && !attribute->value)) {
        freeAttributes(attribute);
        return nullptr;
    }
    *tail = attribute;
    tail = &attribute->next;
    return end + 1;
}

/// Stops at the first byte that begins no attribute.
const char* parseAttributes(const char* at, XmlNode* node) {
    XmlAttr** tail = &node->attrs;
    at = skipSpace(at);
    while (at && (base::isLetter(*at) || *at == '_')) {
        const std::string_view name = base::nameAt(at);
        at = skipSpace(at + name.size());
        if (!at || *at != '=')
            continue; // a bare name is dropped
        at = skipSpace(at + 1);
        if (at)
            at = parseValue(at, name, tail);
        if (at)
            at = skipSpace(at);
    }
    return at;
}

bool replaceText(XmlNode* node, std::string_view run) {
    char* text = copyOf(run);
    if (!text)
        return false;
    std::free(node->text);
    node->text = text;
    return true;
}

/// Reads on behind "</".
const char* parseClosingTag(const char* at, const char* openingName) {
    at = skipSpace(at);
    if (!at)
        return nullptr;
    const std::string_view name = base::nameAt(at);
    if (name.size() > kLongestClosingName)
        std::abort();
    at = skipSpace(at + name.size());
    if (!at || *at != '>' || !base::equalIgnoringCase(name, openingName))
        return nullptr;
    return at + 1;
}

const char* parseElement(const char* at, XmlNode** result, int depth);

/// Reads what stands between the tags of an element, and its closing tag.
const char* parseContent(const char* at, XmlNode* node, int depth) {
    XmlNode** tail = &node->child;
    while ((at = skipSpace(at))) {
        const char* tag = std::strchr(at, '<');
        if (!tag || (tag != at && !replaceText(node, {at, tag})))
            return nullptr;
        if (tag[1] == '/')
            return parseClosingTag(tag + 2, node->name);
        XmlNode* child = nullptr;
        at = parseElement(tag, &child, depth + 1);
        if (!at) {
            xmlFreeNode(child);
            return nullptr;
        }
        *tail = child;
        tail = &child->next;
    }
    return nullptr;
}

const char* parseElement(const char* at, XmlNode** result, int depth) {
    XmlNode* node = depth < kDeepestElement ? spareRecords.take() : nullptr;
    if (!node)
        return nullptr;
    *result = node;
    at = skipSpace(at);
    if (!at || at[0] != '<' || !base::isLetter(at[1])) {
        spareRecords.giveBack(node);
        *result = nullptr;
        return nullptr;
    }
    const std::string_view name = base::nameAt(at + 1);
    node->name = copyOf(name);
    at = node->name ? parseAttributes(at + 1 + name.size(), node) : nullptr;
    if (!at)
        return nullptr;
    if (*at == '>')
        return parseContent(at + 1, node, depth);
    if (*at != '/')
        return at;
    const char* end = skipSpace(at + 1);
    if (!end)
        return nullptr;
    return *end == '>' ? end + 1 : at;
}

/// -1 for null and for places that an int can't tell.
int positionOf(const char* at, const char* text) {
    return at && at - text <= INT_MAX ? static_cast<int>(at - text) : -1;
}

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

} // namespace

int xmlParseNode(const char* text, int position, XmlNode** result) {
    if (position < 0) {
        *result = nullptr;
        return -1;
    }
    return positionOf(parseElement(text + position, result, 0), text);
}

void xmlFreeNode(XmlNode* node) {
    // A list of siblings may be long, so the way back along it is kept in the nodes and not on the stack.
    XmlNode* last = nullptr;
    while (node) {
        xmlFreeNode(node->child);
        XmlNode* next = node->next;
        node->next = last;
        last = node;
        node = next;
    }
    while (last) {
        XmlNode* previous = last->next;
        freeAttributes(last->attrs);
        std::free(last->text);
        std::free(last->name);
        spareRecords.giveBack(last);
        last = previous;
    }
}

int xmlSkipSpace(int position, const char* text) {
    return position < 0 ? -1 : positionOf(skipSpace(text + position), text);
}

XmlNode* xmlParseFile(const char* path) {
    char* text = xmlReadFile(path);
    if (!text)
        return nullptr;
    XmlNode* root = nullptr;
    if (xmlParseNode(text, 0, &root) < 0) {
        xmlFreeNode(root);
        root = nullptr;
    }
    std::free(text);
    return root;
}

char* xmlReadFile(const char* path) {
    const std::unique_ptr<std::FILE, CloseFile> file(std::fopen(path, "r"));
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0)
        return nullptr;
    // A folder can be opened on some systems and then claims to be endless.
    const long size = std::ftell(file.get());
    if (size < 0 || size >= INT_MAX || std::fseek(file.get(), 0, SEEK_SET) != 0)
        return nullptr;
    // Where the system folds line ends, fewer bytes than the size arrive; the rest stays zero.
    char* text = static_cast<char*>(std::calloc(static_cast<std::size_t>(size) + 1, 1));
    if (!text)
        return nullptr;
    const std::size_t bytesRead = std::fread(text, 1, static_cast<std::size_t>(size), file.get());
    text[bytesRead] = '\0';
    return text;
}
