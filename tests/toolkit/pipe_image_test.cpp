// What no system but this one can put into a folder of pictures.

#include "skin/images.h"

#include "desk/private_folder.h"
#include "toolkit/toolkit.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

TEST(AMissingImage, StandsForAPipeWithoutWaitingForIt) {
    const toolkit::Toolkit toolkit;
    const desk::PrivateFolder folder;
    ASSERT_EQ(mkfifo("pipe.png", 0600), 0);
    EXPECT_FALSE(skin::loadImage(folder.path(), "pipe.png")->isLoaded());
}

} // namespace
