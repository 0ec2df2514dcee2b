// An editor in a host's window, from its size to its end.

#include <gtest/gtest.h>

#include "host/editor_window.h"

#include <cstdlib>
#include <memory>

#include "child_process.h"
#include "support/close_window.h"
#include "virtual_screen.h"

namespace {

using host::EditorWindow;

class AnEditorWindow : public testing::Test {
  protected:
    AnEditorWindow() { setenv("DISPLAY", screen.name().c_str(), 1); }

    /// Loads one of the effects made for the purpose; once for the process, as the tools do.
    host::Plugin& load(const std::string& name) {
        library = std::make_unique<host::Library>(EFFECTS "/" + name + ".so");
        plugin = std::make_unique<host::Plugin>(*library);
        return *plugin;
    }
    std::string story() { return reinterpret_cast<const char* (*)()>(library->symbol("storyOfTheEditor"))(); }
    test::Place place() { return placeOf(screen, screen.waitForWindow()); }

    test::VirtualScreen screen;
    std::unique_ptr<host::Library> library;
    std::unique_ptr<host::Plugin> plugin;
};

TEST_F(AnEditorWindow, HasTheSizeOfItsEditor) {
    host::Plugin& effect = load("window_effect");
    ASSERT_TRUE(host::editorSize(effect));
    EXPECT_EQ(host::editorSize(effect)->width, 60);
    EditorWindow window("title");
    window.open(effect);
    EXPECT_TRUE(window.isOpen());
    EXPECT_EQ(place().width, 60);
    EXPECT_EQ(place().height, 40);
}

TEST_F(AnEditorWindow, TakesTheSizeThatTheEditorAsksForLater) {
    EditorWindow window("title");
    window.open(load("window_effect_resizing"));
    EXPECT_EQ(place().width, 90);
    EXPECT_EQ(plugin->callsOf(vst2::audioMasterSizeWindow), 1);
    EXPECT_EQ(plugin->calls().back().answer, 1);
}

TEST_F(AnEditorWindow, LeavesOtherQuestionsToWhoeverAnsweredThemBefore) {
    host::Plugin& effect = load("window_effect_resizing");
    const auto before = [](const host::HostCall& call, void*) -> std::optional<std::intptr_t> {
        return call.opcode == vst2::audioMasterSizeWindow ? std::optional<std::intptr_t>(0) : std::nullopt;
    };
    effect.behaviour().answer = before;
    EditorWindow window("title");
    window.open(effect);
    EXPECT_EQ(plugin->calls().back().answer, 0);
    window.close();
    EXPECT_TRUE(effect.behaviour().answer) << "is put back";
}

TEST_F(AnEditorWindow, ComesToRestWhenTheEditorHasDrawn) {
    host::Plugin& effect = load("window_effect");
    effect.setParameter(0, 1.0f);
    EditorWindow window("title");
    window.open(effect);
    const auto picture = window.settledPicture(60000);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->rgb[0], 255) << "drawn with the third turn only";
    EXPECT_EQ(picture->rgb[1], 0);
}

TEST_F(AnEditorWindow, IsPicturedAsItIsIfTheEditorNeverRests) {
    EditorWindow window("title");
    window.open(load("window_effect_restless"));
    EXPECT_TRUE(window.settledPicture(300));
}

TEST_F(AnEditorWindow, OpensAndClosesAgainAndAgain) {
    host::Plugin& effect = load("window_effect");
    EditorWindow window("title");
    for (int i = 0; i < 3; ++i) {
        window.open(effect);
        window.close();
        window.close();
    }
    EXPECT_EQ(story(), "open close open close open close ");
    window.open(effect);
    window.open(effect);
    EXPECT_EQ(story(), "open close open close open close open close open ")
        << "the second in place of the first";
}

TEST_F(AnEditorWindow, ClosesItsEditorAtTheEnd) {
    host::Plugin& effect = load("window_effect");
    {
        EditorWindow window("title");
        window.open(effect);
    }
    EXPECT_EQ(story(), "open close ");
}

TEST_F(AnEditorWindow, SaysThatThereIsNoEditor) {
    host::Plugin& effect = load("window_effect_without");
    EXPECT_FALSE(host::editorSize(effect));
    EditorWindow window("title");
    try {
        window.open(effect);
        FAIL();
    } catch (const host::HostError& error) {
        EXPECT_STREQ(error.what(), "the plug-in has no editor");
    }
    EXPECT_FALSE(window.isOpen());
}

TEST_F(AnEditorWindow, SaysThatTheEditorDoesNotOpen) {
    host::Plugin& effect = load("window_effect_refusing");
    EditorWindow window("title");
    EXPECT_THROW(window.open(effect), host::HostError);
    EXPECT_FALSE(window.isOpen());
    window.serve(0);
    EXPECT_EQ(story(), "open close ") << "an editor that has failed half way is closed too";
}

/// Stands between the host and the effect and counts the turns that the editor gets.
struct CountedTurns {
    explicit CountedTurns(vst2::AEffect* effect) {
        behind = effect->dispatcher;
        count = 0;
        effect->dispatcher = [](vst2::AEffect* called, std::int32_t opcode, std::int32_t index,
                                std::intptr_t value, void* ptr, float opt) {
            count += opcode == vst2::effEditIdle;
            return behind(called, opcode, index, value, ptr, opt);
        };
    }
    static inline decltype(vst2::AEffect::dispatcher) behind = nullptr;
    static inline int count = 0;
};

TEST_F(AnEditorWindow, GivesNoMoreTurnsForAPictureOnceThePersonHasClosedIt) {
    host::Plugin& effect = load("window_effect_restless");
    EditorWindow window("title");
    window.open(effect);
    const CountedTurns turns(effect.effect());
    askToClose(screen, screen.waitForWindow());
    ASSERT_TRUE(test::waitUntil([&] {
        window.serve(20);
        return window.isClosed();
    }));
    const int before = turns.count;
    EXPECT_FALSE(window.settledPicture(60000));
    EXPECT_EQ(turns.count, before);
}

TEST(AnEditorWindowWithoutADisplay, IsNotMade) {
    unsetenv("DISPLAY");
    EXPECT_THROW(EditorWindow("title"), host::HostError);
}

} // namespace
