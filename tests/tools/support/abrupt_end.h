// quillon-render with libraries that end it before its time.
#pragma once

#include "support/tool_run.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

inline std::string probe(const std::string& name) {
    return PROBES "/" + name + ".so";
}

class AbruptEnd : public testing::Test {
  protected:
    AbruptEnd() { folder.writeSound("in.wav", noise(1000)); }

    ToolResult render(const std::string& library) {
        return runTool(folder,
                       {"in.wav", "out.wav", "--plot", "out.png", "--quiet", "--library", probe(library)});
    }
    /// What the tool says of the library of this name, in one line, and nothing is left of its work.
    void expectEnd(const ToolResult& result, const std::string& line) {
        EXPECT_NE(result.exitCode, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "quillon-render: " + line + "\n");
        expectNothingIsLeft(result);
    }
    /// The same for a line that names the library, wherever the system has it.
    void expectEndWith(const ToolResult& result, const std::string& before, const std::string& library,
                       const std::string& after) {
        EXPECT_NE(result.exitCode, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.errorLines().size(), 1u) << result.err;
        EXPECT_TRUE(result.err.starts_with("quillon-render: " + before)) << result.err;
        EXPECT_TRUE(result.err.ends_with(library + ".so" + after + "\n")) << result.err;
        expectNothingIsLeft(result);
    }
    void expectNothingIsLeft(const ToolResult& result) {
        EXPECT_EQ(folder.names(), std::vector<std::string>{"in.wav"});
        EXPECT_EQ(result.leftBehind, std::vector<std::string>{});
    }
    void waitForUnfinishedFile() {
        while (folder.names().size() < 2)
            std::this_thread::yield();
    }

    ScratchFolder folder;
};
