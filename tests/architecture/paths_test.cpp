// A page that names a file names one that is there.

#include "house.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <set>
#include <sstream>

namespace {

namespace files = std::filesystem;
using namespace architecture;

/// What a build makes, what a person has at home, and words that stand for a name.
bool isNotInTheSources(const std::string& path) {
    return path.find_first_of("<*=") != std::string::npos || path.starts_with("~") ||
           path.starts_with("build/");
}

std::vector<std::string> pathsIn(const std::string& text) {
    std::vector<std::string> paths;
    for (const std::string& quoted : inBackticks(text)) {
        std::istringstream words(quoted);
        for (std::string word; words >> word;)
            if (word.find('/') != std::string::npos && !isNotInTheSources(word))
                paths.push_back(word);
    }
    return paths;
}

/// Where a page lies, relative to the sources, and how many files it names at least.
struct Page {
    std::string path;
    std::size_t names;
};

TEST(Pages, NameFilesThatAreThere) {
    const files::path sources = QUILLON_SOURCE;
    std::vector<Page> pages = {
        {"docs/architecture.md", 20}, {"CONTRIBUTING.md", 20}, {"docs/changing.md", 20}};
    for (const auto& entry : files::directory_iterator(sources / "docs/decisions"))
        pages.push_back({"docs/decisions/" + entry.path().filename().string(), 0});
    EXPECT_GT(pages.size(), 8u);
    for (const Page& page : pages) {
        const std::vector<std::string> paths = pathsIn(sourceText(page.path));
        EXPECT_GE(paths.size(), page.names) << page.path;
        for (const std::string& path : paths)
            EXPECT_TRUE(files::exists(sources / path)) << page.path << " names " << path;
    }
}

/// The pages that the Markdown of a page links to, relative to it.
std::vector<std::string> linksIn(const std::string& text) {
    std::vector<std::string> links;
    for (std::size_t at = text.find("]("); at != std::string::npos; at = text.find("](", at + 2)) {
        std::string link = text.substr(at + 2, text.find_first_of(")#", at + 2) - at - 2);
        if (const std::size_t blank = link.find("%20"); blank != std::string::npos)
            link.replace(blank, 3, " ");
        if (!link.empty() && link.find(':') == std::string::npos)
            links.push_back(link);
    }
    return links;
}

TEST(Pages, LinkToPagesThatAreThere) {
    const files::path sources = QUILLON_SOURCE;
    std::size_t links = 0;
    for (const char* folder : {"", "docs", "docs/decisions"})
        for (const auto& entry : files::directory_iterator(sources / folder))
            if (entry.path().extension() == ".md")
                for (const std::string& link :
                     linksIn(sourceText(files::relative(entry.path(), sources).string()))) {
                    ++links;
                    EXPECT_TRUE(files::exists(entry.path().parent_path() / link))
                        << entry.path() << " links to " << link;
                }
    EXPECT_GT(links, 50u);
}

TEST(Pages, AreReadForPathsAndNotForOtherWords) {
    EXPECT_EQ(pathsIn("See `dsp/biquad.h`, `AEffect`, `cmake/run build/x` and `tests/<room>/`.\n"
                      "```\n`base/none.h`\n```\n`host/` of 1/2\n"),
              (std::vector<std::string>{"dsp/biquad.h", "cmake/run", "host/"}));
}

} // namespace
