// Which folder a window is read from, which ones the person may choose from, and what becomes of the choice.
#include "skin_bench.h"
#include "skin_pictures.h"

#include "platform/files.h"
#include "platform/module_folder.h"
#include "skin/skin_context.h"
#include "skin/skin_menu.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

using skin::SkinContext;
using test::Message;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;
using Strings = std::vector<std::string>;

class SkinFolders : public testing::Test {
  protected:
    /// A skin that can be told by the width of its window.
    void addSkin(const std::string& name, int width) {
        bench.drawPicture("ground.png", width, 50, {VSTGUI::kBlueCColor}, name);
        bench.writeSkin(R"(<background filename="ground.png"/>
                           <skinselector x="0" y="0" w="40" h="10"/>)",
                        name);
    }

    int openedWidth() {
        auto& editor = bench.makeEditor();
        const int measured = editor.rect.right;
        EXPECT_TRUE(editor.open(nullptr));
        EXPECT_EQ(editor.frame->getWidth(), measured);
        return measured;
    }

    void choose(const std::string& name) { bench.settings.texts["SkinName"] = name; }

    /// What is listed, in an order of its own.
    Strings listedNames() {
        auto& editor = bench.makeEditor();
        editor.open(nullptr);
        Strings names;
        for (const skin::SkinName& name : editor.skinNames)
            names.push_back(name.text);
        std::ranges::sort(names);
        return names;
    }

    test::SkinBench bench;
};

// The skin that is used

TEST_F(SkinFolders, UseTheFirstSkinWhenNothingWasEverChosen) {
    addSkin("Quillon Skin", 101);
    addSkin("skin", 102);
    EXPECT_EQ(openedWidth(), 101);
}

TEST_F(SkinFolders, UseTheChosenSkin) {
    addSkin("Quillon Skin", 101);
    addSkin("skin", 102);
    addSkin("night", 103);
    choose("night");
    EXPECT_EQ(openedWidth(), 103);
}

TEST_F(SkinFolders, FallBackWhenTheChosenSkinHasGone) {
    addSkin("Quillon Skin", 101);
    addSkin("skin", 102);
    choose("night");
    EXPECT_EQ(openedWidth(), 102);
    EXPECT_EQ(bench.settings.texts["SkinName"], "night") << "the choice is kept for the day it comes back";
    EXPECT_TRUE(bench.messages.empty());
}

TEST_F(SkinFolders, FallBackWhenTheChosenFolderHasNoSkinFile) {
    addSkin("skin", 102);
    bench.makeFolder("night");
    choose("night");
    EXPECT_EQ(openedWidth(), 102);
}

TEST_F(SkinFolders, DoNotFallBackWhenNothingWasEverChosen) {
    addSkin("skin", 102);
    CaptureStdout();
    auto& editor = bench.makeEditor();
    EXPECT_EQ(editor.rect.right, 0);
    EXPECT_FALSE(editor.open(nullptr));
    const std::string line = bench.folder() + "Quillon Skin/skin.xml skin file missing\n";
    EXPECT_EQ(GetCapturedStdout(), line + line);
}

TEST_F(SkinFolders, FailWhenTheFallbackIsMissingToo) {
    addSkin("Quillon Skin", 101);
    choose("night");
    CaptureStdout();
    auto& editor = bench.makeEditor();
    EXPECT_EQ(editor.rect.right, 0);
    EXPECT_FALSE(editor.open(nullptr));
    const std::string line = bench.folder() + "skin/skin.xml skin file missing\n";
    EXPECT_EQ(GetCapturedStdout(), line + line) << "once for the size and once for the window";
    EXPECT_TRUE(bench.messages.empty());
}

TEST_F(SkinFolders, TakeAChoiceThatIsTooLongForNone) {
    addSkin("Quillon Skin", 101);
    addSkin("skin", 102);
    choose(std::string(260, 'n'));
    EXPECT_EQ(openedWidth(), 101);
    choose(std::string(259, 'n'));
    EXPECT_EQ(openedWidth(), 102) << "a name that can be read, but there is no such folder";
}

TEST_F(SkinFolders, TakeAnEmptyChoiceForTheFolderItself) {
    addSkin("skin", 102);
    choose("");
    EXPECT_EQ(openedWidth(), 102);
    bench.drawPicture("ground.png", 104, 50, {VSTGUI::kBlueCColor}, ".");
    bench.writeSkin(R"(<background filename="ground.png"/>)", ".");
    EXPECT_EQ(openedWidth(), 104);
}

TEST_F(SkinFolders, AreFoundInAnyLetterCase) {
    addSkin("Night Shift", 103);
    choose("NIGHT shift");
    EXPECT_EQ(openedWidth(), 103);
}

TEST_F(SkinFolders, HoldASkinFileOfAnyLetterCase) {
    addSkin("night", 103);
    std::filesystem::rename(bench.folder() + "night/skin.xml", bench.folder() + "night/Skin.XML");
    choose("night");
    EXPECT_EQ(openedWidth(), 103);
}

TEST_F(SkinFolders, AreReadAnewAtEachOpening) {
    addSkin("Quillon Skin", 101);
    addSkin("night", 103);
    auto& editor = bench.makeEditor();
    ASSERT_TRUE(editor.open(nullptr));
    editor.close();
    choose("night");
    ASSERT_TRUE(editor.open(nullptr));
    EXPECT_EQ(editor.frame->getWidth(), 103);
    EXPECT_EQ(editor.rect.right, 101) << "the host was told when the editor was made";
}

TEST_F(SkinFolders, AreNotSoughtInTheCurrentFolderWhenTheirOwnHasTooLongAPath) {
    std::filesystem::create_directories("Quillon Skin");
    for (const char* stray : {"skin.xml", "Quillon Skin/skin.xml"})
        ASSERT_TRUE(platform::writeWholeFile(stray, "<GUI></GUI>", 11));
    std::string tooLong = bench.folder();
    while (tooLong.size() < skin::kPathSize)
        tooLong += "./";
    platform::replaceModuleFolder(tooLong);
    CaptureStdout();
    auto& editor = bench.makeEditor();
    EXPECT_FALSE(editor.open(nullptr));
    EXPECT_NE(GetCapturedStdout(), "");
    EXPECT_EQ(editor.skinNames.count, 0);
}

TEST_F(SkinFolders, AreFoundBelowALongPath) {
    for (const std::size_t length : {300u, 1000u, 3900u}) {
        SCOPED_TRACE(length);
        std::string below;
        while (bench.folder().size() + below.size() < length)
            below += std::string(50, 'd') + "/";
        for (const char* name : {"Quillon Skin", "night"})
            addSkin(below + name, *name == 'n' ? 103 : 101);
        platform::replaceModuleFolder(bench.folder() + below);
        choose("night");
        EXPECT_EQ(openedWidth(), 103);
        bench.settings.texts.clear();
        EXPECT_EQ(openedWidth(), 101);
        EXPECT_EQ(listedNames(), (Strings{"Quillon Skin", "night"}));
    }
}

TEST_F(SkinFolders, MayHaveTheLongestNameThatThereIs) {
    const std::string longName(255, 'n');
    addSkin(longName, 103);
    choose(longName);
    EXPECT_EQ(openedWidth(), 103);
    EXPECT_EQ(listedNames(), Strings{longName});
}

TEST_F(SkinFolders, ThatCannotBeParsedAreReportedAsMissing) {
    bench.drawPicture("ground.png", 30, 20);
    for (const char* text : {"", "<GUI>", "<?xml version=\"1.0\"?><GUI></GUI>",
                             "<GUI><background filename=\"ground.png\"/></WINDOW>", "no skin at all"}) {
        SCOPED_TRACE(text);
        bench.writeFile("Quillon Skin/skin.xml", text);
        CaptureStdout();
        auto& editor = bench.makeEditor();
        EXPECT_FALSE(editor.open(nullptr));
        const std::string line = bench.folder() + "Quillon Skin/skin.xml skin file missing\n";
        EXPECT_EQ(GetCapturedStdout(), line + line);
        EXPECT_EQ(editor.frame, nullptr);
        EXPECT_EQ(editor.rect.right, 0);
    }
}

TEST_F(SkinFolders, WithAnotherRootAreReportedAsSuch) {
    bench.writeFile("Quillon Skin/skin.xml", "<WINDOW><background filename=\"ground.png\"/></WINDOW>");
    CaptureStdout();
    auto& editor = bench.makeEditor();
    EXPECT_FALSE(editor.open(nullptr));
    EXPECT_EQ(GetCapturedStdout(), "<GUI> node missing\n<GUI> node missing\n");
    EXPECT_EQ(editor.frame, nullptr);
}

TEST_F(SkinFolders, MaySpellTheRootAsTheyLike) {
    bench.drawPicture("ground.png", 30, 20);
    bench.writeFile("Quillon Skin/skin.xml", "<gUi><BackGround FileName=\"ground.png\"/></GuI>");
    EXPECT_EQ(openedWidth(), 30);
}

// The list

TEST_F(SkinFolders, AreListedIfTheyHoldASkinFile) {
    addSkin("Quillon Skin", 101);
    addSkin("night", 103);
    addSkin("blue day", 104);
    bench.makeFolder("no skin");
    bench.writeFile("a file", "of no interest");
    bench.writeFile("deep/inside/skin.xml", "<GUI></GUI>");
    EXPECT_EQ(listedNames(), (Strings{"Quillon Skin", "blue day", "night"}));
}

TEST_F(SkinFolders, AreListedWhateverTheirFileSays) {
    addSkin("Quillon Skin", 101);
    bench.writeFile("broken/skin.xml", "nonsense");
    EXPECT_EQ(listedNames(), (Strings{"Quillon Skin", "broken"}));
}

TEST_F(SkinFolders, AreListedInTheOrderOfTheFileSystem) {
    for (const char* name : {"zebra", "Quillon Skin", "apple", "mango"})
        addSkin(name, 101);
    auto& editor = bench.makeEditor();
    ASSERT_TRUE(editor.open(nullptr));
    Strings listed, inFolder;
    for (const skin::SkinName& name : editor.skinNames)
        listed.push_back(name.text);
    for (const auto& entry : std::filesystem::directory_iterator(bench.folder()))
        inFolder.push_back(entry.path().filename());
    EXPECT_EQ(listed, inFolder);
}

TEST_F(SkinFolders, AreListedOnceHoweverOftenTheWindowOpens) {
    addSkin("Quillon Skin", 101);
    addSkin("night", 103);
    auto& editor = bench.makeEditor();
    EXPECT_EQ(editor.skinNames.count, 2) << "the pass that measures lists them too";
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(editor.open(nullptr));
        EXPECT_EQ(editor.skinNames.count, 2);
        editor.close();
    }
}

TEST_F(SkinFolders, ThatDifferInLetterCaseAloneAreListedForThemselves) {
    addSkin("Quillon Skin", 101);
    addSkin("night", 103);
    bench.makeFolder("NIGHT");
    if (!platform::fileExists(bench.folder() + "NIGHT/skin.xml"))
        EXPECT_EQ(listedNames(), (Strings{"Quillon Skin", "night"}));
    else
        GTEST_SKIP() << "this file system takes both for one";
}

// The steps by themselves

TEST_F(SkinFolders, CanBeAskedStepByStep) {
    addSkin("night", 103);
    addSkin("skin", 102);
    char folder[skin::kPathSize], name[skin::kNameSize];
    skin::skinModuleFolder(folder);
    EXPECT_EQ(folder, bench.folder());
    skin::skinLoadName(folder, name);
    EXPECT_STREQ(name, "Quillon Skin");
    EXPECT_TRUE(skin::skinSaveName("night"));
    skin::skinLoadName(folder, name);
    EXPECT_STREQ(name, "night");
    EXPECT_TRUE(skin::skinSaveName("gone"));
    skin::skinLoadName(folder, name);
    EXPECT_STREQ(name, "skin");
    bench.settings.keeps = false;
    EXPECT_FALSE(skin::skinSaveName("night"));

    auto& editor = bench.makeEditor();
    editor.skinNames.clear();
    skin::skinScanFolder(folder, &editor);
    EXPECT_EQ(editor.skinNames.count, 2);
}

TEST_F(SkinFolders, FillTheWorkingRecordOfAPass) {
    addSkin("Quillon Skin", 101);
    auto& editor = bench.makeEditor();
    SkinContext context;
    int window = 0;
    skin::skinContextInit(&context, &window, true, &editor);
    EXPECT_EQ(context.path, bench.folder() + "Quillon Skin/");
    EXPECT_EQ(context.parent, &window);
    EXPECT_TRUE(context.backgroundOnly);
    EXPECT_EQ(context.bitmaps.count, 0);
    EXPECT_EQ(context.bitmaps.capacity, 32);
    EXPECT_EQ(context.constants.count, 0);
    EXPECT_EQ(context.constants.capacity, 32);
    skin::skinContextRelease(&context);
}

// The menu of skins

class SkinMenus : public SkinFolders {
  protected:
    skin::SkinMenu& openMenu() {
        editor = &bench.makeEditor();
        EXPECT_TRUE(editor->open(nullptr));
        return dynamic_cast<skin::SkinMenu&>(*editor->controlOf(skin::kSkinSelectorTag));
    }

    /// Picks the entry of this number, as the menu does when the hand lets go.
    void pick(skin::SkinMenu& menu, float entry) {
        menu.showValue(entry);
        editor->valueChanged(&menu);
    }

    int placeOf(const std::string& name) {
        for (int i = 0; i < editor->skinNames.count; ++i)
            if (editor->skinNames[i].text == name)
                return i;
        return -1;
    }

    test::ExposedEditor<skin::xmlGuiEditor>* editor = nullptr;
};

const Message selected{"The new skin has been selected.\n"
                       "Please close and open this window.\n"
                       "If nothing changes it's probably because your host only hides\n"
                       "the editor windows, so you may have to reopen the plug-in",
                       "SKIN SELECTED!"};

TEST_F(SkinMenus, ShowTheirFoldersWithACapital) {
    addSkin("Quillon Skin", 101);
    addSkin("my skin", 103);
    addSkin("SKIN", 104);
    addSkin("\xC3\xA9t\xC3\xA9", 105);
    addSkin("7up", 106);
    skin::SkinMenu& menu = openMenu();
    const auto shown = [&](const char* name) { return menu.getEntry(placeOf(name))->getTitle().getString(); };
    ASSERT_EQ(menu.getNbEntries(), 5);
    EXPECT_EQ(shown("Quillon Skin"), "Quillon Skin");
    EXPECT_EQ(shown("my skin"), "My skin");
    EXPECT_EQ(shown("SKIN"), "Default Skin");
    EXPECT_EQ(shown("\xC3\xA9t\xC3\xA9"), "\xC3\xA9t\xC3\xA9");
    EXPECT_EQ(shown("7up"), "7up");
}

TEST_F(SkinMenus, RememberTheChoiceAndSaySo) {
    addSkin("Quillon Skin", 101);
    addSkin("my skin", 103);
    skin::SkinMenu& menu = openMenu();
    pick(menu, static_cast<float>(placeOf("my skin")));
    EXPECT_EQ(bench.settings.texts["SkinName"], "my skin") << "the folder's name and not what is shown";
    EXPECT_EQ(bench.messages, std::vector<Message>{selected});
    EXPECT_EQ(menu.getValue(), 2.0f) << "no entry is shown as chosen";
    EXPECT_EQ(editor->frame->getWidth(), 101) << "the open window stays as it is";
}

TEST_F(SkinMenus, TakeTheSameEntryAgain) {
    addSkin("Quillon Skin", 101);
    skin::SkinMenu& menu = openMenu();
    pick(menu, 0.0f);
    pick(menu, 0.0f);
    EXPECT_EQ(bench.messages.size(), 2U);
}

TEST_F(SkinMenus, CutTheValueToAnEntry) {
    addSkin("Quillon Skin", 101);
    skin::SkinMenu& menu = openMenu();
    pick(menu, 0.99f);
    EXPECT_EQ(bench.settings.texts["SkinName"], "Quillon Skin");
}

TEST_F(SkinMenus, IgnoreAValueThatIsNoEntry) {
    addSkin("Quillon Skin", 101);
    skin::SkinMenu& menu = openMenu();
    for (float value : {1.0f, 1.5f, 1000.0f, -1.0f}) {
        pick(menu, value);
        EXPECT_TRUE(bench.settings.texts.empty()) << value;
        EXPECT_TRUE(bench.messages.empty()) << value;
        EXPECT_EQ(menu.getValue(), 1.0f) << value;
    }
}

TEST_F(SkinMenus, SayNothingWhenTheChoiceCannotBeKept) {
    addSkin("Quillon Skin", 101);
    skin::SkinMenu& menu = openMenu();
    bench.settings.keeps = false;
    pick(menu, 0.0f);
    EXPECT_TRUE(bench.messages.empty());
    EXPECT_EQ(menu.getValue(), 1.0f);
}

TEST_F(SkinMenus, HaveNoEntriesWithoutSkins) {
    // A skin in the plug-in's folder itself is used and not listed.
    bench.drawPicture("ground.png", 104, 50, {VSTGUI::kBlueCColor}, ".");
    bench.writeSkin(R"(<background filename="ground.png"/><skinselector x="0" y="0" w="40" h="10"/>)", ".");
    choose("");
    skin::SkinMenu& menu = openMenu();
    EXPECT_EQ(menu.getNbEntries(), 0);
    pick(menu, 0.0f);
    EXPECT_TRUE(bench.messages.empty());
}

// Pictures

class SkinPictures : public SkinFolders {
  protected:
    SkinPictures() { addSkin("Quillon Skin", 101); }

    void startPass() { skin::skinContextInit(&context, nullptr, false, &bench.makeEditor()); }
    ~SkinPictures() override { skin::skinContextRelease(&context); }

    std::string sizeOf(const char* name) { return test::sizeOf(skin::skinGetBitmap(&context, name)); }

    void add(const std::string& prepared) {
        std::filesystem::copy(QUILLON_PICTURES "/" + prepared, bench.folder() + "Quillon Skin/" + prepared);
    }

    SkinContext context;
};

TEST_F(SkinPictures, AreDecodedOnceInAPass) {
    startPass();
    VSTGUI::CBitmap* const first = skin::skinGetBitmap(&context, "ground.png");
    EXPECT_EQ(test::sizeOf(first), "101 x 50");
    EXPECT_EQ(skin::skinGetBitmap(&context, "ground.png"), first);
    EXPECT_EQ(context.bitmaps.count, 1);
    EXPECT_EQ(first->getNbReference(), 1) << "whoever asks again takes no reference";
}

TEST_F(SkinPictures, TogetherCostNoMoreThanASkinMay) {
    bench.drawPicture("knob.png", 3, 2);
    bench.drawPicture("late.png", 3, 2);
    startPass();
    context.pictureAllowance.pixels = 101 * 50 + 3 * 2;
    EXPECT_EQ(sizeOf("ground.png"), "101 x 50");
    EXPECT_EQ(sizeOf("knob.png"), "3 x 2");
    EXPECT_EQ(sizeOf("late.png"), "0 x 0");
    EXPECT_EQ(sizeOf("ground.png"), "101 x 50") << "read once, it costs nothing more";
}

TEST_F(SkinPictures, OfOneNameInTwoSpellingsAreOne) {
    bench.drawPicture("Bg.PNG", 7, 8);
    startPass();
    VSTGUI::CBitmap* const first = skin::skinGetBitmap(&context, "bg.png");
    EXPECT_EQ(test::sizeOf(first), "7 x 8");
    EXPECT_EQ(skin::skinGetBitmap(&context, "Bg.PNG"), first);
    ASSERT_EQ(context.bitmaps.count, 1);
    EXPECT_STREQ(context.bitmaps[0].name, "bg.png") << "as it was first spelt";
}

TEST_F(SkinPictures, LieInSubfoldersWithEitherSlash) {
    bench.drawPicture("Knobs/Big/Red.png", 9, 10);
    startPass();
    for (const char* name : {"Knobs/Big/Red.png", "Knobs\\Big\\Red.png", "knobs\\BIG/red.PNG"})
        EXPECT_EQ(sizeOf(name), "9 x 10") << name;
}

TEST_F(SkinPictures, ComeInFourFormats) {
    for (const char* name : {"squares.png", "squares.bmp", "squares.gif", "squares.jpg"})
        add(name);
    startPass();
    for (const char* name : {"squares.png", "squares.bmp", "squares.gif"})
        EXPECT_EQ(sizeOf(name), "3 x 2") << name;
    EXPECT_EQ(sizeOf("squares.jpg"), "48 x 32");
}

TEST_F(SkinPictures, ThatAreMissingHaveNoSizeAndMakeNoFuss) {
    add("torn.png");
    startPass();
    for (const char* name : {"nowhere.png", "torn.png", "", "skin.xml"}) {
        EXPECT_EQ(sizeOf(name), "0 x 0") << name;
        EXPECT_EQ(sizeOf(name), "0 x 0") << name << ", asked for again";
    }
    EXPECT_EQ(context.bitmaps.count, 4) << "not looked for a second time";
    EXPECT_TRUE(bench.messages.empty());
}

TEST_F(SkinPictures, OutliveThePassOnlyInAControl) {
    startPass();
    VSTGUI::SharedPointer<VSTGUI::CBitmap> kept = VSTGUI::shared(skin::skinGetBitmap(&context, "ground.png"));
    skin::skinContextRelease(&context);
    EXPECT_EQ(kept->getNbReference(), 1);
    EXPECT_EQ(context.bitmaps.count, 0);
    EXPECT_EQ(test::sizeOf(kept), "101 x 50");
}

TEST_F(SkinPictures, MayBeManyMoreThanTheFirstRoom) {
    startPass();
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(sizeOf(("missing " + std::to_string(i)).c_str()), "0 x 0");
    EXPECT_EQ(context.bitmaps.count, 100);
    EXPECT_EQ(context.bitmaps.capacity, 32 + 5 * 16);
}

TEST_F(SkinPictures, OfABackgroundThatIsMissingGiveAWindowOfNoSize) {
    bench.writeSkin(R"(<background filename="nowhere.png"/>)");
    auto& editor = bench.makeEditor();
    EXPECT_EQ(editor.rect.right, 0);
    EXPECT_TRUE(editor.open(nullptr));
    ASSERT_NE(editor.frame, nullptr);
    EXPECT_EQ(editor.frame->getWidth(), 0);
    EXPECT_TRUE(bench.messages.empty());
}

} // namespace
