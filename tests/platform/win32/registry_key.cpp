#include "registry_key.h"

#include <stdexcept>
#include <vector>

namespace test {

namespace {

void check(LSTATUS status, const char* step) {
    if (status != ERROR_SUCCESS)
        throw std::runtime_error(std::string(step) + " of the registry failed: " + std::to_string(status));
}

/// Each process has its own, so that tests may run side by side.
std::string privatePath(bool passing) {
    return std::string("Software\\Quillon tests ") + (passing ? "passing " : "") +
           std::to_string(GetCurrentProcessId());
}

} // namespace

RegistryKey::RegistryKey(HKEY above, const std::string& path, bool passing) {
    const DWORD options = passing ? REG_OPTION_VOLATILE : REG_OPTION_NON_VOLATILE;
    check(RegCreateKeyExA(above, path.c_str(), 0, nullptr, options, KEY_ALL_ACCESS, nullptr, &key_, nullptr),
          "making a key");
}

RegistryKey::~RegistryKey() {
    RegCloseKey(key_);
}

bool RegistryKey::has(const std::string& path) const {
    HKEY found = nullptr;
    if (RegOpenKeyExA(key_, path.c_str(), 0, KEY_READ, &found) != ERROR_SUCCESS)
        return false;
    RegCloseKey(found);
    return true;
}

std::optional<RegistryValue> RegistryKey::value(const std::string& name) const {
    RegistryValue found;
    DWORD size = 0;
    if (RegQueryValueExA(key_, name.c_str(), nullptr, &found.type, nullptr, &size) != ERROR_SUCCESS)
        return std::nullopt;
    std::vector<BYTE> bytes(size);
    check(RegQueryValueExA(key_, name.c_str(), nullptr, &found.type, bytes.data(), &size), "reading a value");
    found.bytes.assign(bytes.begin(), bytes.begin() + size);
    return found;
}

void RegistryKey::setValue(const std::string& name, const RegistryValue& value) const {
    check(RegSetValueExA(key_, name.c_str(), 0, value.type, reinterpret_cast<const BYTE*>(value.bytes.data()),
                         static_cast<DWORD>(value.bytes.size())),
          "writing a value");
}

void RegistryKey::removeValue(const std::string& name) const {
    RegDeleteValueA(key_, name.c_str());
}

PrivateRegistry::PrivateRegistry(HKEY replacedRoot, bool passing)
    : replaced_(replacedRoot), path_(privatePath(passing)), root_(HKEY_CURRENT_USER, path_, passing) {
    check(RegDeleteTreeA(root_.handle(), nullptr), "emptying a key");
    check(RegOverridePredefKey(replaced_, root_.handle()), "replacing a root");
}

PrivateRegistry::~PrivateRegistry() {
    RegOverridePredefKey(replaced_, nullptr);
    RegDeleteTreeA(HKEY_CURRENT_USER, path_.c_str());
}

} // namespace test
