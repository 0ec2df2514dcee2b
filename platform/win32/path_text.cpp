#include "platform/path_text.h"

#include <string_view>
#include <windows.h>

namespace platform {

namespace {

std::wstring wideText(std::string_view text) {
    const int length = static_cast<int>(text.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

/// Nothing if a letter would come back as another one.
std::optional<std::string> exactText(const std::wstring& wide) {
    const int length = static_cast<int>(wide.size());
    std::string text(static_cast<std::size_t>(
                         WideCharToMultiByte(CP_ACP, 0, wide.data(), length, nullptr, 0, nullptr, nullptr)),
                     '\0');
    WideCharToMultiByte(CP_ACP, 0, wide.data(), length, text.data(), static_cast<int>(text.size()), nullptr,
                        nullptr);
    return wideText(text) == wide ? std::optional(text) : std::nullopt;
}

std::wstring shortNames(const std::wstring& path) {
    std::wstring names(GetShortPathNameW(path.c_str(), nullptr, 0), L'\0');
    names.resize(GetShortPathNameW(path.c_str(), names.data(), static_cast<DWORD>(names.size())));
    return names;
}

} // namespace

std::filesystem::path pathFromText(const std::string& text) {
    return wideText(text);
}

std::optional<std::string> textOfPath(const std::filesystem::path& path) {
    const std::wstring& wide = path.native();
    if (const auto text = exactText(wide))
        return text;
    const std::wstring names = shortNames(wide);
    return names.empty() ? std::nullopt : exactText(names);
}

} // namespace platform
