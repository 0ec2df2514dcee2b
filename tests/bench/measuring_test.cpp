#include "desk/measuring.h"

#include <gtest/gtest.h>
#include <sched.h>
#include <stdexcept>

namespace {

TEST(ProcessorSeconds, AreThoseOfTheProgramThatWasRun) {
    const double idle = desk::processorSecondsOf({"true"});
    const double busy =
        desk::processorSecondsOf({"sh", "-c", "i=0; while [ $i -lt 300000 ]; do i=$((i+1)); done"});
    EXPECT_GE(idle, 0.0);
    EXPECT_GT(busy, idle);
}

TEST(ProcessorSeconds, AreRefusedForAProgramThatFails) {
    EXPECT_THROW(desk::processorSecondsOf({"false"}), std::runtime_error);
}

TEST(ProcessorSeconds, AreRefusedForAProgramThatIsNotThere) {
    try {
        desk::processorSecondsOf({"no-such-program-anywhere"});
        FAIL() << "no error";
    } catch (const std::runtime_error& error) {
        EXPECT_TRUE(std::string(error.what()).starts_with("no-such-program-anywhere "));
    }
}

TEST(Staying, LeavesTheThreadOneProcessor) {
    if (!desk::stayOnThisProcessor())
        GTEST_SKIP() << "the system does not allow it";
    cpu_set_t allowed;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    EXPECT_EQ(CPU_COUNT(&allowed), 1);
    EXPECT_TRUE(CPU_ISSET(static_cast<unsigned>(sched_getcpu()), &allowed));
}

TEST(ProcessorName, IsOneLine) {
    const std::string name = desk::processorName();
    EXPECT_FALSE(name.empty());
    EXPECT_EQ(name.find('\n'), std::string::npos);
    EXPECT_EQ(name.find('\t'), std::string::npos);
}

} // namespace
