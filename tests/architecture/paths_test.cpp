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

TEST(Pages, NameFilesThatAreThere) {
    for (const std::string page : {"docs/architecture.md", "CONTRIBUTING.md"}) {
        const std::vector<std::string> paths = pathsIn(sourceText(page));
        EXPECT_GT(paths.size(), 20u) << page;
        for (const std::string& path : paths)
            EXPECT_TRUE(files::exists(files::path(QUILLON_SOURCE) / path)) << page << " names " << path;
    }
}

TEST(Pages, AreReadForPathsAndNotForOtherWords) {
    EXPECT_EQ(pathsIn("See `dsp/biquad.h`, `AEffect`, `cmake/run build/x` and `tests/<room>/`.\n"
                      "```\n`base/none.h`\n```\n`host/` of 1/2\n"),
              (std::vector<std::string>{"dsp/biquad.h", "cmake/run", "host/"}));
}

} // namespace
