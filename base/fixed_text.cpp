#include "base/fixed_text.h"

namespace base {

void copyText(char* text, const char* source, std::size_t maxLen) {
    const std::size_t length = strnlen(source, maxLen);
    std::memcpy(text, source, length);
    std::memset(text + length, 0, maxLen + 1 - length);
}

} // namespace base
