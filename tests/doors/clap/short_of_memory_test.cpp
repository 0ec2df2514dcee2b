// What a host gets when memory runs out while it makes an instance or asks one for texts and states, at each
// place where that can happen.
#include "clap_host.h"
#include "doors/vst2/failing_memory.h"

#include "desk/private_folder.h"

#include <functional>

#include <gtest/gtest.h>

// The entry point is linked into this program, so that its memory comes from here.

namespace {

using namespace clap_test;

/// What a host finds of `work`, which answers whether it was done, at each shortage: how often it was not.
int refusalsOf(const std::function<bool()>& work) {
    int refusals = 0;
    for (const auto shortage : {test::Shortage::once, test::Shortage::lasting})
        for (long allocations = 0;; ++allocations) {
            const test::MemoryFor memory(allocations, shortage);
            if (!work())
                ++refusals;
            if (!memory.hasFailed())
                break;
        }
    return refusals;
}

TEST(DoorShortOfMemory, MakesAnInstanceOrNoneAndLosesNothing) {
    const desk::PrivateFolder folder;
    clap_entry.init("");
    const clap_plugin_factory_t& factory = factoryOf(clap_entry);
    Host host(Host::kNothing); // which keeps nothing of its own
    const auto isMade = [&] {
        const clap_plugin_t* const plugin = factory.create_plugin(&factory, &host.record, kPluginId);
        const bool isUsable = plugin && plugin->init(plugin);
        if (plugin)
            plugin->destroy(plugin);
        return isUsable;
    };
    testing::internal::CaptureStderr(); // there is no bank
    EXPECT_TRUE(isMade());
    const long before = test::livingAllocations();
    const int refusals = refusalsOf(isMade);
    const long after = test::livingAllocations();
    testing::internal::GetCapturedStderr();
    EXPECT_GT(refusals, 0);
    EXPECT_EQ(after, before);
    clap_entry.deinit();
}

TEST(DoorShortOfMemory, MakesAWindowOrNoneAndLosesNothing) {
    const desk::PrivateFolder folder;
    clap_entry.init("");
    // Whose log and list of timers take memory of their own.
    Host host(Host::kTimers);
    host.timers.reserve(10);
    host.periods.reserve(100000);
    testing::internal::CaptureStderr();
    int refusals = 0;
    {
        Instance instance(clap_entry, host);
        const auto isMade = [&] {
            const clap_plugin_gui_t& window = instance.window();
            const bool isCreated = window.create(instance.plugin(), instance.windowApi(), false);
            std::uint32_t width = 0, height = 0;
            EXPECT_EQ(window.get_size(instance.plugin(), &width, &height), isCreated);
            window.destroy(instance.plugin());
            EXPECT_TRUE(host.timers.empty());
            return isCreated && width > 0;
        };
        refusals = refusalsOf(isMade);
        EXPECT_TRUE(isMade());
        const long before = test::livingAllocations();
        refusals += refusalsOf(isMade);
        EXPECT_EQ(test::livingAllocations(), before);
    }
    testing::internal::GetCapturedStderr();
    EXPECT_GT(refusals, 0);
    clap_entry.deinit();
}

TEST(DoorShortOfMemory, AnswersEveryQuestion) {
    const desk::PrivateFolder folder;
    clap_entry.init("");
    Host host(Host::kNothing);
    testing::internal::CaptureStderr();
    {
        Instance instance(clap_entry, host);
        testing::internal::GetCapturedStderr();
        const auto& parameters = instance.parameters();
        const long before = test::livingAllocations();
        refusalsOf([&] {
            char text[100];
            double value = 0.0;
            bool isAnswered = true;
            for (const clap_id id : {0u, 8u, 9u, 12u, 14u, 1000u}) {
                isAnswered &= parameters.value_to_text(instance.plugin(), id, 0.5, text, sizeof text);
                isAnswered &= parameters.text_to_value(instance.plugin(), id, "0.5", &value);
            }
            return isAnswered;
        });
        EXPECT_EQ(refusalsOf([&] { return instance.activate(); }), 0);
        EXPECT_EQ(test::livingAllocations(), before);
    }
    clap_entry.deinit();
}

} // namespace
