// What the effect itself does of a host's files and of a person's screen: nothing that its door has not asked
// for.
#include "effect/multitap_delay.h"

#include "desk/private_folder.h"
#include "midi/cc_map.h"
#include "platform/files.h"
#include "platform/message_box.h"
#include "platform/module_folder.h"
#include "support/program_bank.h"

#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace conversation;

/// Notes the problems that it is told of.
class NotingHost final : public interfaces::EffectHost {
  public:
    bool updateDisplay() override { return true; }
    std::int32_t uniqueID() const override { return 0; }
    void reportProblem(const char* text, const char* caption) override {
        problems.push_back(std::string(caption) + ": " + text);
    }

    std::vector<std::string> problems;
};

using Problems = std::vector<std::string>;

/// An effect whose files lie in a folder of the test's own, which is the current one too.
class Effect : public testing::Test {
  protected:
    Effect() {
        platform::replaceModuleFolder(folder.path() + "/");
        platform::replaceMessageBox([](void* context, const char*, const char*,
                                       const platform::MessageLook&) { ++*static_cast<int*>(context); },
                                    &boxes);
    }
    ~Effect() override {
        platform::replaceMessageBox(nullptr, nullptr);
        platform::replaceModuleFolder("");
    }

    void start() {
        effect = std::make_unique<effect::MultitapDelay>(host);
        effect->makePrograms();
        effect->startUp();
    }

    desk::PrivateFolder folder;
    NotingHost host;
    int boxes = 0;
    std::unique_ptr<effect::MultitapDelay> effect;
};

TEST_F(Effect, LeavesTheControllerMapToItsDoor) {
    midi::bindController(3, 77);
    const Bytes map(84, 0x05);
    platform::writeWholeFile("Pluginccmap.bin", map.data(), map.size());
    start();
    EXPECT_EQ(midi::controllerOf(3), 77);
    effect.reset();
    EXPECT_EQ(platform::readWholeFile("Pluginccmap.bin", 1000), map);
}

TEST_F(Effect, TellsItsHostOfAMissingBankAndOpensNoBox) {
    start();
    EXPECT_EQ(host.problems, Problems{"Preset loader: Default bank error: file not found"});
    EXPECT_EQ(boxes, 0);
}

TEST_F(Effect, TellsItsHostOfAChunkOfAWrongSizeAndOpensNoBox) {
    const Bytes bank = chunkBank(Bytes(100, 9));
    platform::writeWholeFile("default.fxb", bank.data(), bank.size());
    start();
    Bytes preset(kProgramSize + 1);
    effect->setChunk(preset.data(), static_cast<std::int32_t>(preset.size()), true);
    EXPECT_EQ(host.problems, (Problems{"Preset loader: Default bank error: wrong unique ID",
                                       "Error!: Can't load preset, wrong file size!"}));
    EXPECT_EQ(boxes, 0);
}

TEST_F(Effect, RemembersValuesThatTheSoundDoesNotGoBy) {
    start();
    effect->setParameter(parameters::kAmpDecay, 1.0f);
    effect->setParameter(parameters::kPreGain, 0.25f);
    float samples[2] = {};
    float* const channels[] = {&samples[0], &samples[1]};
    effect->processReplacing(channels, channels, 1);
    EXPECT_EQ(effect->getParameter(parameters::kAmpDecay), 0.99999f);
    EXPECT_EQ(effect->getParameter(parameters::kPreGain), 1.0f);
    EXPECT_EQ(effect->getStoredParameter(parameters::kAmpDecay), 1.0f);
    EXPECT_EQ(effect->getStoredParameter(parameters::kPreGain), 0.25f);
    effect->setProgram(1);
    EXPECT_EQ(effect->getStoredParameter(parameters::kAmpDecay), 0.0f);
    effect->setProgram(0);
    EXPECT_EQ(effect->getStoredParameter(parameters::kAmpDecay), 1.0f);
}

} // namespace
