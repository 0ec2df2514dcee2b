// The skins as they are delivered, under a real pointer: every control of a parameter is found by its place,
// moved, and its parameter, its text and the picture of the echoes are seen to change.
#include "skin_bench.h"
#include "support/counted_display.h"
#include "support/shown_editor.h"

#include "controls/displays.h"
#include "platform/module_folder.h"

#include "vstgui/lib/controls/csplashscreen.h"
#include "vstgui/lib/controls/cswitch.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

#include "child_process.h"

#include <X11/keysym.h>

namespace {

using namespace test;
using namespace vst2;
using VSTGUI::CRect;

constexpr const char* kSkins[] = {"Quillon Skin", "Quillon Skin Large", "Quillon Skin Small", "skin",
                                  "Paper and Ink"};

/// Where things are in a skin, as its own builder puts them.
struct Layout {
    struct Item {
        std::int32_t id;
        CRect place;
        bool isSwitch;
    };
    std::vector<Item> controls;          ///< of parameters
    std::map<std::int32_t, CRect> texts; ///< of their values, by id
    CRect about;
};

/// Of the skin that stands in `folder` under the name of the one that is taken first.
Layout layoutOf(const std::string& folder, const std::string& name) {
    SkinBench bench;
    platform::replaceModuleFolder(folder + "/");
    bench.settings.texts["SkinName"] = name;
    auto& editor = bench.makeEditor();
    EXPECT_TRUE(editor.open(nullptr));
    EXPECT_TRUE(bench.messages.empty());
    Layout layout;
    for (VSTGUI::CControl* control : editor.controls()) {
        const CRect place = control->getViewSize();
        if (auto* const text = dynamic_cast<controls::CParamDisplayLink*>(control))
            layout.texts[text->getLink()] = place;
        else if (dynamic_cast<VSTGUI::CSplashScreen*>(control))
            layout.about = place;
        else if (control->getTag() >= 0 && control->getTag() < conversation::kLiveParameters)
            layout.controls.push_back(
                {control->getTag(), place, dynamic_cast<VSTGUI::CSwitchBase*>(control) != nullptr});
    }
    return layout;
}

struct Part {
    int x, y, width, height;
};

Part partOf(const CRect& place) {
    return {static_cast<int>(place.left), static_cast<int>(place.top), static_cast<int>(place.getWidth()),
            static_cast<int>(place.getHeight())};
}

std::string plainName(const testing::TestParamInfo<const char*>& info) {
    std::string name;
    std::ranges::copy_if(std::string_view(info.param), std::back_inserter(name),
                         [](char byte) { return byte != ' '; });
    return name;
}

class ShippedSkin : public conversation::PluginFolder, public testing::WithParamInterface<const char*> {
  protected:
    ShippedSkin() {
        namespace files = std::filesystem;
        const std::string skins = std::string(QUILLON_SOURCE) + "/skins";
        files::copy_file(skins + "/default.fxb", module.beside("default.fxb"));
        for (const char* name : kSkins)
            files::copy(skins + "/" + name, module.beside(name), files::copy_options::recursive);
        layout = layoutOf(module.folder(), GetParam());
        const std::string settings = std::string(std::getenv("XDG_CONFIG_HOME")) + "/Quillon Software";
        files::create_directories(settings);
        std::ofstream(settings + "/Quillon Multitap Delay.conf") << "SkinName=" << GetParam() << "\n";
        setenv("DISPLAY", screen().name().c_str(), 1);
    }

    ~ShippedSkin() override {
        shown.reset();
        lookForLeaks();
    }

    static VirtualScreen& screen() {
        static VirtualScreen theScreen("1500x1000x24");
        return theScreen;
    }

    ShownEditor& show() {
        shown = std::make_unique<ShownEditor>(module.library(), screen());
        EXPECT_TRUE(shown->open());
        // Complete as soon as two looks in a row show the same picture, which is not the bare window.
        std::vector<Pixel> before;
        EXPECT_TRUE(shown->serveUntil([&] {
            auto now = shown->part(0, 0, shown->width(), shown->height());
            const bool isSteady = now == before && now.back() != 0xFF00FF;
            before = std::move(now);
            return isSteady;
        }));
        return *shown;
    }
    std::vector<Pixel> look(const Part& part) { return shown->part(part.x, part.y, part.width, part.height); }
    bool changes(const std::vector<Pixel>& before, const Part& part) {
        return shown->changes(before, part.x, part.y, part.width, part.height);
    }

    /// Moves the control by the hand, whatever it is, until its parameter follows.
    bool move(const Layout::Item& item) {
        const float before = shown->value(item.id);
        const Part part = partOf(item.place);
        const auto follows = [&] { return std::abs(shown->value(item.id) - before) > 0.05f; };
        const int x = part.x + part.width / 2, y = part.y + part.height / 2;
        if (item.isSwitch) {
            // The ways lie beside or below each other; one of the ends is another way than now.
            const bool isFlat = part.width > part.height;
            for (const int share : {1, 5}) {
                if (isFlat)
                    shown->click(part.x + part.width * share / 6, y);
                else
                    shown->click(x, part.y + part.height * share / 6);
                for (int i = 0; i < 20 && !follows(); ++i)
                    shown->serve();
                if (follows())
                    return true;
            }
            return shown->serveUntil(follows);
        }
        const int distance = before < 0.5f ? 60 : -60;
        return shown->drag(x, y, x + distance, y - distance, follows);
    }

    Layout layout;
    std::unique_ptr<ShownEditor> shown;
};

/// The objects of a delivered skin, as text from its file, without the constants.
std::string objectsOf(const std::string& skin) {
    std::ifstream file(std::string(QUILLON_SOURCE) + "/skins/" + skin + "/skin.xml");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    return text.substr(text.rfind("</CONSTANTS>"));
}

TEST(LargeSkin, HasTheObjectsOfTheSkinThatItEnlarges) {
    EXPECT_GT(objectsOf("Quillon Skin").size(), 1000u);
    EXPECT_EQ(objectsOf("Quillon Skin Large"), objectsOf("Quillon Skin"));
}

INSTANTIATE_TEST_SUITE_P(Delivered, ShippedSkin, testing::ValuesIn(kSkins), plainName);

TEST_P(ShippedSkin, HasAControlForEveryParameter) {
    for (std::int32_t id = 0; id < conversation::kLiveParameters; ++id)
        EXPECT_EQ(std::ranges::count(layout.controls, id, &Layout::Item::id), 1) << id;
}

TEST_P(ShippedSkin, MovesEveryParameterByItsControl) {
    auto& editor = show();
    for (const Layout::Item& item : layout.controls) {
        SCOPED_TRACE(item.id);
        const bool hasText = layout.texts.contains(item.id);
        const Part text = hasText ? partOf(layout.texts[item.id]) : Part{};
        const auto textBefore = look(text);
        editor.plugin().clearCalls();
        ASSERT_TRUE(move(item));
        ASSERT_TRUE(editor.serveUntil([&] {
            const auto told = editor.toldOf(item.id);
            return !told.empty() && told.back() == audioMasterEndEdit;
        }));
        EXPECT_EQ(editor.toldOf(item.id).front(), audioMasterBeginEdit);
        EXPECT_TRUE(!hasText || changes(textBefore, text)) << "its value";
    }
}

TEST_P(ShippedSkin, ShowsEveryChangeOfThePattern) {
    auto& editor = show();
    // The upper part of the window holds the picture of the echoes; no control of these stands there.
    for (const std::int32_t id : {1, 3, 4, 5}) {
        const auto item = std::ranges::find(layout.controls, id, &Layout::Item::id);
        const Part echoes = {10, 60, editor.width() - 20, 140};
        const auto before = look(echoes);
        ASSERT_TRUE(move(*item)) << id;
        EXPECT_TRUE(changes(before, echoes)) << id;
    }
}

TEST_P(ShippedSkin, OffersToForgetABoundController) {
    auto& editor = show();
    editor.destroyInstance();
    std::vector<std::uint8_t> map(84, 0xFF);
    map[4 * conversation::kFeedback] = 7;
    std::ranges::fill_n(map.begin() + 4 * conversation::kFeedback + 1, 3, std::uint8_t{0});
    conversation::writeFile(here(conversation::kMapFile), map);
    show();
    const auto item = std::ranges::find(layout.controls, conversation::kFeedback, &Layout::Item::id);
    const Part part = partOf(item->place);
    const Part below = {part.x + part.width / 2 + 4, part.y + part.height / 2 + 4, 30, 30};
    const auto before = look(below);
    shown->click(part.x + part.width / 2, part.y + part.height / 2, kRight);
    ASSERT_TRUE(changes(before, below));
    shown->typeKey(XK_Down);
    shown->typeKey(XK_Down);
    shown->typeKey(XK_Return);
    EXPECT_TRUE(shown->becomes(conversation::kFeedback, -1.0f));
    shown->destroyInstance();
    const auto written = conversation::readFile(here(conversation::kMapFile));
    ASSERT_TRUE(written);
    EXPECT_EQ((*written)[4 * conversation::kFeedback], 0xFF);
}

TEST_P(ShippedSkin, GoesBackToADefaultByControlAndClick) {
    auto& editor = show();
    const auto item = std::ranges::find(layout.controls, conversation::kStereo, &Layout::Item::id);
    const float start = editor.value(item->id);
    ASSERT_TRUE(move(*item));
    const Part part = partOf(item->place);
    editor.holdKey(XK_Control_L, true);
    editor.click(part.x + part.width / 2, part.y + part.height / 2);
    EXPECT_TRUE(editor.becomes(item->id, start));
    editor.holdKey(XK_Control_L, false);
}

TEST_P(ShippedSkin, OpensTheAboutBoxFromItsEmptyGround) {
    auto& editor = show();
    // A spot of the about area that no other control lies on.
    const auto isFree = [&](int x, int y) {
        const VSTGUI::CPoint spot(x, y);
        return layout.about.pointInside(spot) &&
               std::ranges::none_of(layout.controls,
                                    [&](const auto& item) { return item.place.pointInside(spot); }) &&
               std::ranges::none_of(layout.texts,
                                    [&](const auto& text) { return text.second.pointInside(spot); });
    };
    int x = 6;
    const int y = editor.height() * 2 / 3;
    while (x < editor.width() && !isFree(x, y))
        ++x;
    ASSERT_LT(x, editor.width());
    const Part middle = {editor.width() / 2 - 60, editor.height() / 2 - 40, 120, 80};
    const auto before = look(middle);
    editor.click(x, y);
    ASSERT_TRUE(changes(before, middle));
    editor.click(editor.width() / 2, editor.height() / 2);
    EXPECT_TRUE(editor.serveUntil([&] { return look(middle) == before; }));
}

TEST_P(ShippedSkin, TurnsItsEchoesIntoHelpAndBack) {
    auto& editor = show();
    const Part echoes = {10, 60, editor.width() - 20, 140};
    const auto picture = look(echoes);
    editor.click(editor.width() / 2, 120, kRight);
    ASSERT_TRUE(changes(picture, echoes));
    editor.click(editor.width() / 2, 120);
    EXPECT_TRUE(editor.serveUntil([&] { return look(echoes) == picture; }));
}

TEST_P(ShippedSkin, SendsFarLessThanAPictureToShowThatEveryParameterHasChanged) {
    const CountedDisplay display(screen().name());
    setenv("DISPLAY", display.name().c_str(), 1);
    auto& editor = show();
    const Part window = {0, 0, editor.width(), editor.height()};
    const auto automate = [&](float value) {
        const auto before = look(window);
        for (std::int32_t id = 0; id < conversation::kLiveParameters; ++id)
            editor.plugin().setParameter(id, value);
        EXPECT_TRUE(changes(before, window)) << value;
    };
    const auto sentAfter = [&](int times) {
        for (int i = 0; i < times; ++i)
            automate(i % 2 == 0 ? 0.2f : 0.8f);
        // The last drawing is followed by a question, and so counted.
        editor.serve();
        return display.bytesSent();
    };
    constexpr int kTimes = 10;
    // Pictures and letters that have not been drawn before may travel once.
    const std::uint64_t before = sentAfter(4);
    const std::uint64_t sent = (sentAfter(kTimes) - before) / kTimes;
    RecordProperty("bytes", std::to_string(sent));
    // The smallest film strip of a knob has 416000.
    EXPECT_LT(sent, 64000u);
    shown.reset();
}

} // namespace
