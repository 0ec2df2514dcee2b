// Text in buffers of a fixed size.
#pragma once

#include <cstddef>
#include <cstring>

namespace skin {

/// Copies as much of `text` as fits, with a NUL behind it and nothing but NULs up to the buffer's end.
template <std::size_t size>
void copyText(char (&buffer)[size], const char* text) {
    std::strncpy(buffer, text, size - 1);
    buffer[size - 1] = '\0';
}

/// The same, but false and an empty buffer if `text` does not fit: half a path leads somewhere else.
template <std::size_t size>
bool copyWholeText(char (&buffer)[size], const char* text) {
    const bool fits = std::strlen(text) < size;
    copyText(buffer, fits ? text : "");
    return fits;
}

} // namespace skin
