// Four-character codes, as plug-in formats use them.
#pragma once

#include <cstdint>

namespace base {

/// "CcnK" as a word whose highest byte is the first letter.
constexpr std::int32_t fourCharacterCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = (code << 8) | static_cast<unsigned char>(text[i]);
    return static_cast<std::int32_t>(code);
}

} // namespace base
