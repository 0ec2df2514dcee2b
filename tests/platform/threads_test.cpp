#include "platform/threads.h"

#include <gtest/gtest.h>
#include <thread>

TEST(Threads, AreToldApart) {
    const std::uint64_t here = platform::currentThread();
    std::uint64_t there = here;
    std::thread([&] { there = platform::currentThread(); }).join();
    EXPECT_NE(there, here);
    EXPECT_EQ(platform::currentThread(), here);
}
