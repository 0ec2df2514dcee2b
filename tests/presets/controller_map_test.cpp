// The map of MIDI controllers as text and as a file.
#include "parameters/host_panel.h"
#include "tools/bank/bank_program.h"
#include "tools/bank/controller_map.h"

#include "support/scratch_folder.h"

#include <algorithm>
#include <gtest/gtest.h>

using namespace bank;
using namespace parameters;

namespace {

ControllerMap mapWith(std::initializer_list<std::pair<std::int32_t, std::int32_t>> bindings) {
    ControllerMap map;
    map.fill(kUnbound);
    for (const auto& [id, controller] : bindings)
        map.at(static_cast<std::size_t>(id)) = controller;
    return map;
}

std::string refusal(const std::string& text) {
    try {
        parseControllerMap(text, "mine.txt");
    } catch (const BankError& error) {
        return error.what();
    }
    return {};
}

} // namespace

TEST(ControllerMap, HasOneControlALine) {
    EXPECT_EQ(mapWith({{kPreLowPass, 74}, {kDryWet, 1}}),
              parseControllerMap("cc 74 = High cut\ncc 1 = Mix\n", "mine.txt"));
    EXPECT_EQ(mapWith({}), parseControllerMap("", "mine.txt"));
}

TEST(ControllerMap, KnowsEveryControlByBothNamesInAnyCase) {
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id) {
        const std::string hostName = parameter(id).name;
        for (const std::string& name : {std::string(panelEntry(id).name), hostName, hostName.substr(0, 8)}) {
            std::string shouted = name;
            for (char& letter : shouted)
                letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
            EXPECT_EQ(mapWith({{id, 20}}), parseControllerMap("cc 20 = " + name, "mine.txt")) << name;
            EXPECT_EQ(mapWith({{id, 20}}), parseControllerMap("CC20=" + shouted, "mine.txt")) << shouted;
        }
    }
}

TEST(ControllerMap, PassesOverCommentsBlankLinesAndMarksOfOtherSystems) {
    EXPECT_EQ(mapWith({{kTaps, 3}, {kFeedback, 0}}),
              parseControllerMap(
                  "\xEF\xBB\xBF# mine\r\n\r\n  cc 3 = Taps # # how many\r\n\tcc 0=Feedback # back", "m"));
    EXPECT_EQ(mapWith({{kTaps, 3}}), parseControllerMap("cc 3 = Taps #", "m"));
    EXPECT_EQ(mapWith({{kDryWet, 3}}), parseControllerMap("cc 3 = Mix #1 of 2", "m"));
}

TEST(ControllerMap, NamesTheLineOfAMistake) {
    EXPECT_EQ("mine.txt, line 2: there is no control \"High cot\"; did you mean \"High cut\"?",
              refusal("# x\ncc 74 = High cot\n"));
    EXPECT_EQ("mine.txt, line 1: there is no control \"Volume\"; quillon-render --list shows them",
              refusal("cc 7 = Volume"));
    EXPECT_EQ("mine.txt, line 1: there is no control \"\"; quillon-render --list shows them",
              refusal("cc 7 ="));
    for (const char* number : {"128", "-1", "1000", "x", "1.5", ""})
        EXPECT_EQ("mine.txt, line 1: there is no controller \"" + std::string(number) +
                      "\"; they are numbered 0 to 127",
                  refusal("cc " + std::string(number) + " = Mix"));
    EXPECT_EQ("mine.txt, line 3: Mix has a controller already, in line 1",
              refusal("cc 1 = Mix\ncc 2 = Feedback\ncc 3 = Dry Wet\n"));
    for (const char* line : {"74 = High cut", "High cut = cc 74", "cc 74 High cut", "x"})
        EXPECT_EQ("mine.txt, line 1: \"" + std::string(line) +
                      "\" is no binding; write it as cc 74 = High cut",
                  refusal(line));
}

TEST(ControllerMap, MayMoveSeveralControlsWithOneControllerAndTellsSo) {
    const ControllerMap map = parseControllerMap("cc 1 = Mix\ncc 1 = Feedback\ncc 2 = Stereo\n", "m");
    EXPECT_EQ(mapWith({{kDryWet, 1}, {kFeedback, 1}, {kStereo, 2}}), map);
    EXPECT_EQ("cc 1 moves Feedback and Mix together\n", sharedControllersText(map));
    EXPECT_EQ("", sharedControllersText(mapWith({{kDryWet, 1}})));
}

TEST(ControllerMap, IsAFileOfOneWordForEachPlaceLowestByteFirst) {
    const auto bytes = controllerMapBytes(mapWith({{kTaps, 74}}));
    ASSERT_EQ(84u, bytes.size());
    const std::vector<std::uint8_t> front(bytes.begin(), bytes.begin() + 12);
    EXPECT_EQ((std::vector<std::uint8_t>{0xFF, 0xFF, 0xFF, 0xFF, 74, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF}),
              front);
    EXPECT_EQ(std::vector<std::uint8_t>(12, 0xFF), std::vector<std::uint8_t>(bytes.end() - 12, bytes.end()))
        << "the places without a control are bound to nothing";
}

TEST(ControllerMap, GoesToTheFileAndToTextAndBack) {
    ControllerMap map = mapWith({});
    for (std::int32_t id = 0; id < kNumLiveParameters; id += 2)
        map[static_cast<std::size_t>(id)] = (id * 37) % 128;
    EXPECT_EQ(map, controllerMapFrom(controllerMapBytes(map)));
    EXPECT_EQ(map, parseControllerMap(controllerMapText(map), "m"));
    EXPECT_EQ(mapWith({}), parseControllerMap(controllerMapText(mapWith({})), "m"));
}

TEST(ControllerMap, OfAFileOfAnotherLengthIsWhatThePluginMakesOfIt) {
    auto bytes = controllerMapBytes(mapWith({{kTaps, 0x0102034A}, {kDryWet, 5}}));
    bytes.resize(5);
    const ControllerMap map = controllerMapFrom(bytes);
    EXPECT_EQ(kUnbound, map[kBaseLength]);
    EXPECT_EQ(0x4A, map[kTaps]);
    EXPECT_EQ(0, map[kDryWet]);
    auto longer = controllerMapBytes(mapWith({{kDryWet, 5}}));
    longer.resize(500, 9);
    EXPECT_EQ(mapWith({{kDryWet, 5}}), controllerMapFrom(longer));
}

TEST(ControllerMap, ShowsEntriesThatNoControllerHasInComments) {
    const ControllerMap map = mapWith({{kDryWet, 1000}, {kFeedback, -7}, {18, 5}, {kStereo, 10}});
    const std::string text = controllerMapText(map);
    EXPECT_NE(std::string::npos, text.find("cc 10 = Stereo\n")) << text;
    EXPECT_NE(std::string::npos, text.find("# Mix: 1000, which is no controller\n")) << text;
    EXPECT_NE(std::string::npos, text.find("# Feedback: -7, which is no controller\n")) << text;
    EXPECT_NE(std::string::npos, text.find("# place 18, which has no control: 5\n")) << text;
    EXPECT_EQ(mapWith({{kStereo, 10}}), parseControllerMap(text, "m"));
}

TEST(PluginFolders, AreThoseWithAModuleOfTheName) {
    const ScratchFolder folder;
    namespace files = std::filesystem;
    for (const char* name : {"vst/QuillonMultitapDelay", "vst/Other", "clap/a/b/c", "lv2"})
        files::create_directories(folder.path() / name);
    folder.writeText("vst/QuillonMultitapDelay/QuillonMultitapDelay.so", "");
    folder.writeText("vst/Other/Other.so", "");
    folder.writeText("clap/QuillonMultitapDelay.clap", "");
    folder.writeText("clap/a/b/c/QuillonMultitapDelay.clap", "");
    EXPECT_EQ((std::vector<files::path>{folder.path() / "vst/QuillonMultitapDelay", folder.path() / "clap"}),
              pluginFolders({folder.path() / "vst", folder.path() / "clap", folder.path() / "vst",
                             folder.path() / "nowhere"}));
}

TEST(PluginFolders, OfAPersonComeFirst) {
    const auto folders = hostFolders({"/home/me", "/opt/quillon/bin", "", ""});
    EXPECT_EQ("/home/me/.vst", folders.front());
    EXPECT_EQ(1, std::ranges::count(folders, "/opt/quillon/lib/clap"));
    EXPECT_EQ(folders.size(), hostFolders({"", "/opt/quillon/bin", "", ""}).size() + 2);
    EXPECT_EQ(1, std::ranges::count(hostFolders({"", "", "/c/common", "/c/programs"}), "/c/common/CLAP"));
}
