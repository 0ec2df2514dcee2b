// The finished tool in processes of its own, with the built plug-in and with effects made for the purpose.

#include <gtest/gtest.h>

#include "support/scratch_folder.h"
#include "support/tool_run.h"

#include <algorithm>
#include <cairo.h>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>

// Xlib defines words that the headers above use, so it comes last.
#include "child_process.h"
#include "support/close_window.h"
#include "virtual_screen.h"

namespace {

namespace files = std::filesystem;

struct Drawing {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels; ///< 0xRRGGBB

    std::uint32_t at(int x, int y) const { return pixels.at(static_cast<std::size_t>(y * width + x)); }
    bool operator==(const Drawing&) const = default;
};

/// Nothing if there is no such picture.
std::optional<Drawing> readPng(const std::string& path) {
    cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
    std::optional<Drawing> drawing;
    if (cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS) {
        drawing =
            Drawing{cairo_image_surface_get_width(surface), cairo_image_surface_get_height(surface), {}};
        const unsigned char* row = cairo_image_surface_get_data(surface);
        for (int y = 0; y < drawing->height; ++y, row += cairo_image_surface_get_stride(surface))
            for (int x = 0; x < drawing->width; ++x) {
                const auto* pixel = reinterpret_cast<const std::uint32_t*>(row) + x;
                drawing->pixels.push_back(*pixel & 0xFFFFFF);
            }
    }
    cairo_surface_destroy(surface);
    return drawing;
}

void paintPng(const std::string& path, int width, int height, std::uint32_t colour) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cairo = cairo_create(surface);
    cairo_set_source_rgb(cairo, (colour >> 16 & 255) / 255.0, (colour >> 8 & 255) / 255.0,
                         (colour & 255) / 255.0);
    cairo_paint(cairo);
    cairo_destroy(cairo);
    ASSERT_EQ(cairo_surface_write_to_png(surface, path.c_str()), CAIRO_STATUS_SUCCESS);
    cairo_surface_destroy(surface);
}

constexpr char windowEffect[] = EFFECTS "/window_effect.so";
constexpr std::uint32_t blue = 0x2040C0, green = 0x20A040, brown = 0x805020;

/// A delivery of the plug-in: the library with its bank and two plain skins, one blue, one green; and a
/// third, brown skin somewhere else.
class WindowTool : public testing::Test {
  protected:
    WindowTool() {
        files::create_directories(folder.path() / "plugin");
        files::create_directories(folder.path() / "tmp");
        files::create_directories(folder.path() / "settings");
        files::copy_file(QUILLON_LIBRARY, library);
        files::copy_file(QUILLON_SOURCE "/skins/default.fxb", folder.file("plugin/default.fxb"));
        makeSkin("plugin/Quillon Skin", blue);
        makeSkin("plugin/Leaves", green);
        makeSkin("elsewhere/Earth", brown);
    }

    void makeSkin(const std::string& name, std::uint32_t colour, const std::string& objects = {}) {
        files::create_directories(folder.path() / name);
        paintPng(folder.file(name + "/bg.png"), 120, 80, colour);
        writeSkin(name, objects);
    }
    void writeSkin(const std::string& name, const std::string& objects) {
        folder.writeText(name + "/skin.xml",
                         "<GUI>\n<background filename=\"bg.png\"/>\n" + objects + "</GUI>\n");
    }

    /// As a person calls it who has the settings in "settings" and temporary files in "tmp".
    std::vector<std::string> words(const std::vector<std::string>& arguments,
                                   const std::string& display = {}) const {
        std::vector<std::string> all = {"XDG_CONFIG_HOME=" + folder.file("settings"),
                                        "TMPDIR=" + folder.file("tmp")};
        if (!display.empty())
            all.push_back("DISPLAY=" + display);
        if (!path.empty())
            all.push_back("PATH=" + path);
        all.push_back(QUILLON_WINDOW);
        const auto has = [&](const char* option) { return std::ranges::count(arguments, option) > 0; };
        if (!has("--library") && !has("--new-skin"))
            all.insert(all.end(), {"--library", library});
        all.insert(all.end(), arguments.begin(), arguments.end());
        return all;
    }
    ToolResult run(const std::vector<std::string>& arguments, const std::string& display = {}) const {
        return runTool(folder, words(arguments, display), ErrorEnd::file, "/usr/bin/env");
    }
    std::unique_ptr<RunningTool> start(const std::vector<std::string>& arguments,
                                       const std::string& display) const {
        return std::make_unique<RunningTool>(folder, words(arguments, display), ErrorEnd::file,
                                             "/usr/bin/env");
    }

    /// The picture that a run makes; it has to end well.
    Drawing picture(std::vector<std::string> arguments) const {
        arguments.insert(arguments.end(), {"--screenshot", "picture.png"});
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.out, "");
        const auto drawing = readPng(folder.file("picture.png"));
        EXPECT_TRUE(drawing);
        return drawing.value_or(Drawing());
    }
    /// One line, and nothing done.
    void expectFailure(const std::vector<std::string>& arguments, const std::string& line) const {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.err, "quillon-window: " + line + "\n");
        EXPECT_EQ(result.out, "");
        expectNothingIsLeft();
    }
    void expectNothingIsLeft() const { EXPECT_TRUE(files::is_empty(folder.path() / "tmp")); }

    void choose(const std::string& skin) const {
        files::create_directories(settingsFile().parent_path());
        std::ofstream(settingsFile()) << "SkinName=" << skin << "\n";
    }
    files::path settingsFile() const {
        return folder.path() / "settings/Quillon Software/Quillon Multitap Delay.conf";
    }

    ScratchFolder folder;
    const std::string library = folder.file("plugin/QuillonMultitapDelay.so");
    std::string path; ///< in place of the one that there is
};

// Pictures

TEST_F(WindowTool, MakesAPictureOnAMachineWithoutAScreen) {
    const Drawing drawing = picture({});
    EXPECT_EQ(drawing.width, 120);
    EXPECT_EQ(drawing.height, 80);
    for (const auto& [x, y] : {std::pair(0, 0), {119, 0}, {0, 79}, {119, 79}, {60, 40}})
        EXPECT_EQ(drawing.at(x, y), blue) << x << " " << y;
    expectNothingIsLeft();
}

TEST_F(WindowTool, MakesTheSamePictureEachTime) {
    writeSkin("plugin/Leaves", "<ViewTaps x=\"0\" y=\"0\" w=\"120\" h=\"80\"/>");
    EXPECT_EQ(picture({"--skin", "Leaves"}), picture({"--skin", "Leaves"}));
}

TEST_F(WindowTool, ShowsTheProgramAndTheSettings) {
    writeSkin("plugin/Leaves", "<ViewTaps x=\"0\" y=\"0\" w=\"120\" h=\"80\"/>");
    const Drawing first = picture({"--skin", "Leaves"}),
                  second = picture({"--skin", "Leaves", "--program", "12"});
    EXPECT_NE(first, second);
    EXPECT_NE(second, picture({"--skin", "Leaves", "--program", "12", "--set", "Taps #=display:3"}));
    EXPECT_EQ(picture({"--library", windowEffect, "--set", "Redness=1"}).at(30, 20), 0xFF0000u);
    EXPECT_EQ(picture({"--library", windowEffect, "--set", "redness=0.2"}).at(30, 20), 0x330000u);
}

TEST_F(WindowTool, PutsAPictureInThePlaceOfAnOlderOne) {
    folder.writeText("picture.png", "old");
    EXPECT_EQ(picture({}).at(0, 0), blue);
    EXPECT_EQ(folder.names(),
              (std::vector<std::string>{"elsewhere", "picture.png", "plugin", "settings", "tmp"}));
}

TEST_F(WindowTool, MakesItsPictureAwayFromThePersonsScreen) {
    test::VirtualScreen screen;
    const Window desktop = XCreateSimpleWindow(screen.display(), screen.root(), 0, 0, 1000, 800, 0, 0, 0);
    XMapRaised(screen.display(), desktop);
    XSync(screen.display(), False);
    const ToolResult result = run({"--screenshot", "picture.png"}, screen.name());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(readPng(folder.file("picture.png"))->at(0, 0), blue);
}

TEST_F(WindowTool, UsesTheScreenThatThereIsIfItCannotMakeOne) {
    test::VirtualScreen screen;
    path = "/nowhere";
    const ToolResult result = run({"--screenshot", "picture.png"}, screen.name());
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(readPng(folder.file("picture.png"))->at(0, 0), blue);
}

TEST_F(WindowTool, SaysWhatIsMissingForAPicture) {
    path = "/nowhere";
    expectFailure({"--screenshot", "picture.png"},
                  "there is no display, and no Xvfb to make one: install xvfb");
    EXPECT_FALSE(files::exists(folder.file("picture.png")));
}

TEST_F(WindowTool, TellsTheMessagesOfTheSkinAndMakesThePictureAllTheSame) {
    writeSkin("plugin/Leaves", "<knob x=\"1\"/>\n<onoff/>\n");
    const ToolResult result = run({"--skin", "Leaves", "--screenshot", "picture.png"});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "Skin Error: Missing tag y for object knob\n"
                          "Skin Error: Missing tag x for object onoff\n");
    EXPECT_EQ(readPng(folder.file("picture.png"))->at(0, 0), green);
}

// Skins

TEST_F(WindowTool, FindsASkinByNameInAnyLetterCase) {
    EXPECT_EQ(picture({"--skin", "Leaves"}).at(0, 0), green);
    EXPECT_EQ(picture({"--skin", "LEAVES"}).at(0, 0), green);
}

TEST_F(WindowTool, FindsASkinInAnyFolder) {
    const std::string absolute = folder.file("elsewhere/Earth");
    for (const std::string& name :
         {absolute, absolute + "/", std::string("elsewhere/Earth"), std::string("./elsewhere/Earth/")})
        EXPECT_EQ(picture({"--skin", name}).at(0, 0), brown) << name;
}

TEST_F(WindowTool, TakesAFolderInPlaceOfADeliveredSkinOfTheSameName) {
    makeSkin("elsewhere/leaves", brown);
    EXPECT_EQ(picture({"--skin", "elsewhere/leaves"}).at(0, 0), brown);
}

TEST_F(WindowTool, ReadsASkinsFileInAnyLetterCase) {
    files::rename(folder.file("elsewhere/Earth/skin.xml"), folder.file("elsewhere/Earth/SKIN.XML"));
    EXPECT_EQ(picture({"--skin", "elsewhere/Earth"}).at(0, 0), brown);
}

TEST_F(WindowTool, OpensThePersonsOwnChoiceUnlessToldOtherwise) {
    choose("Leaves");
    EXPECT_EQ(picture({}).at(0, 0), green);
    EXPECT_EQ(picture({"--skin", "elsewhere/Earth"}).at(0, 0), brown);
    std::ifstream settings(settingsFile());
    std::string line;
    std::getline(settings, line);
    EXPECT_EQ(line, "SkinName=Leaves") << "the choice has been touched";
}

TEST_F(WindowTool, LeavesTheSettingsOfAPersonWhoHasChosenNothing) {
    picture({"--skin", "Leaves"});
    EXPECT_TRUE(files::is_empty(folder.path() / "settings"));
}

TEST_F(WindowTool, RefusesASkinThatIsNotThere) {
    expectFailure({"--skin", "Copper"},
                  "there is no skin \"Copper\", neither beside the library nor here; there are "
                  "Leaves, Quillon Skin");
    expectFailure({"--skin", "./Copper"}, folder.file("Copper") + ": there is no such folder");
    expectFailure({"--skin", "./elsewhere"}, folder.file("elsewhere") + " holds no skin.xml");
    expectFailure({"--check", "--skin", "./elsewhere"}, folder.file("elsewhere") + " holds no skin.xml");
}

TEST_F(WindowTool, SaysWhyASkinDoesNotOpen) {
    folder.writeText("elsewhere/Earth/skin.xml", "<GUI>\n<!-- soon -->\n</GUI>");
    expectFailure({"--skin", "elsewhere/Earth", "--screenshot", "picture.png"},
                  folder.file("elsewhere/Earth/skin.xml") +
                      ":2:1: comments are not understood; leave them out");
    folder.writeText("elsewhere/Earth/skin.xml",
                     "<GUI>\n<update src=\"1+" + std::string(60, 'k') + "\"/></GUI>");
    expectFailure({"--skin", "elsewhere/Earth", "--screenshot", "picture.png"},
                  folder.file("elsewhere/Earth/skin.xml") +
                      ":2:16: \"src\" of <update>: a name of 60 characters or more crashes the host");
}

// Outlines

TEST_F(WindowTool, DrawsTheEdgesOfObjectsOverThePicture) {
    writeSkin("elsewhere/Earth", "<knob id=\"6\" x=\"10\" y=\"8\" w=\"50\" h=\"24\"/>\n"
                                 "<autodisp id=\"6\" link=\"6\" x=\"10\" y=\"40\" w=\"100\" h=\"30\"/>\n");
    const Drawing plain = picture({"--skin", "elsewhere/Earth"}),
                  outlined = picture({"--skin", "elsewhere/Earth", "--outlines"});
    const std::uint32_t knob = outlined.at(59, 31), text = outlined.at(109, 69);
    EXPECT_NE(knob, plain.at(59, 31));
    EXPECT_NE(text, plain.at(109, 69));
    EXPECT_NE(knob, text) << "controls and texts have the same colour";
    for (int x = 10; x < 60; ++x)
        EXPECT_EQ(outlined.at(x, 31), knob) << x;
    for (int y = 40; y < 70; ++y)
        EXPECT_EQ(outlined.at(109, y), text) << y;
    for (int y = 0; y < plain.height; ++y)
        for (int x = 0; x < plain.width; ++x) {
            const bool isKnob = x >= 10 && x < 60 && y >= 8 && y < 32,
                       isText = x >= 10 && x < 110 && y >= 40 && y < 70;
            if (!isKnob && !isText) {
                ASSERT_EQ(outlined.at(x, y), plain.at(x, y)) << x << " " << y;
            }
        }
}

TEST_F(WindowTool, WritesTheIdIntoAnOutline) {
    const auto labelled = [&](const std::string& id) {
        writeSkin("elsewhere/Earth", "<knob id=\"" + id + "\" x=\"10\" y=\"8\" w=\"80\" h=\"40\"/>\n");
        return picture(
            {"--skin", "elsewhere/Earth", "--outlines", "--set", "Feedback=0.5", "--set", "Stereo=0.5"});
    };
    const Drawing six = labelled("6"), thirteen = labelled("13");
    EXPECT_NE(six, thirteen);
    EXPECT_EQ(six, labelled("2*3"));
}

// New skins

TEST_F(WindowTool, CreatesACompleteSkinWithoutMistakes) {
    const ToolResult made = run({"--new-skin", "Copper"});
    EXPECT_EQ(made.exitCode, 0) << made.err;
    EXPECT_EQ(made.out + made.err, "");
    const ToolResult check = run({"--check", "--skin", "./Copper"});
    EXPECT_EQ(check.exitCode, 0) << check.out;
    EXPECT_EQ(check.out, "");
    const Drawing drawing = picture({"--skin", "./Copper"});
    EXPECT_GE(drawing.width, 640);
    EXPECT_GE(drawing.height, 400);
    expectNothingIsLeft();
}

TEST_F(WindowTool, CreatesASkinThatShowsEveryParameter) {
    ASSERT_EQ(run({"--new-skin", "Copper"}).exitCode, 0);
    const Drawing before = picture({"--skin", "./Copper", "--program", "0"});
    for (int id = 0; id < 17; ++id) {
        const auto at = [&](const std::string& value) {
            return picture(
                {"--skin", "./Copper", "--program", "0", "--set", std::to_string(id) + "=" + value});
        };
        EXPECT_TRUE(at("0.1") != before || at("0.9") != before) << id;
    }
}

TEST_F(WindowTool, DoesNotChangeAnExistingFolder) {
    expectFailure({"--new-skin", "elsewhere/Earth"},
                  folder.file("elsewhere/Earth") + " already exists; choose another name");
    expectFailure({"--new-skin", "nowhere/Copper"},
                  folder.file("nowhere/Copper") + " cannot be created: No such file or directory");
    EXPECT_EQ(picture({"--skin", "elsewhere/Earth"}).at(0, 0), brown);
}

// What else can be wrong

TEST_F(WindowTool, SaysInOneLineWhatIsWrong) {
    test::VirtualScreen screen; // nobody needs it
    expectFailure({}, "there is no display to open a window on; --screenshot needs none");
    expectFailure({"--library", "gone.so"}, folder.file("gone.so") + ": there is no such library");
    expectFailure({"--program", "999", "--screenshot", "a.png"},
                  "--program \"999\": there is no program 999; they are numbered 0 to 127");
    expectFailure({"--set", "Feedbak=1", "--screenshot", "a.png"},
                  "--set \"Feedbak=1\": there is no parameter \"Feedbak\"; did you mean \"Feedback\"?");
    expectFailure({"--screenshot", "nowhere/a.png"}, folder.file("nowhere/a.png") +
                                                         " cannot be written: there is no folder " +
                                                         folder.file("nowhere"));
    expectFailure({"--library", EFFECTS "/window_effect_without.so", "--screenshot", "a.png"},
                  "the plug-in has no editor");
    expectFailure({"--library", EFFECTS "/window_effect_refusing.so", "--screenshot", "a.png"},
                  "the plug-in's editor does not open");
    expectFailure({"--skin", "elsewhere/Earth", "--watch", "--screenshot", "elsewhere/Earth/a.png"},
                  folder.file("elsewhere/Earth/a.png") + " is in the watched skin; choose another folder");
}

TEST_F(WindowTool, NamesTheLibraryThatCrashesAndTheCall) {
    const std::string probe = EFFECTS "/probe_crashes_in_open.so",
                      open = EFFECTS "/window_effect_crashing_in_open.so",
                      idle = EFFECTS "/window_effect_crashing_in_idle.so";
    for (const auto& [crashing, call] :
         {std::pair(probe, "effOpen"), std::pair(open, "effEditOpen"), std::pair(idle, "effEditIdle")}) {
        const ToolResult result = run({"--library", crashing, "--screenshot", "picture.png"});
        EXPECT_EQ(result.err,
                  "quillon-window: crash of " + crashing + " in " + call + ": segmentation fault\n");
        EXPECT_EQ(result.signal, SIGSEGV);
        EXPECT_EQ(result.out, "");
        EXPECT_FALSE(files::exists(folder.file("picture.png")));
        expectNothingIsLeft();
    }
}

TEST_F(WindowTool, ExplainsItself) {
    const ToolResult help = run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("--screenshot"), std::string::npos);
    EXPECT_EQ(help.err, "");
}

// --check

TEST_F(WindowTool, IsSilentAboutASkinInOrder) {
    const ToolResult result = run({"--check", "--skin", "Leaves"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
    expectNothingIsLeft();
}

TEST_F(WindowTool, FindsNoMistakesInTheDeliveredSkins) {
    int count = 0;
    for (const files::directory_entry& entry : files::directory_iterator(QUILLON_SOURCE "/skins")) {
        if (!files::exists(entry.path() / "skin.xml"))
            continue;
        const ToolResult result = run({"--check", "--skin", entry.path().string()});
        EXPECT_EQ(result.exitCode, 0) << entry.path();
        EXPECT_EQ(result.out + result.err, "");
        ++count;
    }
    EXPECT_EQ(count, 5);
}

TEST_F(WindowTool, ListsWhatIsWrongWithASkin) {
    writeSkin("elsewhere/Earth",
              "<knob x=\"1\" colour=\"red\"/>\n<onoff x=\"1\" y=\"1\" id=\"1\" bitmap_handle=\"a.png\"/>\n");
    const ToolResult result = run({"--check", "--skin", "elsewhere/Earth"});
    const std::string file = folder.file("elsewhere/Earth/skin.xml");
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, file + ":3:1: Skin Error: Missing tag y for object knob\n" + file +
                              ":3:13: <knob> has no tag \"colour\"\n" + file +
                              ":4:42: the picture \"a.png\" is not in the skin's folder\n");
    EXPECT_EQ(result.err, "");
    expectNothingIsLeft();
}

TEST_F(WindowTool, FindsNothingWrongWithTheSkinsThatAreDelivered) {
    for (const auto& entry : files::directory_iterator(QUILLON_SOURCE "/skins")) {
        if (!files::exists(entry.path() / "skin.xml"))
            continue;
        const ToolResult result = run({"--check", "--skin", entry.path().string()});
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.exitCode, 0) << entry.path();
    }
}

// A window that a person sees

class WindowOnAScreen : public WindowTool {
  protected:
    test::VirtualScreen screen;
};

TEST_F(WindowOnAScreen, StaysUntilThePersonClosesIt) {
    const auto tool = start({"--skin", "Leaves"}, screen.name());
    const Window window = screen.waitForWindow();
    ASSERT_NE(window, None);
    EXPECT_EQ(screen.property(window, "_NET_WM_NAME"),
              "Quillon Software Quillon Multitap Delay \u2013 Leaves");
    EXPECT_TRUE(screen.waitForPixel(100, 70, green));
    askToClose(screen, window);
    const ToolResult result = tool->wait();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    expectNothingIsLeft();
}

TEST_F(WindowOnAScreen, EndsInOrderOnControlC) {
    const auto tool = start({"--skin", "Leaves"}, screen.name());
    ASSERT_TRUE(screen.waitForPixel(100, 70, green));
    EXPECT_FALSE(files::is_empty(folder.path() / "tmp"));
    tool->send(SIGINT);
    const ToolResult result = tool->wait();
    EXPECT_EQ(result.exitCode, 130);
    EXPECT_EQ(result.err, "quillon-window: stopped\n");
    expectNothingIsLeft();
}

TEST_F(WindowOnAScreen, EndsInOrderOnControlCWhileAMessageWaits) {
    writeSkin("plugin/Leaves", "<knob/>\n");
    const auto tool = start({"--skin", "Leaves"}, screen.name());
    const auto messageStands = [&] {
        const Window window = screen.waitForWindow();
        return screen.property(window, "_NET_WM_NAME") == "Skin Error";
    };
    ASSERT_TRUE(test::waitUntil(messageStands));
    tool->send(SIGINT);
    const ToolResult result = tool->wait();
    EXPECT_EQ(result.exitCode, 130);
    EXPECT_EQ(result.err, "Skin Error: Missing tag x for object knob\nquillon-window: stopped\n");
    expectNothingIsLeft();
}

TEST_F(WindowOnAScreen, EndsWhenTheScreenGoesAway) {
    const auto tool = start({"--skin", "Leaves"}, screen.name());
    ASSERT_TRUE(screen.waitForPixel(100, 70, green));
    screen.stopServer();
    EXPECT_EQ(tool->wait().exitCode, 0);
    expectNothingIsLeft();
}

// --watch

class WatchedSkin : public WindowOnAScreen {
  protected:
    void save(const std::string& objects) { writeSkin("elsewhere/Earth", objects); }
    /// In one go, as careful programs do: on a busy machine an empty file may lie there for long.
    void saveText(const std::string& text) {
        files::rename(folder.writeText("draft", text), folder.file("elsewhere/Earth/skin.xml"));
    }
    bool colourBecomes(std::uint32_t colour) { return screen.waitForPixel(100, 70, colour); }
    std::unique_ptr<RunningTool> watch() {
        return start({"--skin", "elsewhere/Earth", "--watch"}, screen.name());
    }
    /// So that its words can be read while it runs.
    std::unique_ptr<test::ChildProcess> watchAloud() {
        const std::vector<std::string> command = {QUILLON_WINDOW, "--library",       library,
                                                  "--skin",       "elsewhere/Earth", "--watch"};
        const test::ChildProcess::Setting setting = {
            .environment = {{"DISPLAY", screen.name()}, {"TMPDIR", folder.file("tmp")}},
            .currentDirectory = folder.path()};
        return std::make_unique<test::ChildProcess>(command, setting);
    }
    static bool says(const test::ChildProcess& tool, const std::string& words) {
        return test::waitUntil([&] { return tool.standardError().find(words) != std::string::npos; });
    }
};

TEST_F(WatchedSkin, IsOpenedAnewWhenAPictureChanges) {
    const auto tool = watch();
    ASSERT_TRUE(colourBecomes(brown));
    paintPng(folder.file("elsewhere/Earth/bg.png"), 120, 80, green);
    EXPECT_TRUE(colourBecomes(green));
    tool->send(SIGINT);
    EXPECT_EQ(tool->wait().err, "no faults\nno faults\nquillon-window: stopped\n");
    expectNothingIsLeft();
}

TEST_F(WatchedSkin, IsReportedAtEachSaveAsByTheCheck) {
    const auto tool = watchAloud();
    ASSERT_TRUE(says(*tool, "no faults\n"));
    for (const char* objects :
         {"<knoob x=\"1\"/>\n", "<knob x=\"1\" y=\"1\" w=\"9\" h=\"9\" id=\"1\" transparnt=\"y\"/>\n",
          "<knob x=\"1\" y=\"1\" w=\"9\" h=\"9\" id=\"1\" bitmap_handle=\"none.png\"/>\n"}) {
        saveText("<GUI>\n<background filename=\"bg.png\"/>\n" + std::string(objects) + "</GUI>\n");
        const ToolResult check = run({"--check", "--skin", "elsewhere/Earth"});
        EXPECT_EQ(check.exitCode, 1) << objects;
        EXPECT_TRUE(says(*tool, check.out)) << check.out;
    }
    const std::string broken =
        "<GUI>\n<knoob/>\n<update src=\"" + std::string(70, 'k') + "\" dst=\"1\"/></GUI>\n";
    saveText(broken);
    EXPECT_TRUE(says(*tool, run({"--check", "--skin", "elsewhere/Earth"}).out))
        << "all, though it is not opened";
    saveText("<GUI><background filename=\"bg.png\"/></GUI>");
    EXPECT_TRUE(test::waitUntil([&] { return tool->standardError().ends_with("no faults\n"); }));
    askToClose(screen, screen.waitForWindow());
    EXPECT_EQ(tool->wait(), 0);
}

TEST_F(WatchedSkin, TakesAnotherSize) {
    const auto tool = watch();
    ASSERT_TRUE(colourBecomes(brown));
    paintPng(folder.file("elsewhere/Earth/bg.png"), 300, 200, green);
    EXPECT_TRUE(screen.waitForPixel(299, 199, green));
    tool->send(SIGTERM);
    EXPECT_EQ(tool->wait().exitCode, 130);
}

TEST_F(WatchedSkin, MayBeBrokenForAWhile) {
    const auto tool = watchAloud();
    ASSERT_TRUE(colourBecomes(brown));
    saveText("<GUI>\n<knob");
    EXPECT_TRUE(says(*tool, "skin.xml:2:6: the file ends inside the tag <knob> of line 2\n"));
    EXPECT_TRUE(colourBecomes(0x000000)) << "the editor is closed";
    saveText("<GUI><background filename=\"bg.png\"/><update src=\"" + std::string(70, 'k') + "\"/></GUI>");
    EXPECT_TRUE(says(*tool, "crashes the host\n"));
    paintPng(folder.file("elsewhere/Earth/new.png"), 120, 80, green);
    saveText("<GUI><background filename=\"new.png\"/></GUI>");
    EXPECT_TRUE(colourBecomes(green));
    askToClose(screen, screen.waitForWindow());
    EXPECT_EQ(tool->wait(), 0);
}

TEST_F(WatchedSkin, MayBeBrokenFromTheStart) {
    saveText("<GUI>");
    const auto tool = watchAloud();
    ASSERT_TRUE(says(*tool, "is not closed"));
    save("");
    EXPECT_TRUE(colourBecomes(brown));
    askToClose(screen, screen.waitForWindow());
    EXPECT_EQ(tool->wait(), 0);
}

TEST_F(WatchedSkin, KeepsWhatThePersonHasSet) {
    const std::string switches = "<onoff x=\"0\" y=\"0\" id=\"6\" bitmap_handle=\"two.png\"/>\n";
    // Two states above each other: off is the upper half of the picture.
    const std::string two = folder.file("elsewhere/Earth/two.png");
    files::copy_file(QUILLON_SOURCE "/tests/toolkit/pictures/squares.png", two);
    save(switches);
    const auto shot = [&](const char* setting) {
        return picture({"--skin", "elsewhere/Earth", "--set", setting});
    };
    const Drawing off = shot("Feedback=0"), on = shot("Feedback=1");
    ASSERT_NE(off, on);
    const auto tool = start(
        {"--skin", "elsewhere/Earth", "--watch", "--set", "Feedback=1", "--screenshot", "live.png"}, "");
    const auto shows = [&](const Drawing& drawing) {
        return test::waitUntil([&] { return readPng(folder.file("live.png")) == drawing; });
    };
    EXPECT_TRUE(shows(on));
    paintPng(folder.file("elsewhere/Earth/bg.png"), 120, 80, green);
    const Drawing later = shot("Feedback=1");
    ASSERT_NE(later, on);
    EXPECT_TRUE(shows(later)) << "the value is lost, or the window";
    tool->send(SIGINT);
    EXPECT_EQ(tool->wait().exitCode, 130);
}

} // namespace
