#include "platform/settings.h"

#include "desk/private_folder.h"
#include "platform/files.h"
#include "platform/linux/settings_file.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>

namespace {

using platform::SettingsFile;

std::string textOf(const std::string& path) {
    const auto content = platform::readWholeFile(path);
    return content ? std::string(content->begin(), content->end()) : "(none)";
}

void makeFile(const std::string& path, const std::string& text) {
    ASSERT_TRUE(platform::writeWholeFile(path, text.data(), text.size()));
}

/// Sets an environment variable for the length of a test; a null value takes it away.
class Variable {
  public:
    Variable(const char* name, const char* value) : name_(name) {
        if (const char* old = std::getenv(name))
            old_ = old;
        set(value);
    }
    ~Variable() { set(old_ ? old_->c_str() : nullptr); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

  private:
    void set(const char* value) { value ? setenv(name_, value, 1) : unsetenv(name_); }

    const char* name_;
    std::optional<std::string> old_;
};

class Settings : public testing::Test {
  protected:
    desk::PrivateFolder folder;
    const std::string path = folder.path() + "/Quillon Software/Quillon Multitap Delay.conf";
    SettingsFile settings{path};
};

TEST_F(Settings, AreAbsentAtFirst) {
    EXPECT_EQ(settings.read("SkinName"), std::nullopt);
    EXPECT_FALSE(platform::fileExists(path)) << "reading makes no file";
}

TEST_F(Settings, AreReadBackAsTheyWereWritten) {
    ASSERT_TRUE(settings.write("SkinName", "my skin"));
    EXPECT_EQ(settings.read("SkinName"), "my skin");
    EXPECT_EQ(SettingsFile(path).read("SkinName"), "my skin");
    EXPECT_EQ(textOf(path), "SkinName=my skin\n");
}

TEST_F(Settings, MakeTheirFolder) {
    SettingsFile deep(folder.path() + "/a/b/c/settings.conf");
    EXPECT_TRUE(deep.write("SkinName", "Blue"));
    EXPECT_EQ(deep.read("SkinName"), "Blue");
}

TEST_F(Settings, ReplaceTheOldText) {
    ASSERT_TRUE(settings.write("SkinName", "a long name to begin with"));
    ASSERT_TRUE(settings.write("SkinName", "skin"));
    EXPECT_EQ(textOf(path), "SkinName=skin\n");
}

TEST_F(Settings, KeepAnEmptyText) {
    ASSERT_TRUE(settings.write("SkinName", ""));
    EXPECT_EQ(settings.read("SkinName"), "");
}

TEST_F(Settings, KeepEveryKindOfFolderName) {
    for (const char* name : {" leading and trailing ", "a=b", "#comment", "back\\slash", "\\n", "two\nlines",
                             "return\r", "ends in \\", "Bl\xC3\xA5", "\xFF\xFE", "[section]"}) {
        ASSERT_TRUE(settings.write("SkinName", name));
        EXPECT_EQ(settings.read("SkinName"), name);
    }
}

TEST_F(Settings, LeaveOtherLinesAlone) {
    std::filesystem::create_directory(folder.path() + "/Quillon Software");
    makeFile(path, "# my own words\nSkinNameOld=x\nSkinName=skin\nOther=1\n\nSkinName=twice\nlast line");
    ASSERT_TRUE(settings.write("SkinName", "Blue"));
    EXPECT_EQ(textOf(path), "# my own words\nSkinNameOld=x\nSkinName=Blue\nOther=1\n\nlast line\n");
    EXPECT_EQ(settings.read("Other"), "1");
}

TEST_F(Settings, AreReadFromAFileThatAPersonHasWritten) {
    std::filesystem::create_directory(folder.path() + "/Quillon Software");
    makeFile(path, "SkinName=C:\\skins\\Blue\r\nOther=1");
    EXPECT_EQ(settings.read("SkinName"), "C:\\skins\\Blue");
    EXPECT_EQ(settings.read("Other"), "1");
    EXPECT_EQ(settings.read("skinname"), std::nullopt);
    EXPECT_EQ(settings.read("Skin"), std::nullopt);
}

TEST_F(Settings, TheFirstOfTwoCounts) {
    std::filesystem::create_directory(folder.path() + "/Quillon Software");
    makeFile(path, "SkinName=first\nSkinName=second\n");
    EXPECT_EQ(settings.read("SkinName"), "first");
}

TEST_F(Settings, PutANewFileInTheOldOnesPlace) {
    ASSERT_TRUE(settings.write("SkinName", "old"));
    // Whoever has the old file open goes on reading the old text to its end.
    std::FILE* reader = std::fopen(path.c_str(), "r");
    ASSERT_TRUE(settings.write("SkinName", "new"));
    char text[100] = {};
    std::fread(text, 1, sizeof text - 1, reader);
    std::fclose(reader);
    EXPECT_STREQ(text, "SkinName=old\n");
    EXPECT_EQ(textOf(path), "SkinName=new\n");
}

TEST_F(Settings, LeaveNoDraftsBehind) {
    ASSERT_TRUE(settings.write("SkinName", "Blue"));
    const auto place = std::filesystem::path(path).parent_path();
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(place), {}), 1);
}

TEST_F(Settings, KeepALinkALink) {
    std::filesystem::create_directory(folder.path() + "/Quillon Software");
    std::filesystem::create_symlink(folder.path() + "/kept elsewhere.conf", path);
    makeFile(folder.path() + "/kept elsewhere.conf", "SkinName=old\n");
    ASSERT_TRUE(settings.write("SkinName", "new"));
    EXPECT_TRUE(std::filesystem::is_symlink(path));
    EXPECT_EQ(textOf(folder.path() + "/kept elsewhere.conf"), "SkinName=new\n");
}

TEST_F(Settings, SayWhenTheyCannotBeKept) {
    makeFile(folder.path() + "/in the way", "");
    SettingsFile blocked(folder.path() + "/in the way/settings.conf");
    EXPECT_FALSE(blocked.write("SkinName", "Blue"));
    EXPECT_EQ(blocked.read("SkinName"), std::nullopt);

    std::filesystem::create_directories(folder.path() + "/a folder.conf/inside");
    SettingsFile folderInPlace(folder.path() + "/a folder.conf");
    EXPECT_FALSE(folderInPlace.write("SkinName", "Blue"));

    SettingsFile nowhere("");
    EXPECT_FALSE(nowhere.write("SkinName", "Blue"));
    EXPECT_EQ(nowhere.read("SkinName"), std::nullopt);

    SettingsFile tooLong(folder.path() + "/" + std::string(5000, 'x') + "/settings.conf");
    EXPECT_FALSE(tooLong.write("SkinName", "Blue"));
    EXPECT_EQ(tooLong.read("SkinName"), std::nullopt);
}

TEST(OwnSettings, LieInTheConfigurationFolder) {
    const Variable configuration("XDG_CONFIG_HOME", "/somewhere/configuration");
    EXPECT_EQ(platform::ownSettingsPath(),
              "/somewhere/configuration/Quillon Software/Quillon Multitap Delay.conf");
}

TEST(OwnSettings, LieInTheHomeFolderWithoutOne) {
    const Variable home("HOME", "/home/somebody");
    const char* expected = "/home/somebody/.config/Quillon Software/Quillon Multitap Delay.conf";
    for (const char* none : {static_cast<const char*>(nullptr), "", "relative/folder"}) {
        const Variable configuration("XDG_CONFIG_HOME", none);
        EXPECT_EQ(platform::ownSettingsPath(), expected);
    }
}

TEST(OwnSettings, LieInTheHomeFolderOfTheUserAccountWithoutAHome) {
    const Variable configuration("XDG_CONFIG_HOME", nullptr);
    const Variable home("HOME", nullptr);
    EXPECT_TRUE(
        platform::ownSettingsPath().ends_with("/.config/Quillon Software/Quillon Multitap Delay.conf"))
        << platform::ownSettingsPath();
}

TEST(OwnSettings, AreWhatIsReadAndWritten) {
    const desk::PrivateFolder folder;
    const Variable configuration("XDG_CONFIG_HOME", folder.path().c_str());
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
    ASSERT_TRUE(platform::writeSetting("SkinName", "Blue"));
    EXPECT_EQ(platform::readSetting("SkinName"), "Blue");
    EXPECT_EQ(textOf(folder.path() + "/Quillon Software/Quillon Multitap Delay.conf"), "SkinName=Blue\n");
}

class MemoryStore final : public platform::SettingsStore {
  public:
    std::optional<std::string> read(const std::string& name) override {
        const auto found = kept.find(name);
        return found == kept.end() ? std::nullopt : std::optional(found->second);
    }
    bool write(const std::string& name, const std::string& value) override {
        kept[name] = value;
        return !isFull;
    }

    std::map<std::string, std::string> kept;
    bool isFull = false;
};

TEST(ReplacedSettings, TakeThePlaceOfThePersonsOwn) {
    const desk::PrivateFolder folder;
    const Variable configuration("XDG_CONFIG_HOME", folder.path().c_str());
    MemoryStore store;
    platform::replaceSettingsStore(&store);
    EXPECT_TRUE(platform::writeSetting("SkinName", "Blue"));
    EXPECT_EQ(platform::readSetting("SkinName"), "Blue");
    EXPECT_EQ(store.kept["SkinName"], "Blue");
    store.isFull = true;
    EXPECT_FALSE(platform::writeSetting("SkinName", "Red"));
    platform::replaceSettingsStore(nullptr);
    EXPECT_EQ(platform::readSetting("SkinName"), std::nullopt);
}

} // namespace
