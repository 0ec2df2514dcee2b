// Text in buffers of a fixed size.
#pragma once

#include <cstddef>
#include <cstring>

namespace base {

/// Copies up to `maxLen` bytes, fills the rest with NULs and puts a NUL at text[maxLen]; `text` holds maxLen
/// + 1 bytes. This is how every text of the plug-in reaches a host's buffer.
void copyText(char* text, const char* source, std::size_t maxLen);

/// Copies as much of `source` as fits, with a NUL behind it and nothing but NULs up to the buffer's end.
template <std::size_t size>
void copyText(char (&buffer)[size], const char* source) {
    copyText(buffer, source, size - 1);
}

/// The same, but false and an empty buffer if `source` does not fit: half a path leads somewhere else.
template <std::size_t size>
bool copyWholeText(char (&buffer)[size], const char* source) {
    const bool fits = std::strlen(source) < size;
    copyText(buffer, fits ? source : "");
    return fits;
}

} // namespace base
