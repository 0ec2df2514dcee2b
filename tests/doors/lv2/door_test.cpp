// The module as a host meets it: what it says of itself, where it writes what went wrong, and what it does
// about ports that are missing or hold what no control should.
#include "instance.h"
#include "recorded_log.h"

#include "desk/private_folder.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace lv2_door;
using namespace parameters;
using lv2_test::Instance;
using lv2_test::Log;
using lv2_test::Module;

constexpr double kRate = 44100.0;

/// The module of the bundle; stays loaded.
const Module& module() {
    static const Module loaded;
    return loaded;
}

using Row = std::vector<float>;

Row noise(std::size_t frames, unsigned seed = 1) {
    std::mt19937 random(seed);
    Row row(frames);
    for (float& sample : row)
        sample = static_cast<float>(random() >> 8) * 0x1p-23f - 1.0f;
    return row;
}

struct Stereo {
    Row left, right;
    bool operator==(const Stereo&) const = default;
};

/// What comes out for noise in blocks of `blockLength`.
Stereo played(Instance& instance, std::size_t frames = 20000, std::size_t blockLength = 512) {
    Row left = noise(frames, 1), right = noise(frames, 2);
    Stereo out = {Row(frames), Row(frames)};
    for (std::size_t first = 0; first < frames; first += blockLength) {
        float* const inputs[] = {&left[first], &right[first]};
        float* const outputs[] = {&out.left[first], &out.right[first]};
        instance.process(inputs, outputs, static_cast<std::uint32_t>(std::min(blockLength, frames - first)));
    }
    return out;
}

class Door : public testing::Test {
  protected:
    desk::PrivateFolder folder;
    Instance instance{*module().descriptor(), kRate};
};

TEST_F(Door, DescribesOnePluginWithoutExtensions) {
    EXPECT_STREQ(module().descriptor()->URI, kPluginUri);
    EXPECT_EQ(module().descriptor(1), nullptr);
    EXPECT_EQ(module().descriptor()->extension_data("urn:anything"), nullptr);
}

TEST_F(Door, TakesNoFeaturesAtAllForNoFeatures) {
    Instance other(*module().descriptor(), kRate, nullptr);
    other.activate();
    instance.activate();
    EXPECT_EQ(played(other), played(instance));
}

TEST_F(Door, LeavesTheControllerMapAlone) {
    {
        Instance other(*module().descriptor(), kRate);
    }
    EXPECT_FALSE(std::filesystem::exists("Pluginccmap.bin"));
}

TEST_F(Door, PlaysEchoesThatItsControlsDecideOn) {
    instance.activate();
    const Stereo before = played(instance);
    instance.controls[kBaseLength] = 0.2f;
    instance.activate();
    EXPECT_NE(played(instance), before);
}

/// The loudest sample of what follows a click, with `between` called behind the click.
template <class Between>
float loudestAfterClick(Instance& instance, Between between) {
    constexpr std::size_t kClickFrames = 4000; // with what the filters make of it
    constexpr std::size_t frames = 40000;
    Row click(kClickFrames), silence(frames), left(frames), right(frames);
    click[0] = 1.0f;
    float* const clicks[] = {click.data(), click.data()};
    float* const silences[] = {silence.data(), silence.data()};
    float* const outputs[] = {left.data(), right.data()};
    instance.process(clicks, outputs, kClickFrames);
    between();
    instance.process(silences, outputs, frames);
    float loudest = 0.0f;
    for (std::size_t i = 0; i < frames; ++i)
        loudest = std::max({loudest, std::abs(left[i]), std::abs(right[i])});
    return loudest;
}

TEST_F(Door, ForgetsEveryEchoWhenItIsActivated) {
    instance.controls[kDryWet] = 1.0f;
    instance.activate();
    EXPECT_GT(loudestAfterClick(instance, [] {}), 0.1f);
    instance.activate();
    EXPECT_LT(loudestAfterClick(instance, [this] { instance.activate(); }), 0.001f);
}

TEST_F(Door, TakesTheControlsOfTheFirstRunAsIfTheyHadBeenThereAtActivation) {
    Instance late(*module().descriptor(), kRate);
    for (const float step : {0.05f, 0.03f}) {
        for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
            late.connect(controlPort(id), nullptr);
        late.activate();
        for (std::size_t id = 0; id < kNumLiveParameters; ++id) {
            instance.controls[id] = late.controls[id] = step * static_cast<float>(id + 1);
            late.connect(controlPort(static_cast<std::int32_t>(id)), &late.controls[id]);
        }
        instance.activate();
        EXPECT_EQ(played(late), played(instance)) << step;
    }
}

TEST_F(Door, AcceptsNoPlaceForEveryPort) {
    for (std::uint32_t port = 0; port < kNumPorts; ++port)
        instance.connect(port, nullptr);
    instance.activate();
    for (const std::uint32_t frames : {0u, 1u, 512u, 5000u})
        instance.run(frames);
    instance.deactivate();
}

TEST_F(Door, HasTheDefaultsWhereControlsHaveNoPlace) {
    Instance placeless(*module().descriptor(), kRate);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        placeless.connect(controlPort(id), nullptr);
    placeless.activate();
    instance.activate();
    EXPECT_EQ(played(placeless), played(instance));
}

TEST_F(Door, PassesOverPortsThatThereAreNot) {
    float place = 0.25f;
    instance.connect(kNumPorts, &place);
    instance.connect(0xFFFFFFFFu, &place);
    instance.activate();
    Instance other(*module().descriptor(), kRate);
    other.activate();
    EXPECT_EQ(played(instance), played(other));
}

TEST_F(Door, PlaysOneSideWhereTheOtherOutputHasNoPlace) {
    instance.controls[kSet] = 0.5f; // else a block's length is heard
    instance.activate();
    const Stereo both = played(instance, 6000, 6000);
    Instance other(*module().descriptor(), kRate);
    other.controls[kSet] = 0.5f;
    other.activate();
    Row left = noise(6000, 1), right = noise(6000, 2), out(6000);
    float* const inputs[] = {left.data(), right.data()};
    float* const outputs[] = {nullptr, out.data()};
    other.process(inputs, outputs, 6000);
    EXPECT_EQ(out, both.right);
}

TEST_F(Door, TakesAMissingInputForSilence) {
    instance.activate();
    Row left = noise(3000), silence(3000), out(3000), other(3000);
    float* const inputs[] = {left.data(), silence.data()};
    float* const outputs[] = {out.data(), other.data()};
    instance.process(inputs, outputs, 3000);
    Instance second(*module().descriptor(), kRate);
    second.activate();
    Row secondLeft(3000), secondRight(3000);
    float* const fewer[] = {left.data(), nullptr};
    float* const theirs[] = {secondLeft.data(), secondRight.data()};
    second.process(fewer, theirs, 3000);
    EXPECT_EQ(secondLeft, out);
    EXPECT_EQ(secondRight, other);
}

TEST_F(Door, TakesValuesBeyondTheRangeForItsEnds) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Instance other(*module().descriptor(), kRate);
    for (std::size_t id = 0; id < kNumLiveParameters; ++id) {
        const bool isHigh = id % 2 == 0;
        instance.controls[id] = isHigh ? 1.0f : 0.0f;
        other.controls[id] = isHigh ? (id % 4 ? 1.5f : infinity) : (id % 3 ? -1e30f : -infinity);
    }
    instance.activate();
    other.activate();
    EXPECT_EQ(played(other), played(instance));
}

TEST_F(Door, KeepsAParameterWhoseControlHoldsNoNumber) {
    instance.controls[kFeedback] = 0.8f;
    instance.activate();
    Instance other(*module().descriptor(), kRate);
    other.controls[kFeedback] = 0.8f;
    other.activate();
    EXPECT_EQ(played(other), played(instance));
    other.controls[kFeedback] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(played(other), played(instance));
}

constexpr char kMissingBank[] = "Preset loader: Default bank error: file not found\n";

/// A copy of the module with no bank beside it.
class DoorWithoutBank : public testing::Test {
  protected:
    DoorWithoutBank() {
        std::filesystem::copy_file(QUILLON_LV2_BUNDLE "/QuillonMultitapDelay.so", "QuillonMultitapDelay.so");
        copy.emplace(folder.path() + "/QuillonMultitapDelay.so");
    }

    /// What an instance that is made with these features writes on standard error.
    std::string errorsWith(std::vector<const LV2_Feature*> features) {
        features.push_back(nullptr);
        testing::internal::CaptureStderr();
        {
            Instance made(*copy->descriptor(), kRate, features.data());
        }
        return testing::internal::GetCapturedStderr();
    }

    desk::PrivateFolder folder;
    std::optional<Module> copy;
    Log log;
};

TEST_F(DoorWithoutBank, TellsTheHostsLog) {
    EXPECT_EQ(errorsWith({&log.mapFeature, &log.logFeature}), "");
    EXPECT_EQ(log.lines, std::string(LV2_LOG__Warning) + " " + kMissingBank);
}

TEST_F(DoorWithoutBank, TellsStandardErrorWhereTheHostHasNoLog) {
    EXPECT_EQ(errorsWith({}), kMissingBank);
    EXPECT_EQ(errorsWith({&log.mapFeature}), kMissingBank);
}

TEST_F(DoorWithoutBank, TellsStandardErrorWhereTheHostCannotNumberKindsOfEntries) {
    EXPECT_EQ(errorsWith({&log.logFeature}), kMissingBank);
    EXPECT_EQ(log.lines, "");
}

} // namespace
