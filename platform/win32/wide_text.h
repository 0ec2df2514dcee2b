// Between this system's wide characters and ours. For platform/, toolkit/ and desk/.
#pragma once

#include <string>
#include <string_view>
#include <windows.h>

namespace platform {

inline std::string utf8(std::wstring_view wide) {
    const int length = static_cast<int>(wide.size());
    std::string text(static_cast<std::size_t>(
                         WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, nullptr, 0, nullptr, nullptr)),
                     '\0');
    WideCharToMultiByte(CP_UTF8, 0, wide.data(), length, text.data(), static_cast<int>(text.size()), nullptr,
                        nullptr);
    return text;
}

inline std::wstring wide(std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

} // namespace platform
