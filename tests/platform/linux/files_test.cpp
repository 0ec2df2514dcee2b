#include "platform/files.h"

#include "platform/private_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

TEST(SpecialFiles, AreNotWaitedFor) {
    const platform::PrivateFolder folder;
    ASSERT_EQ(mkfifo("pipe", 0600), 0);
    EXPECT_EQ(platform::readWholeFile("pipe"), std::nullopt) << "nobody waits for the pipe's other end";
}

TEST(SpecialFiles, CannotBeWrittenOnAFullDisk) {
    EXPECT_FALSE(platform::writeWholeFile("/dev/full", "x", 1));
}

} // namespace
