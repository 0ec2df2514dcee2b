// The installer and the zip, on a Windows of the test's own: what they put where, and what they leave of a
// person's own things.

#include "desk/shared_library.h"
#include "platform/files.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>
#include <thread>

namespace {

namespace files = std::filesystem;

const files::path kStage = QUILLON_STAGE;
const files::path kClapStage = QUILLON_CLAP;
const files::path kChosen = "C:\\Studio\\VST Plug-ins\\Echo";
const std::string kBank = "default.fxb";
const std::string kFactoryPrograms = "Factory programs.fxb";
const std::string kLibrary = "QuillonMultitapDelay.dll";
const std::string kClapLibrary = "QuillonMultitapDelay.clap";
const std::string kUninstaller = "Uninstall.exe";
const std::string kInstalledKey =
    "HKLM\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Quillon Multitap Delay";
const std::string kSettingsKey = "HKCU\\Software\\Quillon Software\\Quillon Multitap Delay";
const std::string kFolderOfAllEffectsKey = "HKLM\\Software\\VST";

/// As the command line of Windows takes it. On the drive that the test runs on.
std::string quoted(const files::path& path) {
    return '"' + files::absolute(path).make_preferred().string() + '"';
}

/// The exit code of a program with its arguments.
int run(const std::string& command) {
    // The shell takes away the first and the last quotation mark.
    return std::system(('"' + command + '"').c_str());
}

bool hasKey(const std::string& key) {
    return run("reg query \"" + key + "\" >nul 2>nul") == 0;
}

void setValue(const std::string& key, const std::string& name, const std::string& text) {
    ASSERT_EQ(run("reg add \"" + key + "\" /v " + name + " /t REG_SZ /d \"" + text + "\" /f >nul"), 0);
}

bool waitUntil(const std::function<bool()>& condition) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

std::string contentOf(const files::path& file) {
    const auto bytes = platform::readWholeFile(file.string());
    return bytes ? std::string(bytes->begin(), bytes->end()) : "no such file";
}

void write(const files::path& file, const std::string& text) {
    files::create_directories(file.parent_path());
    ASSERT_TRUE(platform::writeWholeFile(file.string(), text.data(), text.size()));
}

/// Every file below a folder, by its place in it.
std::set<std::string> filesIn(const files::path& folder) {
    std::set<std::string> names;
    if (files::exists(folder))
        for (const auto& entry : files::recursive_directory_iterator(folder))
            if (entry.is_regular_file())
                names.insert(entry.path().lexically_relative(folder).generic_string());
    return names;
}

/// Where all CLAP hosts look.
files::path clapFolder() {
    return files::path(std::getenv("CommonProgramFiles")) / "CLAP" / "Quillon Multitap Delay";
}

/// Every delivered file is in the folder, whole.
void expectAllIn(const files::path& folder, const files::path& stage, const std::string& library) {
    const std::set<std::string> delivered = filesIn(stage);
    ASSERT_TRUE(delivered.contains(library));
    ASSERT_TRUE(delivered.contains("Quillon Skin/skin.xml"));
    for (const std::string& name : delivered)
        EXPECT_TRUE(contentOf(folder / name) == contentOf(stage / name)) << name;
}

/// The names of the delivered files and of those that the installer adds.
std::set<std::string> installedFiles(const files::path& stage, std::set<std::string> added) {
    added.merge(filesIn(stage));
    return added;
}

/// A bank of a person's own is in use in both folders, and the factory programs are beside it.
void expectBankInUse(const std::string& bank) {
    const std::string factoryPrograms = contentOf(kStage / kBank);
    EXPECT_TRUE(contentOf(kChosen / kBank) == bank);
    EXPECT_TRUE(contentOf(clapFolder() / kBank) == bank);
    EXPECT_TRUE(contentOf(kChosen / kFactoryPrograms) == factoryPrograms);
    EXPECT_TRUE(contentOf(clapFolder() / kFactoryPrograms) == factoryPrograms);
    EXPECT_EQ(filesIn(kChosen), installedFiles(kStage, {kFactoryPrograms, kUninstaller}));
    EXPECT_EQ(filesIn(clapFolder()), installedFiles(kClapStage, {kFactoryPrograms}));
}

void writeToBoth(const std::string& name, const std::string& text) {
    write(kChosen / name, text);
    write(clapFolder() / name, text);
}

void expectTheStageIn(const files::path& folder) {
    expectAllIn(folder, kStage, kLibrary);
}

/// Everything that the installer brought is gone when the uninstaller says so.
void uninstall(const files::path& folder) {
    ASSERT_EQ(run(quoted(folder / kUninstaller) + " /S"), 0);
    // It goes on in a copy of itself, since it removes itself as well; this is the last of all that it does.
    ASSERT_TRUE(waitUntil([] { return !hasKey(kInstalledKey) && !hasKey(kSettingsKey); }));
}

/// Without its windows; the place behind /D has no quotation marks, whatever is in it.
int install() {
    return run(quoted(QUILLON_INSTALLER) + " /S /D=" + kChosen.string());
}

int installWhereItLikes() {
    return run(quoted(QUILLON_INSTALLER) + " /S");
}

class Packages : public ::testing::Test {
  protected:
    void SetUp() override {
        run("reg delete \"" + kInstalledKey + "\" /f >nul 2>nul");
        run("reg delete \"" + kFolderOfAllEffectsKey + "\" /f >nul 2>nul");
        files::remove_all("C:\\Studio");
        files::remove_all(clapFolder().parent_path());
    }
};

TEST_F(Packages, AreInstalledWhereThePersonWantsThem) {
    ASSERT_EQ(install(), 0);
    expectTheStageIn(kChosen);
    EXPECT_EQ(filesIn(kChosen), installedFiles(kStage, {kFactoryPrograms, kUninstaller}));
    EXPECT_TRUE(hasKey(kInstalledKey));
}

TEST_F(Packages, AreInstalledWhereClapHostsLook) {
    ASSERT_EQ(install(), 0);
    expectAllIn(clapFolder(), kClapStage, kClapLibrary);
    EXPECT_EQ(filesIn(clapFolder()), installedFiles(kClapStage, {kFactoryPrograms}));
    const desk::SharedLibrary library((clapFolder() / kClapLibrary).string());
    EXPECT_NE(library.symbol("clap_entry"), nullptr);
}

TEST_F(Packages, KeepWhatAPersonAddedForClapHosts) {
    ASSERT_EQ(install(), 0);
    write(clapFolder() / "Mine/skin.xml", "my skin");
    ASSERT_EQ(install(), 0);
    expectAllIn(clapFolder(), kClapStage, kClapLibrary);
    write(clapFolder() / kBank, "my bank");
    uninstall(kChosen);
    EXPECT_EQ(filesIn(clapFolder()), (std::set<std::string>{"Mine/skin.xml", kBank}));
    EXPECT_EQ(contentOf(clapFolder() / kBank), "my bank");
}

TEST_F(Packages, LoadFromWhereTheyWereInstalled) {
    ASSERT_EQ(install(), 0);
    const desk::SharedLibrary library((kChosen / kLibrary).string());
    EXPECT_NE(library.symbol("VSTPluginMain"), nullptr);
}

TEST_F(Packages, GoIntoTheFolderOfAllEffectsUnlessToldOtherwise) {
    setValue(kFolderOfAllEffectsKey, "VSTPluginsPath", "C:\\Studio\\All");
    ASSERT_EQ(installWhereItLikes(), 0);
    expectTheStageIn("C:\\Studio\\All\\Quillon Multitap Delay");
}

TEST_F(Packages, GoWhereTheyWereBeforeUnlessToldOtherwise) {
    ASSERT_EQ(install(), 0);
    files::remove(kChosen / kLibrary);
    setValue(kFolderOfAllEffectsKey, "VSTPluginsPath", "C:\\Studio\\All");
    ASSERT_EQ(installWhereItLikes(), 0);
    expectTheStageIn(kChosen);
    EXPECT_FALSE(files::exists("C:\\Studio\\All"));
}

TEST_F(Packages, KeepWhatAPersonAddedWhenInstalledAgain) {
    ASSERT_EQ(install(), 0);
    write(kChosen / "Mine/skin.xml", "my skin");
    write(kChosen / "skin/mine.png", "my picture");
    write(kChosen / "Pluginccmap.bin", "my controllers");
    ASSERT_EQ(install(), 0);
    EXPECT_EQ(contentOf(kChosen / "Mine/skin.xml"), "my skin");
    EXPECT_EQ(contentOf(kChosen / "skin/mine.png"), "my picture");
    EXPECT_EQ(contentOf(kChosen / "Pluginccmap.bin"), "my controllers");
    expectTheStageIn(kChosen);
}

TEST_F(Packages, ReplaceTheFactoryProgramsOfAnEarlierVersion) {
    ASSERT_EQ(install(), 0);
    writeToBoth(kBank, "earlier programs");
    writeToBoth(kFactoryPrograms, "earlier programs");
    ASSERT_EQ(install(), 0);
    expectBankInUse(contentOf(kStage / kBank));
}

TEST_F(Packages, KeepABankOfAPersonsOwnInUseAtEachUpdate) {
    ASSERT_EQ(install(), 0);
    writeToBoth(kBank, "my first bank");
    for (int update = 0; update < 2; ++update) {
        writeToBoth(kFactoryPrograms, "earlier programs");
        ASSERT_EQ(install(), 0);
        expectBankInUse("my first bank");
    }
    writeToBoth(kBank, "my second bank");
    ASSERT_EQ(install(), 0);
    expectBankInUse("my second bank");
}

TEST_F(Packages, KeepABankThatWasThereBeforeTheFirstInstallation) {
    writeToBoth(kBank, "my bank");
    ASSERT_EQ(install(), 0);
    expectBankInUse("my bank");
}

TEST_F(Packages, KeepABankThatDiffersLittleFromTheFactoryPrograms) {
    ASSERT_EQ(install(), 0);
    const std::string factoryPrograms = contentOf(kStage / kBank);
    const std::string shorter = factoryPrograms.substr(0, factoryPrograms.size() - 1);
    for (const std::string& bank : {shorter, shorter + '\x7f', factoryPrograms + '\0', std::string()}) {
        SCOPED_TRACE(bank.size());
        ASSERT_TRUE(bank != factoryPrograms);
        writeToBoth(kBank, bank);
        ASSERT_EQ(install(), 0);
        expectBankInUse(bank);
    }
}

TEST_F(Packages, LeaveNothingBehindWhereAPersonPutTheFactoryProgramsBack) {
    ASSERT_EQ(install(), 0);
    writeToBoth(kBank, "my bank");
    ASSERT_EQ(install(), 0);
    writeToBoth(kBank, contentOf(kChosen / kFactoryPrograms));
    uninstall(kChosen);
    EXPECT_TRUE(waitUntil([] { return !files::exists(kChosen); }));
    EXPECT_FALSE(files::exists(clapFolder()));
}

TEST_F(Packages, LeaveNothingBehindWhenUninstalled) {
    ASSERT_EQ(install(), 0);
    setValue(kSettingsKey, "SkinName", "skin");
    uninstall(kChosen);
    EXPECT_TRUE(waitUntil([] { return !files::exists(kChosen); }));
    EXPECT_FALSE(files::exists(clapFolder().parent_path()));
}

TEST_F(Packages, LeaveSkinsAndBankOfAPersonsOwnWhenUninstalled) {
    ASSERT_EQ(install(), 0);
    write(kChosen / "Mine/skin.xml", "my skin");
    write(kChosen / "skin/mine.png", "my picture");
    write(kChosen / kBank, "my bank");
    uninstall(kChosen);
    EXPECT_EQ(filesIn(kChosen), (std::set<std::string>{"Mine/skin.xml", "skin/mine.png", kBank}));
    EXPECT_EQ(contentOf(kChosen / kBank), "my bank");
}

TEST_F(Packages, StayWholeWhileTheEffectIsInUse) {
    ASSERT_EQ(install(), 0);
    {
        const desk::SharedLibrary inUse((kChosen / kLibrary).string());
        // In place, so that its answer is heard.
        EXPECT_EQ(run(quoted(kChosen / kUninstaller) + " /S _?=" + kChosen.string()), 2);
        expectTheStageIn(kChosen);
        EXPECT_TRUE(hasKey(kInstalledKey));
    }
    {
        const desk::SharedLibrary inUse((clapFolder() / kClapLibrary).string());
        EXPECT_EQ(run(quoted(kChosen / kUninstaller) + " /S _?=" + kChosen.string()), 2);
        expectTheStageIn(kChosen);
        expectAllIn(clapFolder(), kClapStage, kClapLibrary);
    }
    uninstall(kChosen);
    EXPECT_TRUE(waitUntil([] { return !files::exists(kChosen); }));
}

TEST_F(Packages, AreInTheZipAsTheyAreDelivered) {
    const files::path effect = files::path(QUILLON_UNPACKED) / "Quillon Multitap Delay";
    expectTheStageIn(effect);
    EXPECT_EQ(filesIn(effect), filesIn(kStage));
    const files::path clap = files::path(QUILLON_UNPACKED) / "CLAP" / "Quillon Multitap Delay";
    expectAllIn(clap, kClapStage, kClapLibrary);
    EXPECT_EQ(filesIn(clap), filesIn(kClapStage));
    EXPECT_TRUE(files::exists(files::path(QUILLON_UNPACKED) / "Read me.txt"));
    const desk::SharedLibrary library((files::absolute(effect) / kLibrary).string());
    EXPECT_NE(library.symbol("VSTPluginMain"), nullptr);
}

TEST_F(Packages, BringToolsThatRun) {
    for (const char* const tool : {"quillon-bank.exe", "quillon-render.exe", "quillon-window.exe"})
        EXPECT_EQ(run(quoted(files::path(QUILLON_UNPACKED) / "Tools" / tool) + " --help >nul"), 0) << tool;
}

} // namespace
