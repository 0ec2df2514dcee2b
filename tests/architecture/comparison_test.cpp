// A small house whose page is true, and every way in which the two can part.

#include "comparison.h"

#include <gtest/gtest.h>
#include <sstream>

namespace {

using namespace architecture;
using Sentences = std::vector<std::string>;

const std::string kPage = R"(
| Not a room | What |
| --- | --- |
| `vstgui` | the toolkit |

| Room | Holds | May include |
| --- | --- | --- |
| `base/` | | nothing |
| `dsp/` | | `base/` |
| `window/` | | `dsp/`, `base/`, VSTGUI |
| `clock/` (timing) | | nothing |

| Program | Room | Links besides |
| --- | --- | --- |
| `quillon-show` | `window/` | `base/` |

| Helper | Holds | Links |
| --- | --- | --- |
| `screen` | | `base/` |
| `wine` (Windows) | | |

| Folder of tests | Holds |
| --- | --- |
| `tests/whole/` | |
)";

const std::string kGraph = R"(target vstgui STATIC_LIBRARY .
target base STATIC_LIBRARY base
target dsp STATIC_LIBRARY dsp
links base m
passes base
target dsp_kernels OBJECT_LIBRARY dsp
target window STATIC_LIBRARY window
links dsp vstgui
passes dsp
target quillon-show EXECUTABLE window
links window base
target screen STATIC_LIBRARY tests/whole
links base
target base_test EXECUTABLE tests/base/linux
links screen window
target loaded MODULE_LIBRARY tests/whole
)";

std::string replaced(std::string text, const std::string& old, const std::string& now) {
    const std::size_t place = text.find(old);
    EXPECT_NE(place, std::string::npos) << old;
    return text.replace(place, old.size(), now);
}

Sentences differencesOf(const std::string& page, const std::string& graph) {
    std::istringstream lines(graph);
    return differences(readPage(page), readGraph(lines));
}

Sentences withPage(const std::string& old, const std::string& now) {
    return differencesOf(replaced(kPage, old, now), kGraph);
}

Sentences withGraph(const std::string& old, const std::string& now) {
    return differencesOf(kPage, replaced(kGraph, old, now));
}

TEST(Comparison, FindsNothingWherePageAndBuildAgree) {
    EXPECT_EQ(differencesOf(kPage, kGraph), Sentences());
}

TEST(Comparison, FindsTwoRoomsInOneFolder) {
    EXPECT_EQ(withGraph("target dsp_kernels OBJECT_LIBRARY", "target dsp_kernels STATIC_LIBRARY"),
              Sentences{"dsp_kernels is a second room in `dsp/`, the folder of dsp"});
}

TEST(Comparison, FindsAnArrowThatRunsUp) {
    EXPECT_EQ(withPage("| `base/` | | nothing |", "| `base/` | | `dsp/` |"),
              (Sentences{"`base/` does not link `dsp/`, which its row names",
                         "`base/` names `dsp/`, which does not stand above it in the table"}));
    EXPECT_EQ(differencesOf(replaced(kPage, "| `base/` | | nothing |", "| `base/` | | `clock/` |"),
                            replaced(kGraph, "target base STATIC_LIBRARY base\n",
                                     "target base STATIC_LIBRARY base\nlinks clock\n") +
                                "target clock STATIC_LIBRARY clock\n")
                  .front(),
              "`base/` names `clock/`, which does not stand above it in the table");
}

TEST(Comparison, FindsARowWithoutATarget) {
    EXPECT_EQ(withPage("| `clock/` (timing) |", "| `clock/` |"),
              Sentences{"the row of `clock/` in the table of rooms has no target"});
    EXPECT_EQ(withPage("| `wine` (Windows) |", "| `wine` |"),
              Sentences{"the row of `wine` in the table of the tests' helpers has no target"});
    EXPECT_EQ(withPage("| `vstgui` | the toolkit |", "| `vstgui` | the toolkit |\n| `sndfile` | sound |"),
              Sentences{"the row of `sndfile` in the table of what is no room has no target"});
}

TEST(Comparison, FindsATargetWithoutARow) {
    EXPECT_EQ(withGraph("target dsp_kernels OBJECT_LIBRARY dsp", "target new STATIC_LIBRARY new"),
              Sentences{"new in `new/` has no row in the table of rooms"});
    EXPECT_EQ(withGraph("target dsp_kernels OBJECT_LIBRARY dsp", "target new EXECUTABLE dsp"),
              Sentences{"new has no row in the table of programs"});
    EXPECT_EQ(withGraph("target loaded MODULE_LIBRARY", "target new STATIC_LIBRARY"),
              Sentences{"new has no row in the table of the tests' helpers"});
    EXPECT_EQ(withGraph("target dsp_kernels OBJECT_LIBRARY dsp", "target new INTERFACE_LIBRARY ."),
              Sentences{"new is no room and has no row in the table of what is no room"});
    EXPECT_EQ(withGraph("target dsp_kernels OBJECT_LIBRARY dsp", "target new OBJECT_LIBRARY new"),
              Sentences{"new in `new/` is part of no room"});
}

TEST(Comparison, FindsALinkThatTheRowDoesNotNameAndTheOtherWayRound) {
    EXPECT_EQ(withPage("`dsp/`, `base/`, VSTGUI", "`dsp/`, VSTGUI"),
              Sentences{"`window/` links `base/`, which its row does not name"});
    EXPECT_EQ(withGraph("links dsp vstgui\npasses dsp", "links base vstgui\npasses base"),
              Sentences{"`window/` does not link `dsp/`, which its row names"});
    EXPECT_EQ(withGraph("links window base", "links window base dsp"),
              Sentences{"quillon-show links `dsp/`, which its row does not name"});
    EXPECT_EQ(withGraph("target screen STATIC_LIBRARY tests/whole\nlinks base",
                        "target screen STATIC_LIBRARY tests/whole"),
              Sentences{"screen does not link `base/`, which its row names"});
    EXPECT_EQ(withGraph("target dsp_kernels OBJECT_LIBRARY dsp",
                        "target dsp_kernels OBJECT_LIBRARY dsp\nlinks window"),
              Sentences{"dsp_kernels links `window/`, which its room `dsp/` does not see"});
}

TEST(Comparison, FindsAToolkitThatTheRowDoesNotNameAndTheOtherWayRound) {
    EXPECT_EQ(withGraph("links dsp vstgui", "links dsp"),
              Sentences{"`window/` does not see VSTGUI, and its row says otherwise"});
    EXPECT_EQ(withPage("`dsp/`, `base/`, VSTGUI", "`dsp/`, `base/`"),
              Sentences{"`window/` sees VSTGUI, and its row says otherwise"});
}

TEST(Comparison, FindsAnOrderThatIsNotTheBuilds) {
    EXPECT_EQ(differencesOf(kPage, replaced(replaced(kGraph, "target base STATIC_LIBRARY base\n", ""),
                                            "target window STATIC_LIBRARY window",
                                            "target base STATIC_LIBRARY base\n"
                                            "target window STATIC_LIBRARY window")),
              Sentences{"the table has `base/` where add_subdirectory has `dsp/`"});
}

TEST(Comparison, FindsAProgramThatLiesElsewhere) {
    EXPECT_EQ(withGraph("quillon-show EXECUTABLE window", "quillon-show EXECUTABLE dsp"),
              Sentences{"quillon-show lies in `dsp/`, not in `window/`"});
    EXPECT_EQ(withGraph("links window base", "links base"),
              Sentences{"quillon-show does not link its room `window/`"});
}

TEST(Comparison, FindsATestInAFolderOfNoRoom) {
    EXPECT_EQ(withGraph("tests/base/linux", "tests/clocks"),
              Sentences{"base_test lies in `tests/clocks/`, which is the folder of no room's tests"});
}

} // namespace
