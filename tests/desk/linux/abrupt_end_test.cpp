#include "desk/abrupt_end.h"

#include "platform/files.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;

bool describeNoCall(char* text, std::size_t) {
    text[0] = 0;
    return false;
}

TEST(UnfinishedPath, GoesAtAnAbruptEndFromAnotherCurrentDirectory) {
    // A private folder would go at that end by itself.
    std::string folder = (files::temp_directory_path() / "quillon-XXXXXX").string();
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    files::create_directory(folder + "/draft folder");
    ASSERT_TRUE(platform::writeWholeFile(folder + "/draft", "x", 1));
    const auto end = [&] {
        const desk::AbruptEndWatch watch("tool", describeNoCall);
        files::current_path(folder);
        const desk::UnfinishedPath file("draft", desk::UnfinishedPath::Kind::file);
        const desk::UnfinishedPath inner("draft folder", desk::UnfinishedPath::Kind::folder);
        files::current_path("/");
        std::raise(SIGTERM);
    };
    EXPECT_EXIT(end(), testing::KilledBySignal(SIGTERM), "");
    EXPECT_TRUE(files::is_empty(folder));
    files::remove_all(folder);
}

} // namespace
