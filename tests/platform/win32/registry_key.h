// The registry as a test sees it: with a part of its own in the place of a person's, and looked at without
// the product's help.
#pragma once

#include <optional>
#include <string>
#include <windows.h>

namespace test {

/// A value as the registry keeps it.
struct RegistryValue {
    DWORD type = REG_NONE;
    std::string bytes; ///< all of them, a NUL at the end included

    bool operator==(const RegistryValue&) const = default;
};

/// A key that is open while the object lives.
class RegistryKey {
  public:
    /// Opens or makes it. One that is `passing` is gone with the next start of the machine, and what is made
    /// below it has to be so too.
    RegistryKey(HKEY above, const std::string& path, bool passing = false);
    ~RegistryKey();
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    HKEY handle() const { return key_; }
    /// Whether there is a key of this path below.
    bool has(const std::string& path) const;
    std::optional<RegistryValue> value(const std::string& name) const;
    void setValue(const std::string& name, const RegistryValue& value) const;
    /// Removes the value, or nothing if there is none.
    void removeValue(const std::string& name) const;

  private:
    HKEY key_ = nullptr;
};

/// While one lives, this process finds an empty registry of its own below one of the roots, such as
/// HKEY_CURRENT_USER.
class PrivateRegistry {
  public:
    explicit PrivateRegistry(HKEY replacedRoot, bool passing = false);
    ~PrivateRegistry();
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

    const RegistryKey& root() const { return root_; }

  private:
    HKEY replaced_;
    std::string path_;
    RegistryKey root_;
};

} // namespace test
