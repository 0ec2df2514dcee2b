// The controller map that quillon-bank writes, beside a copy of the CLAP module.
#include "clap_module.h"
#include "sound.h"
#include "support/tool_run.h"

#include "desk/private_folder.h"

#include <filesystem>
#include <gtest/gtest.h>

namespace {

using namespace clap_test;
using namespace clap_door;
using namespace parameters;

TEST(ControllerMapOfTheTool, MovesAControlOfTheClapPlugin) {
    namespace files = std::filesystem;
    const ScratchFolder folder;
    const desk::PrivateFolder current; // without a map of its own
    const files::path copy = folder.path() / "clap" / files::path(kModule).filename();
    files::create_directory(copy.parent_path());
    files::copy_file(kModule, copy);
    folder.writeText("mine.txt", "cc 74 = High cut\n");
    const ToolResult result =
        runTool(folder, {"map", "mine.txt", "--library", copy.string()}, ErrorEnd::file, QUILLON_BANK);
    ASSERT_EQ(result.exitCode, 0) << result.err;

    const Module module(copy.string());
    Host host;
    Instance instance(module.entry(), host);
    instance.activate();
    Row samples(64);
    float* const channels[] = {samples.data(), samples.data()};
    Events events;
    ToldEvents told;
    constexpr std::uint8_t controlChange = 0xB0;
    const double mix = instance.value(kDryWet);
    instance.process(channels, channels, 64, &events.midi(controlChange, 74, 127).midi(controlChange, 75, 0),
                     &told);
    EXPECT_EQ(instance.value(kPreLowPass), 1.0);
    events.clear();
    instance.process(channels, channels, 64, &events.midi(controlChange, 74, 0), &told);
    EXPECT_EQ(instance.value(kPreLowPass), 0.0);
    EXPECT_EQ(instance.value(kDryWet), mix);
}

} // namespace
