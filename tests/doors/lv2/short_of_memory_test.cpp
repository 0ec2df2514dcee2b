// What a host gets when memory runs out while it makes an instance, at each place where that can happen.
#include "doors/vst2/failing_memory.h"
#include "instance.h"

#include "desk/private_folder.h"

#include <gtest/gtest.h>

// The entry point is linked into this program, so that its memory comes from here.
LV2_SYMBOL_EXPORT const LV2_Descriptor* lv2_descriptor(std::uint32_t index);

namespace {

TEST(DoorShortOfMemory, MakesAnInstanceOrNoneAndLosesNothing) {
    const desk::PrivateFolder folder;
    const LV2_Descriptor& descriptor = *lv2_descriptor(0);
    const LV2_Feature* const features[] = {nullptr};
    const auto isMade = [&] {
        const LV2_Handle instance = descriptor.instantiate(&descriptor, 44100.0, "/", features);
        if (instance)
            descriptor.cleanup(instance);
        return instance != nullptr;
    };
    testing::internal::CaptureStderr(); // there is no bank
    EXPECT_TRUE(isMade());
    const long before = test::livingAllocations();
    long shortages = 0, refusals = 0;
    for (const auto shortage : {test::Shortage::once, test::Shortage::lasting})
        for (long allocations = 0;; ++allocations) {
            const test::MemoryFor memory(allocations, shortage);
            if (!isMade())
                ++refusals;
            if (!memory.hasFailed())
                break;
            ++shortages;
        }
    const long after = test::livingAllocations();
    testing::internal::GetCapturedStderr();
    EXPECT_GT(shortages, 1);
    EXPECT_GT(refusals, 0);
    EXPECT_EQ(after, before);
}

} // namespace
