#include "message_text.h"

#include <algorithm>

namespace platform {

namespace {

unsigned char byteAt(std::string_view text, std::size_t at) {
    return static_cast<unsigned char>(text[at]);
}

bool isContinuation(unsigned char byte) {
    return (byte & 0xC0) == 0x80;
}

/// Bytes of the valid character that `text` begins with; 0 if it begins with none.
std::size_t characterLength(std::string_view text) {
    const unsigned char first = byteAt(text, 0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (!isContinuation(byteAt(text, i)))
            return 0;
    // Longer than need be, one half of a pair, or beyond the last character.
    const unsigned char second = byteAt(text, 1);
    if ((first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
        (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F))
        return 0;
    return length;
}

/// Bytes of the longest beginning of `word` that is not wider than `width`, but at least one character.
std::size_t fittingLength(const std::string& word, double width,
                          const std::function<double(const std::string&)>& widthOf) {
    std::size_t fitting = characterLength(word);
    while (fitting < word.size()) {
        const std::size_t next = fitting + characterLength(std::string_view(word).substr(fitting));
        if (widthOf(word.substr(0, next)) > width)
            break;
        fitting = next;
    }
    return fitting;
}

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == std::string_view::npos)
            return parts;
        text.remove_prefix(end + 1);
    }
}

} // namespace

std::string validUtf8(std::string_view text) {
    std::string valid;
    while (!text.empty()) {
        std::size_t length = characterLength(text);
        if (length) {
            valid += text.substr(0, length);
        } else {
            const unsigned char latin = byteAt(text, 0);
            valid += static_cast<char>(0xC0 | latin >> 6);
            valid += static_cast<char>(0x80 | (latin & 0x3F));
            length = 1;
        }
        text.remove_prefix(length);
    }
    return valid;
}

std::vector<std::string> breakLines(std::string_view text, double width,
                                    const std::function<double(const std::string&)>& widthOf) {
    std::string printable(text);
    std::replace_if(
        printable.begin(), printable.end(), [](char c) { return c >= 0 && c < ' ' && c != '\n'; }, ' ');
    std::vector<std::string> lines;
    for (const std::string_view paragraph : split(printable, '\n')) {
        std::string line;
        bool lineHasWords = false;
        for (const std::string_view word : split(paragraph, ' ')) {
            std::string longer = lineHasWords ? line + ' ' : std::string();
            longer += word;
            if (lineHasWords && widthOf(longer) > width) {
                lines.push_back(line);
                longer = word;
            }
            while (widthOf(longer) > width && fittingLength(longer, width, widthOf) < longer.size()) {
                const std::size_t fitting = fittingLength(longer, width, widthOf);
                lines.push_back(longer.substr(0, fitting));
                longer.erase(0, fitting);
            }
            line = longer;
            lineHasWords = true;
        }
        lines.push_back(line);
    }
    return lines;
}

} // namespace platform
