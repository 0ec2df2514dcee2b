#include "desk/virtual_display.h"

#include "desk/private_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

namespace {

namespace files = std::filesystem;

/// Begins to listen to requests to end after the first one.
constexpr char kDeafServer[] = R"(#!/bin/sh
requests=0
trap 'requests=$((requests + 1)); [ $requests -lt 2 ] || exit 0' TERM
eval "echo 99 >&$2"
while :; do sleep 0.01; done
)";

TEST(VirtualDisplay, EndsAServerThatMissesTheFirstRequest) {
    const desk::PrivateFolder folder;
    const files::path server = files::path(folder.path()) / "Xvfb";
    std::ofstream(server) << kDeafServer;
    files::permissions(server, files::perms::owner_all);
    const std::string before = std::getenv("PATH");
    setenv("PATH", (server.parent_path().string() + ":" + before).c_str(), 1);
    {
        const desk::VirtualDisplay display(100, 100);
        EXPECT_STREQ(std::getenv("DISPLAY"), ":99");
    }
    setenv("PATH", before.c_str(), 1);
    EXPECT_EQ(std::getenv("DISPLAY"), nullptr);
}

} // namespace
