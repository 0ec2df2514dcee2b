#include "../own_settings.h"
#include "base/product_names.h"

#include <windows.h>

namespace platform {

namespace {

/// Bytes of a text, the NUL behind it included.
constexpr DWORD kTextLimit = 260;

const std::string kSettingsKey =
    "Software\\" + std::string(base::kVendorName) + '\\' + std::string(base::kProductName);

class RegistrySettings final : public SettingsStore {
  public:
    std::optional<std::string> read(const std::string& name) override {
        HKEY key = nullptr;
        if (RegOpenKeyExA(HKEY_CURRENT_USER, kSettingsKey.c_str(), 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
            return std::nullopt;
        // Other programs may have kept a text without its NUL.
        char text[kTextLimit + 1] = {};
        DWORD size = kTextLimit;
        const LSTATUS status =
            RegQueryValueExA(key, name.c_str(), nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
        RegCloseKey(key);
        return status == ERROR_SUCCESS ? std::optional<std::string>(text) : std::nullopt;
    }

    bool write(const std::string& name, const std::string& value) override {
        HKEY key = nullptr;
        if (RegCreateKeyExA(HKEY_CURRENT_USER, kSettingsKey.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                            &key, nullptr) != ERROR_SUCCESS)
            return false;
        const auto size = static_cast<DWORD>(lstrlenA(value.c_str())) + 1;
        const LSTATUS status =
            RegSetValueExA(key, name.c_str(), 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()), size);
        RegCloseKey(key);
        return status == ERROR_SUCCESS;
    }
};

} // namespace

SettingsStore& ownSettings() {
    static RegistrySettings settings;
    return settings;
}

} // namespace platform
