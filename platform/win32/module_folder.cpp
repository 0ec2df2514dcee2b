// The loader tells a library its own handle once, in DllMain. A program has no DllMain and needs none: for
// the loader, a null handle means the program.

#include "platform/module_folder.h"

#include "../own_module_folder.h"

#include "ansi_path.h"
#include "module_handle.h"

#include <string>

namespace platform {

namespace {

/// Written once, before any other code of the library runs on behalf of a host.
HMODULE libraryHandle = nullptr;

} // namespace

HMODULE moduleHandle() {
    return libraryHandle ? libraryHandle : GetModuleHandleA(nullptr);
}

std::string findModuleFolder() {
    char path[MAX_PATH] = {};
    // A path that does not fit is cut without its NUL, and half a path leads somewhere else.
    const DWORD length = GetModuleFileNameA(libraryHandle, path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH)
        return {};
    return {path, folderLength({path, length})};
}

std::filesystem::path programPath() {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    while (length == path.size()) {
        path.resize(2 * path.size());
        length = GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    }
    path.resize(length);
    return path;
}

std::filesystem::path programFolder() {
    return programPath().parent_path() / "";
}

} // namespace platform

/// Nothing else is done here, as the loader holds its lock.
extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD, LPVOID) {
    platform::libraryHandle = module;
    return TRUE;
}
