#include "platform/settings.h"

#include "child_process.h"
#include "registry_key.h"

#include <gtest/gtest.h>
#include <map>

namespace {

using test::RegistryKey;
using test::RegistryValue;

const std::string keyPath = "Software\\Quillon Software\\Quillon Multitap Delay";

RegistryValue textValue(const std::string& text) {
    return {REG_SZ, text + '\0'};
}

class Settings : public testing::Test {
  protected:
    /// What the registry holds under the name of the skin's setting.
    std::optional<RegistryValue> kept() const {
        return RegistryKey(registry.root().handle(), keyPath).value("SkinName");
    }
    void keep(const RegistryValue& value) const {
        RegistryKey(registry.root().handle(), keyPath).setValue("SkinName", value);
    }

    test::PrivateRegistry registry{HKEY_CURRENT_USER};
};

TEST_F(Settings, AreAbsentAtFirstAndReadingMakesNoKey) {
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
    EXPECT_FALSE(registry.root().has("Software"));
}

TEST_F(Settings, AreAbsentInAKeyWithoutTheValue) {
    const RegistryKey key(registry.root().handle(), keyPath);
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
}

TEST_F(Settings, AreKeptAsATextWithItsNul) {
    ASSERT_TRUE(platform::writeSetting("SkinName", "my skin"));
    EXPECT_EQ(kept(), textValue("my skin"));
    EXPECT_EQ(kept()->bytes.size(), 8u);
    EXPECT_EQ(platform::readSetting("SkinName"), "my skin");
}

TEST_F(Settings, ReplaceTheOldText) {
    ASSERT_TRUE(platform::writeSetting("SkinName", "a long name to begin with"));
    ASSERT_TRUE(platform::writeSetting("SkinName", "skin"));
    EXPECT_EQ(kept(), textValue("skin"));
}

TEST_F(Settings, KeepAnEmptyText) {
    ASSERT_TRUE(platform::writeSetting("SkinName", ""));
    EXPECT_EQ(kept(), textValue(""));
    EXPECT_EQ(platform::readSetting("SkinName"), "");
}

TEST_F(Settings, LeaveOtherValuesAlone) {
    const RegistryKey key(registry.root().handle(), keyPath);
    key.setValue("Other", {REG_DWORD, "1234"});
    ASSERT_TRUE(platform::writeSetting("SkinName", "Blue"));
    EXPECT_EQ(key.value("Other"), (RegistryValue{REG_DWORD, "1234"}));
}

TEST_F(Settings, AreReadAsAnotherProgramHasWrittenThem) {
    keep(textValue("Blue"));
    EXPECT_EQ(platform::readSetting("SkinName"), "Blue");
    EXPECT_EQ(platform::readSetting("SKINNAME"), "Blue") << "the registry does not look at letter case";
    keep({REG_SZ, "Blue"});
    EXPECT_EQ(platform::readSetting("SkinName"), "Blue") << "without its NUL";
    keep({REG_EXPAND_SZ, std::string("%TEMP%\0", 7)});
    EXPECT_EQ(platform::readSetting("SkinName"), "%TEMP%");
}

TEST_F(Settings, AreReadUpToTheLengthOfAPath) {
    const std::string longest(259, 'x');
    keep(textValue(longest));
    EXPECT_EQ(platform::readSetting("SkinName"), longest);
    keep(textValue(longest + 'x'));
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
}

TEST_F(Settings, LeaveNoKeyOpen) {
    // The system gives the first handle that is free, so what stays open moves it on.
    const auto open = [] {
        HKEY key = nullptr;
        EXPECT_EQ(RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key), ERROR_SUCCESS);
        return key;
    };
    const auto nextHandle = [&] {
        const HKEY key = open();
        RegCloseKey(key);
        return key;
    };
    ASSERT_TRUE(platform::writeSetting("SkinName", "Blue"));
    platform::readSetting("SkinName");
    const HKEY before = nextHandle();
    const HKEY leftOpen = open();
    ASSERT_NE(nextHandle(), before) << "a key that stays open is noticed";
    RegCloseKey(leftOpen);
    for (int i = 0; i < 50; ++i) {
        platform::writeSetting("SkinName", "Blue");
        platform::readSetting("SkinName");
        platform::readSetting("Other");
    }
    EXPECT_EQ(nextHandle(), before);
}

TEST(SettingsThatCannotBeKept, SayWhenTheirKeyCannotBeMade) {
    // Nothing that lasts may be made below what does not.
    const test::PrivateRegistry registry(HKEY_CURRENT_USER, true);
    EXPECT_FALSE(platform::writeSetting("SkinName", "Blue"));
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
}

TEST(PrivateSettings, AreKeptApartFromThePersonsAndGoWithTheProgram) {
    const RegistryKey own(HKEY_CURRENT_USER, keyPath),
        others(HKEY_CURRENT_USER, "Software\\Quillon Software\\Private");
    const std::optional<RegistryValue> before = own.value("SkinName");
    test::ChildProcess program({QUILLON_PRIVATE_SETTINGS}, {});
    EXPECT_EQ(program.wait(), 0) << program.standardError();
    EXPECT_EQ(own.value("SkinName"), before);
    DWORD left = 0;
    RegQueryInfoKeyA(others.handle(), nullptr, nullptr, nullptr, &left, nullptr, nullptr, nullptr, nullptr,
                     nullptr, nullptr, nullptr);
    EXPECT_EQ(left, 0u) << "keys of programs that have ended";
}

class MemoryStore final : public platform::SettingsStore {
  public:
    std::optional<std::string> read(const std::string& name) override {
        const auto found = kept.find(name);
        return found == kept.end() ? std::nullopt : std::optional(found->second);
    }
    bool write(const std::string& name, const std::string& value) override {
        kept[name] = value;
        return true;
    }

    std::map<std::string, std::string> kept;
};

TEST_F(Settings, CanBeReplacedAndComeBack) {
    MemoryStore store;
    platform::replaceSettingsStore(&store);
    EXPECT_TRUE(platform::writeSetting("SkinName", "Blue"));
    EXPECT_EQ(platform::readSetting("SkinName"), "Blue");
    platform::replaceSettingsStore(nullptr);
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
    EXPECT_EQ(kept(), std::nullopt);
}

} // namespace
