#include "tools/common/output_file.h"

#include "support/scratch_folder.h"
#include "tools/common/tool_error.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace files = std::filesystem;
using tools::OutputFile;

class TwoOutputFiles : public testing::Test {
  protected:
    /// Both are written; whatever lies under the second one's name by then stays there.
    void write() {
        OutputFile first(folder.file("first")), second(folder.file("second"));
        std::ofstream(first.temporary()) << "new";
        std::ofstream(second.temporary()) << "new";
        if (isSecondInTheWay)
            files::create_directory(folder.file("second"));
        tools::commitBoth(first, second);
    }
    std::string text(const std::string& name) const {
        const auto bytes = readFile(folder.file(name));
        return {bytes.begin(), bytes.end()};
    }

    ScratchFolder folder;
    bool isSecondInTheWay = false;
};

TEST_F(TwoOutputFiles, AppearTogether) {
    folder.writeText("first", "a longer old text");
    write();
    EXPECT_EQ(text("first"), "new");
    EXPECT_EQ(text("second"), "new");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"first", "second"}));
}

TEST_F(TwoOutputFiles, BothStayAwayIfTheSecondCannotBeWritten) {
    isSecondInTheWay = true;
    EXPECT_THROW(write(), tools::ToolError);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"second"});
}

TEST_F(TwoOutputFiles, LeaveTheFirstAsItWasIfTheSecondCannotBeWritten) {
    folder.writeText("first", "old");
    const auto before = files::last_write_time(folder.file("first"));
    isSecondInTheWay = true;
    EXPECT_THROW(write(), tools::ToolError);
    EXPECT_EQ(text("first"), "old");
    EXPECT_EQ(files::last_write_time(folder.file("first")), before);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"first", "second"}));
}

} // namespace
