#include "desk/shared_library.h"

#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <windows.h>

namespace desk {

namespace {

/// The standard library gives paths out in UTF-8, the system's other calls in the code page of the machine.
std::filesystem::path filePath(const std::string& path) {
    const int length = static_cast<int>(path.size());
    const bool isUtf8 =
        MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, path.data(), length, nullptr, 0) > 0;
    const UINT codePage = isUtf8 ? CP_UTF8 : CP_ACP;
    std::wstring wide(path.size(), L'\0');
    const int wideLength = MultiByteToWideChar(codePage, 0, path.data(), length, wide.data(), length);
    wide.resize(static_cast<std::size_t>(wideLength));
    return wide;
}

/// Loads by the full path, so that what the library needs is found beside it, and without a box that asks a
/// person for a missing disk or file.
HMODULE load(const std::string& path) {
    const std::filesystem::path full = std::filesystem::absolute(filePath(path)).make_preferred();
    DWORD before = 0;
    SetThreadErrorMode(SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &before);
    const HMODULE module = LoadLibraryExW(full.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    const DWORD error = GetLastError();
    SetThreadErrorMode(before, nullptr);
    if (!module)
        throw std::runtime_error(path + ": " + std::system_category().message(static_cast<int>(error)));
    return module;
}

void unload(void* handle) {
    if (handle)
        FreeLibrary(static_cast<HMODULE>(handle));
}

} // namespace

SharedLibrary::SharedLibrary(const std::string& path) : handle_(load(path)) {}

SharedLibrary::~SharedLibrary() {
    unload(handle_);
}

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

SharedLibrary& SharedLibrary::operator=(SharedLibrary&& other) noexcept {
    if (this != &other) {
        unload(handle_);
        handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
}

void* SharedLibrary::symbol(const char* name) const {
    return handle_ ? reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name)) : nullptr;
}

} // namespace desk
