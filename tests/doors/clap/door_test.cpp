// The module as a host meets it: what it says of itself, its ports and parameters, and where it writes what
// went wrong.
#include "clap_module.h"
#include "sound.h"

#include "desk/private_folder.h"
#include "parameters/host_panel.h"

#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace clap_test;
using namespace clap_door;
using namespace parameters;

/// The module of the build; stays loaded.
const Module& module() {
    static const Module loaded;
    return loaded;
}

std::vector<std::string> featuresOf(const clap_plugin_descriptor_t& descriptor) {
    std::vector<std::string> features;
    for (const char** feature = descriptor.features; *feature; ++feature)
        features.push_back(*feature);
    return features;
}

TEST(Entry, DescribesOnePlugin) {
    const clap_plugin_factory_t& factory = factoryOf(module().entry());
    EXPECT_TRUE(clap_version_is_compatible(module().entry().clap_version));
    ASSERT_EQ(factory.get_plugin_count(&factory), 1u);
    EXPECT_EQ(factory.get_plugin_descriptor(&factory, 1), nullptr);
    const clap_plugin_descriptor_t& descriptor = *factory.get_plugin_descriptor(&factory, 0);
    EXPECT_TRUE(clap_version_is_compatible(descriptor.clap_version));
    EXPECT_STREQ(descriptor.id, kPluginId);
    EXPECT_STREQ(descriptor.name, "Quillon Multitap Delay");
    EXPECT_STREQ(descriptor.vendor, "Quillon Software");
    EXPECT_STREQ(descriptor.version, QUILLON_VERSION);
    for (const char* text :
         {descriptor.url, descriptor.manual_url, descriptor.support_url, descriptor.description})
        EXPECT_NE(text, nullptr);
    EXPECT_EQ(featuresOf(descriptor), (std::vector<std::string>{"audio-effect", "delay", "stereo"}));
}

TEST(Entry, MakesNothingButItsPlugin) {
    const clap_plugin_factory_t& factory = factoryOf(module().entry());
    Host host, older;
    older.record.clap_version = {0, 25, 1};
    EXPECT_EQ(module().entry().get_factory("other.factory"), nullptr);
    EXPECT_EQ(module().entry().get_factory(nullptr), nullptr);
    EXPECT_EQ(factory.create_plugin(&factory, &host.record, "other.plugin"), nullptr);
    EXPECT_EQ(factory.create_plugin(&factory, &host.record, nullptr), nullptr);
    EXPECT_EQ(factory.create_plugin(&factory, nullptr, kPluginId), nullptr);
    EXPECT_EQ(factory.create_plugin(&factory, &older.record, kPluginId), nullptr);
}

TEST(Entry, AsksNothingOfTheHostBeforeInit) {
    const clap_plugin_factory_t& factory = factoryOf(module().entry());
    Host host;
    host.record.get_extension = [](const clap_host_t*, const char*) -> const void* {
        throw std::logic_error("not yet");
    };
    const clap_plugin_t* const plugin = factory.create_plugin(&factory, &host.record, kPluginId);
    ASSERT_NE(plugin, nullptr);
    EXPECT_STREQ(plugin->desc->id, kPluginId);
    plugin->destroy(plugin);
}

/// A copy of the module, which nothing else has loaded, with no bank beside it.
class CopiedModule : public testing::Test {
  protected:
    CopiedModule() { std::filesystem::copy_file(kModule, "copy.clap"); }
    std::string path() const { return folder.path() + "/copy.clap"; }

    desk::PrivateFolder folder;
};

TEST_F(CopiedModule, CountsItsUsers) {
    const desk::SharedLibrary library(path());
    const auto& entry = *static_cast<const clap_plugin_entry_t*>(library.symbol("clap_entry"));
    const auto hasFactory = [&] { return entry.get_factory(CLAP_PLUGIN_FACTORY_ID) != nullptr; };
    EXPECT_FALSE(hasFactory());
    EXPECT_TRUE(entry.init("anywhere"));
    EXPECT_TRUE(entry.init(nullptr));
    entry.deinit();
    EXPECT_TRUE(hasFactory());
    entry.deinit();
    EXPECT_FALSE(hasFactory());
    entry.deinit(); // once too often
    EXPECT_TRUE(entry.init("anywhere"));
    EXPECT_TRUE(hasFactory());
    entry.deinit();
}

constexpr char kMissingBank[] = "Preset loader: Default bank error: file not found";

TEST_F(CopiedModule, TellsTheHostsLogOfAMissingBank) {
    Host host;
    testing::internal::CaptureStderr();
    {
        const Module copy(path());
        Instance instance(copy.entry(), host);
        EXPECT_EQ(instance.text(kProgramId, 127), "Fiber Cascade");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(host.lines, std::vector<std::string>{std::string("2 ") + kMissingBank});
}

TEST_F(CopiedModule, TellsStandardErrorOfAMissingBankWhereThereIsNoLog) {
    Host host(Host::kNothing);
    testing::internal::CaptureStderr();
    {
        const Module copy(path());
        Instance instance(copy.entry(), host);
    }
    std::string errors = testing::internal::GetCapturedStderr();
    std::erase(errors, '\r');
    EXPECT_EQ(errors, std::string(kMissingBank) + "\n");
}

TEST_F(CopiedModule, FindsAProgramByTheFirstOfItsNameOrTheCurrentOne) {
    Host host(Host::kLog);
    const Module copy(path());
    Instance instance(copy.entry(), host);
    EXPECT_EQ(instance.read(kProgramId, "Fiber Cascade"), 0.0);
    instance.set(kProgramId, 5.0);
    EXPECT_EQ(instance.read(kProgramId, "fiber cascade"), 5.0);
}

/// An instance of the build's module in a current folder of the test's own.
class Door : public testing::Test {
  protected:
    clap_param_info_t info(std::uint32_t index) {
        clap_param_info_t info;
        EXPECT_TRUE(instance.parameters().get_info(instance.plugin(), index, &info));
        return info;
    }

    desk::PrivateFolder folder;
    Host host;
    Instance instance{module().entry(), host};
};

TEST_F(Door, MakesDoWithAHostThatOffersNothing) {
    Host bare(Host::kNothing);
    bare.record.get_extension = nullptr;
    Instance other(module().entry(), bare);
    EXPECT_TRUE(other.activate());
    EXPECT_TRUE(instance.activate());
    EXPECT_EQ(played(other), played(instance));
}

TEST_F(Door, KnowsNoOtherExtension) {
    EXPECT_EQ(instance.plugin()->get_extension(instance.plugin(), "clap.unheard-of"), nullptr);
    EXPECT_EQ(instance.plugin()->get_extension(instance.plugin(), nullptr), nullptr);
}

TEST_F(Door, HasAStereoPortOnEachSideForTheSameBuffers) {
    const auto& ports = instance.extension<clap_plugin_audio_ports_t>(CLAP_EXT_AUDIO_PORTS);
    for (const bool isInput : {true, false}) {
        ASSERT_EQ(ports.count(instance.plugin(), isInput), 1u);
        clap_audio_port_info_t port, other;
        ASSERT_TRUE(ports.get(instance.plugin(), 0, isInput, &port));
        ASSERT_TRUE(ports.get(instance.plugin(), 0, !isInput, &other));
        EXPECT_EQ(port.flags, CLAP_AUDIO_PORT_IS_MAIN);
        EXPECT_EQ(port.channel_count, 2u);
        EXPECT_STREQ(port.port_type, CLAP_PORT_STEREO);
        EXPECT_EQ(port.in_place_pair, other.id);
        EXPECT_STREQ(port.name, isInput ? "Input" : "Output");
        EXPECT_FALSE(ports.get(instance.plugin(), 1, isInput, &port));
        EXPECT_FALSE(ports.get(instance.plugin(), 0, isInput, nullptr));
    }
}

TEST_F(Door, HasAPortForMidi) {
    const auto& ports = instance.extension<clap_plugin_note_ports_t>(CLAP_EXT_NOTE_PORTS);
    EXPECT_EQ(ports.count(instance.plugin(), false), 0u);
    ASSERT_EQ(ports.count(instance.plugin(), true), 1u);
    clap_note_port_info_t port;
    ASSERT_TRUE(ports.get(instance.plugin(), 0, true, &port));
    EXPECT_EQ(port.supported_dialects, CLAP_NOTE_DIALECT_MIDI);
    EXPECT_EQ(port.preferred_dialect, CLAP_NOTE_DIALECT_MIDI);
    EXPECT_FALSE(ports.get(instance.plugin(), 1, true, &port));
    EXPECT_FALSE(ports.get(instance.plugin(), 0, false, &port));
}

TEST_F(Door, ListsTheLiveParametersByTheirNamesInTheWindow) {
    ASSERT_EQ(instance.parameters().count(instance.plugin()), 18u);
    for (std::uint32_t id = 0; id < 17; ++id) {
        const clap_param_info_t entry = info(id);
        EXPECT_EQ(entry.id, id);
        EXPECT_STREQ(entry.name, panelEntry(static_cast<std::int32_t>(id)).name);
        EXPECT_STREQ(entry.module, panelEntry(static_cast<std::int32_t>(id)).group.name);
        const std::uint32_t steps = id == kSet ? CLAP_PARAM_IS_STEPPED : 0;
        EXPECT_EQ(entry.flags, CLAP_PARAM_IS_AUTOMATABLE | steps);
        EXPECT_EQ(entry.min_value, 0.0);
        EXPECT_EQ(entry.max_value, id == kSet ? 2.0 : 1.0);
    }
    EXPECT_STREQ(info(kBaseLength).module, "Pattern");
    EXPECT_STREQ(info(kAmpDecay).name, "Fade / Swell");
}

TEST_F(Door, ListsTheProgramsAsAParameter) {
    const clap_param_info_t entry = info(17);
    EXPECT_EQ(entry.id, 1000u);
    EXPECT_STREQ(entry.name, "Program");
    EXPECT_EQ(entry.flags, CLAP_PARAM_IS_AUTOMATABLE | CLAP_PARAM_IS_STEPPED);
    EXPECT_EQ(entry.min_value, 0.0);
    EXPECT_EQ(entry.max_value, 127.0);
    clap_param_info_t none;
    EXPECT_FALSE(instance.parameters().get_info(instance.plugin(), 18, &none));
    EXPECT_FALSE(instance.parameters().get_info(instance.plugin(), 0, nullptr));
}

TEST_F(Door, BeginsWithItsDefaultValues) {
    for (std::uint32_t index = 0; index < kNumListed; ++index)
        EXPECT_EQ(info(index).default_value, instance.value(info(index).id)) << index;
    EXPECT_EQ(instance.text(kProgramId, instance.value(kProgramId)), "Skipping Stone");
    instance.set(kTaps, 1.0);
    EXPECT_NE(info(kTaps).default_value, 1.0);
}

TEST_F(Door, ShowsValuesWithUnits) {
    EXPECT_EQ(instance.text(kBaseLength, 0.4466542286825459), "400 ms");
    EXPECT_EQ(instance.text(kDryWet, 0.21), "21 %");
    EXPECT_EQ(instance.text(kSet, 0.0), "Jump");
    EXPECT_EQ(instance.text(kSet, 1.0), "Glide");
    EXPECT_EQ(instance.text(kSet, 1.99), "Glide");
    EXPECT_EQ(instance.text(kSet, 2.0), "Fine");
    EXPECT_EQ(instance.text(kProgramId, 1.0), "Ping-Pong Ball");
    EXPECT_EQ(instance.text(kProgramId, 1e9), instance.text(kProgramId, 127.0));
    EXPECT_EQ(instance.text(kTaps, -3.0), "1");
}

TEST_F(Door, ReadsValuesWithUnits) {
    for (const auto& [id, text] : {std::pair{kBaseLength, "400 ms"},
                                   {kDryWet, "21 %"},
                                   {kPreLowPass, "8 kHz"},
                                   {kPreGain, "-6 dB"},
                                   {kSet, "Glide"},
                                   {kSet, "Fine"}}) {
        const std::optional<double> value = instance.read(static_cast<clap_id>(id), text);
        ASSERT_TRUE(value) << text;
        EXPECT_EQ(instance.text(static_cast<clap_id>(id), *value), text);
    }
    EXPECT_EQ(instance.read(kSet, "Glide"), 1.0);
    EXPECT_EQ(instance.read(kProgramId, "Ping-Pong Ball"), 1.0);
    EXPECT_FALSE(instance.read(kProgramId, "Pong-Ping Ball"));
    EXPECT_FALSE(instance.read(kBaseLength, "long"));
}

TEST_F(Door, ReadsEveryProgramByItsName) {
    for (int program = 0; program < 128; ++program)
        EXPECT_EQ(instance.read(kProgramId, instance.text(kProgramId, program).c_str()), program);
}

TEST_F(Door, CutsTextsThatDoNotFit) {
    char text[8] = "abcdefg";
    EXPECT_TRUE(instance.parameters().value_to_text(instance.plugin(), kProgramId, 1.0, text, 5));
    EXPECT_STREQ(text, "Ping");
    EXPECT_EQ(text[5], 'f');
    EXPECT_FALSE(instance.parameters().value_to_text(instance.plugin(), kProgramId, 1.0, text, 0));
    EXPECT_STREQ(text, "Ping");
}

TEST_F(Door, RefusesQuestionsWithoutMeaning) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const clap_plugin_params_t& asked = instance.parameters();
    const clap_plugin_t* const plugin = instance.plugin();
    char text[100];
    double value = 0.0;
    for (const clap_id id : {17u, 20u, 999u, 1001u, CLAP_INVALID_ID}) {
        EXPECT_FALSE(asked.get_value(plugin, id, &value));
        EXPECT_FALSE(asked.value_to_text(plugin, id, 0.5, text, sizeof text));
        EXPECT_FALSE(asked.text_to_value(plugin, id, "0", &value));
    }
    EXPECT_FALSE(asked.get_value(plugin, 0, nullptr));
    EXPECT_FALSE(asked.value_to_text(plugin, 0, nan, text, sizeof text));
    EXPECT_FALSE(asked.value_to_text(plugin, 0, 0.5, nullptr, 100));
    EXPECT_FALSE(asked.text_to_value(plugin, 0, nullptr, &value));
    EXPECT_FALSE(asked.text_to_value(plugin, 0, "1 ms", nullptr));
}

TEST_F(Door, RefusesRatesThatCannotBe) {
    using Limits = std::numeric_limits<double>;
    for (const double rate :
         {0.0, -44100.0, 1e300, 1e-300, Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_FALSE(instance.activate(rate)) << rate;
    EXPECT_TRUE(instance.activate(44100.0));
}

TEST_F(Door, PlaysAtOddRates) {
    for (const double rate : {1.0, 11025.0, 44099.99, 768000.0, 1e9}) {
        ASSERT_TRUE(instance.activate(rate)) << rate;
        EXPECT_EQ(played(instance, 2000).left.size(), 2000u);
    }
}

TEST_F(Door, ForgetsEveryEchoWhenItIsActivatedOrReset) {
    instance.set(kDryWet, 1.0);
    instance.set(kBaseLength, 0.3);
    for (const std::uint32_t loud : {0u, 1u, 2u}) {
        ASSERT_TRUE(instance.activate());
        const float loudest = loudestAfterClick(instance, [&] {
            if (loud == 1)
                instance.activate();
            if (loud == 2)
                instance.reset();
        });
        if (loud == 0)
            EXPECT_GT(loudest, 0.01f);
        else
            EXPECT_LT(loudest, 0.001f);
    }
}

TEST_F(Door, GoesOnForever) {
    instance.activate();
    float samples[2][64] = {};
    float* const channels[] = {samples[0], samples[1]};
    for (int block = 0; block < 100; ++block)
        EXPECT_EQ(instance.process(channels, channels, 64), CLAP_PROCESS_CONTINUE);
}

TEST_F(Door, KeepsInstancesApart) {
    Host others[8];
    std::vector<std::unique_ptr<Instance>> instances;
    for (Host& other : others)
        instances.push_back(std::make_unique<Instance>(module().entry(), other));
    instances.front()->activate();
    const Stereo alone = played(*instances.front());
    for (const auto& other : instances) {
        other->set(kTaps, 0.9);
        other->activate(96000.0);
        EXPECT_NE(played(*other), alone);
    }
    instances.clear();
    instance.activate();
    EXPECT_EQ(played(instance), alone);
}

TEST_F(Door, PlaysOnlyWhatItHasChannelsFor) {
    instance.set(kSet, 1.0); // else a block's length is heard
    instance.activate();
    const Stereo both = played(instance, 6000, 6000);
    Host otherHost;
    Instance other(module().entry(), otherHost);
    other.set(kSet, 1.0);
    other.activate();
    Row left = noise(6000, 1), right = noise(6000, 2), out(6000);
    float* const inputs[] = {left.data(), right.data()};
    float* const outputs[] = {nullptr, out.data()};
    other.process(inputs, outputs, 6000);
    EXPECT_EQ(out, both.right);
}

TEST_F(Door, AcceptsBlocksWithoutPortsAndWithPortsOfOneChannel) {
    instance.activate();
    clap_process_t block = {};
    for (const std::uint32_t frames : {0u, 1u, 512u, 5000u}) {
        block.frames_count = frames;
        EXPECT_EQ(instance.process(block), CLAP_PROCESS_CONTINUE);
    }
    Row in = noise(5000), out(5000);
    float *ins[] = {in.data()}, *outs[] = {out.data()};
    clap_audio_buffer_t input = {ins, nullptr, 1, 0, 0}, output = {outs, nullptr, 1, 0, 3};
    block.audio_inputs = &input;
    block.audio_outputs = &output;
    block.audio_inputs_count = block.audio_outputs_count = 1;
    EXPECT_EQ(instance.process(block), CLAP_PROCESS_CONTINUE);
    EXPECT_NE(out, Row(5000));
    EXPECT_EQ(output.constant_mask, 0u);
    input.data32 = output.data32 = nullptr;
    EXPECT_EQ(instance.process(block), CLAP_PROCESS_CONTINUE);
    EXPECT_EQ(instance.process(nullptr), CLAP_PROCESS_ERROR);
}

TEST_F(Door, MakesDoWithCallsOutOfOrder) {
    // Played, reset and flushed before it is active; deactivated twice; active when it goes.
    EXPECT_EQ(played(instance, 1000).left.size(), 1000u);
    instance.reset();
    instance.plugin()->deactivate(instance.plugin());
    instance.activate();
    instance.plugin()->deactivate(instance.plugin());
    instance.plugin()->on_main_thread(instance.plugin());
    Host passing;
    const clap_plugin_factory_t& factory = factoryOf(module().entry());
    const clap_plugin_t* const plugin = factory.create_plugin(&factory, &passing.record, kPluginId);
    EXPECT_TRUE(plugin->init(plugin));
    EXPECT_TRUE(plugin->activate(plugin, 44100.0, 1, 512));
    plugin->destroy(plugin);
}

TEST_F(Door, PlaysAsIfActivatedForAHostThatForgetsTo) {
    Host other;
    Instance second(module().entry(), other);
    // Whose first blocks are faded in behind activate(), as its taps jump.
    const double telephone = instance.read(kProgramId, "Telephone").value();
    instance.set(kProgramId, telephone);
    second.set(kProgramId, telephone);
    second.activate(44100.0);
    EXPECT_EQ(played(instance), played(second));
}

TEST_F(Door, LeavesTheCurrentFolderAlone) {
    {
        Host other;
        Instance passing(module().entry(), other);
    }
    EXPECT_TRUE(std::filesystem::is_empty("."));
}

} // namespace
