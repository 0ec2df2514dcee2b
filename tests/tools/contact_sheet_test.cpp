// The page for listening: what stands in it, what lies around it, and what a browser makes of it.

#include "support/tool_run.h"
#include "tools/render/contact_sheet.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string_view>

namespace {

namespace files = std::filesystem;
using namespace tools::render;

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string_view::npos; at += part.size())
        ++count;
    return count;
}

/// A page of one program of this name.
std::string pageOf(const std::string& name, const BulkOutcome& outcome) {
    const files::path folder = "/sheet";
    const BulkJob job = {"/in/a & b.wav", folder / "sounds" / "a & b #1 100%.wav",
                         folder / "pictures" / "x.png", ProgramName{7, name}};
    return contactSheetText({folder, job.input, folder / "dry.wav", "Effect", {job}, {outcome}});
}

BulkOutcome rendered(const std::string& report) {
    return {BulkOutcome::State::rendered, "", report};
}

TEST(ContactSheet, EscapesEveryName) {
    const std::string page = pageOf("<b>\"Tom & Jerry's\"</b>", rendered("{}"));
    EXPECT_NE(page.find("</span> &lt;b&gt;&quot;Tom &amp; Jerry&#39;s&quot;&lt;/b&gt;</h2>"),
              std::string::npos);
    EXPECT_NE(page.find("data-name=\"&lt;b&gt;&quot;Tom"), std::string::npos);
    EXPECT_NE(page.find("<h1>a &amp; b.wav</h1>"), std::string::npos);
    EXPECT_NE(page.find("src=\"sounds/a%20%26%20b%20%231%20100%25.wav\""), std::string::npos);
    EXPECT_EQ(page.find("<b>"), std::string::npos);
    EXPECT_NE(pageOf("Caf\xE9", rendered("{}")).find("Caf\u00E9"), std::string::npos);
}

TEST(ContactSheet, ShowsTheFiguresOfTheReport) {
    const std::string page =
        pageOf("Ping", rendered(R"({"frames":2884140,"inputFrames":44100,"sampleRate":44100,
        "peakDbfs":-3.26,"loudness":{"integratedLufs":-18.0},"inputLoudness":{"integratedLufs":-20.14}})"));
    EXPECT_NE(page.find("+2.1 LU \u00B7 peak \u22123.3 dBFS \u00B7 1:05.4"), std::string::npos) << page;
    EXPECT_NE(page.find("\u221220.1 LUFS \u00B7 0:01.0"), std::string::npos);
    EXPECT_NE(page.find("data-loudness=\"2.14\""), std::string::npos);
    EXPECT_NE(page.find("data-length=\"65.40\""), std::string::npos);
}

TEST(ContactSheet, LeavesOutFiguresThatAreMissing) {
    const std::string page = pageOf("Ping", rendered(R"({"frames":null,"sampleRate":0,"peakDbfs":null})"));
    EXPECT_NE(page.find("<p class=\"figures\"></p>"), std::string::npos);
    EXPECT_EQ(page.find(" LU"), std::string::npos);
}

TEST(ContactSheet, TellsWhyAProgramIsMissing) {
    const std::string page = pageOf("Ping", {BulkOutcome::State::failed, "crash of <effect>", ""});
    EXPECT_NE(page.find("not rendered: crash of &lt;effect&gt;"), std::string::npos);
    EXPECT_EQ(countOf(page, "<audio"), 1u);
    EXPECT_EQ(countOf(page, "<img"), 0u);
}

TEST(ContactSheet, ListsProgramsByNumber) {
    const files::path folder = "/sheet";
    const auto job = [&](int number, const char* name) {
        return BulkJob{"/in/a.wav", folder / "sounds" / name, folder / "pictures" / name,
                       ProgramName{number, name}};
    };
    const std::string page = contactSheetText({folder,
                                               "/in/a.wav",
                                               folder / "dry.wav",
                                               "Effect",
                                               {job(34, "Dawn"), job(1, "Ball")},
                                               {rendered("{}"), {BulkOutcome::State::failed, "crash", ""}}});
    EXPECT_LT(page.find("</span> Ball</h2>"), page.find("</span> Dawn</h2>"));
    EXPECT_LT(page.find("not rendered: crash"), page.find("</span> Dawn</h2>"));
}

TEST(ContactSheet, LeavesNoPlaceOpenAndRefersToNothingOutside) {
    const std::string page = pageOf("Ping", rendered("{}"));
    EXPECT_EQ(page.find("{{"), std::string::npos);
    EXPECT_EQ(page.find("http"), std::string::npos);
    EXPECT_EQ(page.find("src=\"/"), std::string::npos);
}

/// Two programs, rendered in a moment.
class RenderedSheet : public testing::Test {
  protected:
    RenderedSheet() {
        folder.writeSound("voice #1.wav", noise(4000));
        result = render({});
    }
    ToolResult render(std::vector<std::string> more) const {
        std::vector<std::string> words = {"voice #1.wav", "--contact-sheet", "listen",
                                          "--programs",   "3,Slow Dawn",     "--tail",
                                          "0.2",          "--pre-roll",      "0"};
        words.insert(words.end(), more.begin(), more.end());
        return runTool(folder, words);
    }
    std::string text(const std::string& name) const {
        const auto bytes = readFile(folder.file(name));
        return {bytes.begin(), bytes.end()};
    }
    ScratchFolder folder;
    ToolResult result;
};

TEST_F(RenderedSheet, HasAPageASoundAndAPictureForEachProgram) {
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_NE(result.out.find("index.html in a browser"), std::string::npos) << result.out;
    for (const char* name :
         {"index.html", "dry.wav", "sounds/voice #1 - 003 Marbles on Tile.wav",
          "sounds/voice #1 - 034 Slow Dawn.wav", "pictures/voice #1 - 003 Marbles on Tile.png",
          "pictures/voice #1 - 034 Slow Dawn.png"})
        EXPECT_TRUE(files::exists(folder.path() / "listen" / name)) << name;
    const std::string page = text("listen/index.html");
    EXPECT_EQ(countOf(page, "<li "), 2u);
    EXPECT_NE(page.find("src=\"sounds/voice%20%231%20-%20034%20Slow%20Dawn.wav\""), std::string::npos);
    EXPECT_EQ(readSound(folder.file("listen/dry.wav")).frames(), 4000u);
}

TEST_F(RenderedSheet, GoesOnWhereItStopped) {
    files::remove(folder.path() / "listen/pictures/voice #1 - 034 Slow Dawn.png");
    const std::string page = text("listen/index.html");
    const ToolResult again = render({});
    EXPECT_EQ(again.exitCode, 0) << again.err;
    EXPECT_NE(again.out.find("1 rendered, 1 already there"), std::string::npos) << again.out;
    EXPECT_EQ(text("listen/index.html"), page);
}

TEST_F(RenderedSheet, LeavesAPageThatIsNotItsOwn) {
    files::remove_all(folder.path() / "listen");
    files::create_directory(folder.path() / "listen");
    folder.writeText("listen/index.html", "mine");
    const ToolResult refused = render({});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("index.html is there already and is not from this tool"), std::string::npos);
    EXPECT_EQ(text("listen/index.html"), "mine");
    EXPECT_EQ(render({"--again"}).exitCode, 0);
}

TEST_F(RenderedSheet, RefusesTypesThatBrowsersDoNotPlay) {
    const ToolResult refused = render({"--type", "aiff"});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_NE(refused.err.find("--type aiff: browsers do not play such files"), std::string::npos);
}

} // namespace
