#include "support/wine.h"

#include <filesystem>
#include <string>
#include <windows.h>

namespace test {

namespace {

/// The settings of the wine that belongs to the build; null anywhere else.
HKEY settings() {
    HKEY key = nullptr;
    return RegOpenKeyExA(HKEY_CURRENT_USER, "Software\\Wine", 0, KEY_ALL_ACCESS, &key) == ERROR_SUCCESS
               ? key
               : nullptr;
}

/// Of this program alone, below those settings.
std::string ownPlace() {
    char path[MAX_PATH] = "";
    GetModuleFileNameA(nullptr, path, sizeof path);
    return "AppDefaults\\" + std::filesystem::path(path).filename().string() + "\\Direct3D";
}

template <DWORD size>
bool set(const std::string& place, const char* name, const char (&value)[size]) {
    if (const HKEY key = settings()) {
        RegSetKeyValueA(key, place.c_str(), name, REG_SZ, value, size);
        RegCloseKey(key);
    }
    return true;
}

} // namespace

bool leaveDrawingOutUnderWine() {
    return set(ownPlace(), "renderer", "no3d");
}

bool nameFontsUnderWine() {
    return set("Fonts\\Replacements", "Arial", "Liberation Sans");
}

} // namespace test
