// The pages for musicians, and the guide as it is delivered: they use the names that the effect uses, and
// their links lead somewhere.
#include "guide_text.h"

#include "parameters/host_panel.h"
#include "support/scratch_folder.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <set>
#include <string>
#include <vector>

namespace {

namespace files = std::filesystem;

const files::path kSource = QUILLON_SOURCE;
const files::path kStagedGuide = files::path(QUILLON_STAGE) / "Skin Guide" / "Drawing a skin.html";

std::string textOf(const files::path& file) {
    const std::vector<std::uint8_t> bytes = readFile(file.string());
    return {bytes.begin(), bytes.end()};
}

/// What the first group of a pattern matches, wherever it does.
std::vector<std::string> allMatches(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::vector<std::string> found;
    for (auto match = std::sregex_iterator(text.begin(), text.end(), expression);
         match != std::sregex_iterator(); ++match)
        found.push_back((*match)[1]);
    return found;
}

std::vector<std::string> demoPrograms() {
    const auto lists = allMatches(textOf(kSource / "quillon"), "\nDEMO_PROGRAMS=\\(([^)]*)\\)");
    return lists.empty() ? std::vector<std::string>() : allMatches(lists[0], "\"([^\"]*)\"");
}

TEST(Readme, ShowsBothNamesOfEveryParameter) {
    const auto all = sections(textOf(kSource / "README.md"));
    const auto controls = std::ranges::find(all, "The controls", &Section::heading);
    ASSERT_NE(controls, all.end());
    ASSERT_EQ(controls->rows.size(), std::size_t{parameters::kNumLiveParameters});
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id) {
        const std::string name = parameters::parameter(id).name;
        const auto row =
            std::ranges::find(controls->rows, name, [](const Row& cells) { return code(cells.at(1)); });
        ASSERT_NE(row, controls->rows.end()) << name;
        EXPECT_EQ(row->at(0), parameters::panelEntry(id).name);
    }
}

TEST(Readme, ToursTheSoundsOfTheDemo) {
    const auto all = sections(textOf(kSource / "README.md"));
    const auto tour = std::ranges::find(all, "A five-minute tour", &Section::heading);
    ASSERT_NE(tour, all.end());
    std::vector<std::string> sounds;
    for (const Row& row : tour->rows)
        sounds.push_back(code(row.at(0)));
    std::vector<std::string> rendered;
    for (std::string name : demoPrograms()) {
        std::ranges::transform(name, name.begin(), [](char c) {
            return c == ' ' ? '-' : c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        });
        rendered.push_back(name + ".wav");
    }
    EXPECT_EQ(rendered.size(), 6u);
    EXPECT_EQ(sounds, rendered);
}

TEST(HelpPage, ShowsBothNamesOfEveryParameterAndItsNumber) {
    const std::string page = textOf(kSource / "skins" / "sources" / "help" / "page.html");
    for (std::int32_t id = 0; id < parameters::kNumLiveParameters; ++id) {
        const std::regex row("<tr><td>" + std::to_string(id) + "</td><td><a href=\"#\\w+\">" +
                             parameters::panelEntry(id).name + "</a></td><td><code>" +
                             parameters::parameter(id).name + "</code></td></tr>");
        EXPECT_TRUE(std::regex_search(page, row)) << parameters::panelEntry(id).name;
    }
}

TEST(HelpPage, ToursTheSoundsOfTheDemo) {
    const std::string page = textOf(kSource / "skins" / "sources" / "help" / "page.html");
    for (const std::string& name : demoPrograms())
        EXPECT_NE(page.find(" " + name + "</td>"), std::string::npos) << name;
}

TEST(HelpPage, LinksToPlacesThatItHas) {
    const std::string page = textOf(kSource / "skins" / "sources" / "help" / "page.html");
    const auto anchors = allMatches(page, " id=\"([^\"]+)\"");
    const std::set<std::string> known(anchors.begin(), anchors.end());
    for (const std::string& link : allMatches(page, "href=\"#([^\"]+)\""))
        EXPECT_TRUE(known.contains(link)) << link;
}

/// "%20" in a link is a blank in a file's name.
files::path fileOf(std::string link) {
    for (std::size_t at = 0; (at = link.find("%20", at)) != std::string::npos;)
        link.replace(at, 3, " ");
    return link;
}

TEST(HelpPage, LinksToTheGuideThatLiesBesideIt) {
    const std::string page = textOf(files::path(QUILLON_STAGE) / "Quillon Multitap Delay Help.htm");
    const std::size_t link = page.find("href=\"Skin%20Guide/");
    ASSERT_NE(link, std::string::npos);
    const std::size_t from = link + std::string("href=\"").size();
    const files::path target = fileOf(page.substr(from, page.find('"', from) - from));
    EXPECT_EQ(files::path(QUILLON_STAGE) / target, kStagedGuide);
    EXPECT_TRUE(files::exists(kStagedGuide));
}

TEST(DeliveredGuide, HasEverySectionOfTheGuideAndItsAnchor) {
    const std::string page = textOf(kStagedGuide);
    for (const Section& section : sections(textOf(kSource / "docs" / "skins.md")))
        if (!section.heading.empty()) {
            const std::string end = " id=\"" + anchorOf(section.heading) + "\">" + section.heading + "</h";
            EXPECT_NE(page.find(end), std::string::npos) << section.heading;
        }
    EXPECT_EQ(page.find("{{"), std::string::npos);
}

TEST(DeliveredGuide, LinksToWhatIsDelivered) {
    const std::string page = textOf(kStagedGuide);
    const auto anchors = allMatches(page, " id=\"([^\"]+)\"");
    const std::set<std::string> known(anchors.begin(), anchors.end());
    const auto links = allMatches(page, "(?:href|src)=\"([^\"]+)\"");
    EXPECT_GT(links.size(), 30u);
    for (const std::string& link : links) {
        if (link.starts_with('#'))
            EXPECT_TRUE(known.contains(link.substr(1))) << link;
        else
            EXPECT_TRUE(files::exists(kStagedGuide.parent_path() / fileOf(link))) << link;
    }
}

} // namespace
