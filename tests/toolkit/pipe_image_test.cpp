// What no system but this one can put into a folder of pictures.

#include "skin/images.h"

#include "platform/private_folder.h"
#include "platform/toolkit.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

TEST(AMissingImage, StandsForAPipeWithoutWaitingForIt) {
    const platform::Toolkit toolkit;
    const platform::PrivateFolder folder;
    ASSERT_EQ(mkfifo("pipe.png", 0600), 0);
    EXPECT_FALSE(skin::loadImage(folder.path(), "pipe.png")->isLoaded());
}

} // namespace
