// The page for listening in a browser that is opened without a window.

#include "support/tool_run.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string_view>

namespace {

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string_view::npos; at += part.size())
        ++count;
    return count;
}

/// The page after its script has run and `sounds` of its sounds have been tried. The browser counts its time
/// in steps, and sounds are read in real time beside it: it gets more steps until they are there.
std::string pageInBrowser(const ScratchFolder& folder, const std::string& page, std::size_t sounds) {
    std::string text;
    for (int budget = 10000; budget < 10000000; budget *= 2) {
        const std::string command =
            "timeout 120 chromium --headless --no-sandbox --disable-gpu --user-data-dir=profile "
            "--window-size=1200,2000 --virtual-time-budget=" +
            std::to_string(budget) + " --dump-dom 'file://" + folder.file(page) + "' 2>/dev/null";
        text = runTool(folder, {"-c", command}, ErrorEnd::file, "/bin/sh").out;
        if (countOf(text, " data-sound=\"") == sounds)
            break;
    }
    return text;
}

TEST(ContactSheetInABrowser, PlaysEverySoundFromTheDisk) {
    if (std::system("command -v chromium >/dev/null") != 0)
        GTEST_SKIP() << "chromium is not installed";
    const ScratchFolder folder;
    folder.writeSound("voice.wav", noise(4000));
    const ToolResult rendered = runTool(folder, {"voice.wav", "--contact-sheet", "page's folder",
                                                 "--programs", "0-2", "--tail", "0.2", "--pre-roll", "0"});
    ASSERT_EQ(rendered.exitCode, 0) << rendered.err;
    std::filesystem::rename(folder.path() / "page's folder", folder.path() / "moved");
    const std::string page = pageInBrowser(folder, "moved/index.html", 4);
    EXPECT_EQ(countOf(page, " data-sound=\"ready\""), 4u) << page;
    EXPECT_NE(page.find(">3 programs<"), std::string::npos) << page;

    std::filesystem::remove(folder.path() / "moved/dry.wav");
    const std::string without = pageInBrowser(folder, "moved/index.html", 4);
    EXPECT_EQ(countOf(without, " data-sound=\"ready\""), 3u);
    EXPECT_EQ(countOf(without, " data-sound=\"missing\""), 1u);
}

} // namespace
