// Settings are in the registry here, below a root that is the person's own. For this process another key
// takes the place of that root.

#include "desk/host_settings.h"

#include <stdexcept>
#include <windows.h>

namespace desk {

namespace {

/// Lives as long as the process. It is a key like any other: below one that vanishes with the session, a
/// library could not keep a setting, nor could the person's own library if that key happened to be the first
/// of this house.
class PrivateRoot {
  public:
    explicit PrivateRoot(const std::string& folder)
        : name_("Software\\Quillon Software\\Private\\" + std::to_string(GetCurrentProcessId()) + " " +
                folder.substr(folder.find_last_of("\\/") + 1)) {
        // What a process of this number has left here is nobody's.
        RegDeleteTreeA(HKEY_CURRENT_USER, name_.c_str());
        if (RegCreateKeyExA(HKEY_CURRENT_USER, name_.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                            KEY_ALL_ACCESS, nullptr, &root_, nullptr) != ERROR_SUCCESS ||
            RegOverridePredefKey(HKEY_CURRENT_USER, root_) != ERROR_SUCCESS)
            throw std::runtime_error("the registry has no room for settings of this program's own");
    }
    ~PrivateRoot() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(root_);
        RegDeleteTreeA(HKEY_CURRENT_USER, name_.c_str());
    }
    PrivateRoot(const PrivateRoot&) = delete;
    PrivateRoot& operator=(const PrivateRoot&) = delete;

  private:
    std::string name_;
    HKEY root_ = nullptr;
};

} // namespace

void keepSettingsIn(const std::string& folder) {
    static const PrivateRoot root(folder);
}

} // namespace desk
