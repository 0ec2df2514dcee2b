// The bytes that names of the skin language are made of. A host may run under any locale, and a skin must
// mean the same under each of them, so letters here are the 26 of ASCII and nothing asks the C library.
#pragma once

#include <algorithm>
#include <string_view>

namespace base {

constexpr bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

constexpr bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

/// A byte that may stand in a name behind its first one.
constexpr bool isNameByte(char byte) {
    return isLetter(byte) || isDigit(byte) || byte == '_';
}

constexpr char toLowerCase(char byte) {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

/// The name that starts at `text`; empty if there is none. The first byte is not judged further.
constexpr std::string_view nameAt(const char* text) {
    const char* end = text;
    while (isNameByte(*end))
        ++end;
    return {text, end};
}

/// Whether two names are one, as all names of a skin are compared.
constexpr bool equalIgnoringCase(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, {}, toLowerCase, toLowerCase);
}

} // namespace base
