#include "tools/render/tap_pattern.h"

#include "tools/common/display_search.h"
#include "tools/common/effect_names.h"
#include "tools/common/interrupt.h"
#include "tools/common/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <optional>
#include <string>

namespace tools::render {

namespace {

constexpr std::int32_t kBlockSize = 4096;
/// Long enough for every glide to arrive and for the fade that masks a jump of taps to be over.
constexpr std::int64_t kSettleFrames = 150000;
/// A tap this far below the impulse, -80 dB, is taken for none.
constexpr float kFaintest = 1e-4f;
/// How far back the effect remembers, in frames.
constexpr std::int64_t kMemoryFrames = 4194304;
/// No two taps lie further apart, in seconds, with a little to spare.
constexpr double kLongestGap = 2.1;
/// By then the filters have died away, in seconds.
constexpr double kFilterSound = 0.1;

constexpr const char* kLowPassName = "Pre LP";

struct Control {
    const char* name;
    float value;
};

/// What makes a tap answer with the filters' sound and nothing else. "Stereo" at 0 leaves even taps left and
/// odd taps right; "Feedback" has its zero in the middle.
constexpr Control kPlainControls[] = {
    {"Set", 0.0f},     {"LFO Dp", 0.0f},  {"Feedback", 0.5f}, {"Stereo", 0.0f},
    {"Dry Wet", 1.0f}, {"Pre Pan", 0.5f}, {"Out Pan", 0.5f},  {"Pre HP", 0.0f},
};
/// What gives a single tap of level 1, soon.
constexpr Control kSingleTapControls[] = {{"Taps #", 0.0f}, {"Amp Decay", 0.5f}, {"Bs Lgh 1", 0.1f}};

void set(host::Plugin& plugin, const char* name, float value) {
    plugin.setParameter(*parameterNamed(plugin, name), value);
}

/// Opens the low-pass as far as it can go at this rate and still be a filter: its highest frequency lies
/// above half of the lower sample rates.
void openLowPass(host::Plugin& plugin, double sampleRate) {
    const std::int32_t id = *parameterNamed(plugin, kLowPassName);
    WantedValue frequency;
    frequency.kind = WantedValue::Kind::shownNumber;
    frequency.number = std::floor(0.47 * sampleRate);
    plugin.setParameter(id, 1.0f);
    const auto highest = leadingNumber(plugin.parameterDisplay(id));
    if (highest && highest->value > frequency.number)
        plugin.setParameter(id, valueShowing(plugin, id, frequency));
}

struct Response {
    std::vector<float> side[2];
};

/// What comes behind an impulse on both inputs: until no tap can follow, or for `most` frames.
class ImpulseRun {
  public:
    ImpulseRun(host::Plugin& plugin, double sampleRate) : plugin_(plugin), sampleRate_(sampleRate) {}

    Response hear(std::int64_t most) {
        for (std::int64_t done = 0; done < kSettleFrames; done += kBlockSize)
            process(0.0f);
        Response response;
        std::int64_t lastHeard = -1;
        for (std::int64_t done = 0; done < most; done += kBlockSize) {
            process(done == 0 ? 1.0f : 0.0f);
            // The glide to fully wet stops a hair before it gets there and lets a little of the impulse
            // through.
            if (done == 0)
                out_[0][0] = out_[1][0] = 0.0f;
            for (int side = 0; side < 2; ++side)
                response.side[side].insert(response.side[side].end(), out_[side].begin(), out_[side].end());
            if (isHeard())
                lastHeard = done;
            if (lastHeard >= 0 && static_cast<double>(done - lastHeard) > kLongestGap * sampleRate_)
                break;
        }
        return response;
    }

  private:
    void process(float first) {
        stopIfInterrupted();
        float* inputs[] = {in_[0].data(), in_[1].data()};
        float* outputs[] = {out_[0].data(), out_[1].data()};
        in_[0][0] = in_[1][0] = first;
        plugin_.process(inputs, outputs, kBlockSize);
    }

    bool isHeard() const {
        return std::any_of(std::begin(out_), std::end(out_), [](const auto& side) {
            return std::any_of(side.begin(), side.end(), [](float s) { return std::abs(s) >= kFaintest; });
        });
    }

    using Block = std::array<float, kBlockSize>;

    host::Plugin& plugin_;
    double sampleRate_;
    Block in_[2] = {};
    Block out_[2] = {};
};

/// Finds a known sound again and again in a longer one, and takes it away wherever it is found.
void findTaps(std::vector<float>& heard, const std::vector<float>& sound, bool isRight, double sampleRate,
              std::vector<Tap>& taps) {
    for (std::size_t i = 0; i < heard.size(); ++i) {
        const float level = heard[i] / sound.front();
        if (!(std::abs(level) >= kFaintest))
            continue;
        taps.push_back({static_cast<double>(i) / sampleRate, level, isRight});
        const std::size_t length = std::min(sound.size(), heard.size() - i);
        for (std::size_t k = 0; k < length; ++k)
            heard[i + k] -= level * sound[k];
    }
}

/// Empties the memory of what was heard before and sets all but the pattern's own controls.
void makePlain(host::Plugin& plugin, double sampleRate) {
    plugin.suspend();
    plugin.resume();
    for (const Control& control : kPlainControls)
        set(plugin, control.name, control.value);
    openLowPass(plugin, sampleRate);
}

/// The sound of one tap of level 1, from its first sample on; empty if none was heard.
std::vector<float> singleTapSound(host::Plugin& plugin, double sampleRate) {
    makePlain(plugin, sampleRate);
    for (const Control& control : kSingleTapControls)
        set(plugin, control.name, control.value);
    Response response = ImpulseRun(plugin, sampleRate).hear(static_cast<std::int64_t>(sampleRate));
    std::vector<float>& left = response.side[0];
    const auto first =
        std::find_if(left.begin(), left.end(), [](float s) { return std::abs(s) >= kFaintest; });
    left.erase(left.begin(), first);
    left.resize(std::min(left.size(), static_cast<std::size_t>(kFilterSound * sampleRate)));
    return left;
}

} // namespace

bool hasTapPattern(host::Plugin& plugin) {
    const auto isThere = [&](const char* name) { return parameterNamed(plugin, name).has_value(); };
    return plugin.effect()->numInputs == 2 && plugin.effect()->numOutputs == 2 && isThere(kLowPassName) &&
           std::all_of(std::begin(kPlainControls), std::end(kPlainControls),
                       [&](const Control& control) { return isThere(control.name); }) &&
           std::all_of(std::begin(kSingleTapControls), std::end(kSingleTapControls),
                       [&](const Control& control) { return isThere(control.name); });
}

std::vector<Tap> measureTapPattern(host::Plugin& plugin, double sampleRate) {
    std::vector<float> asked;
    for (const Control& control : kSingleTapControls)
        asked.push_back(plugin.getParameter(*parameterNamed(plugin, control.name)));
    const std::vector<float> sound = singleTapSound(plugin, sampleRate);
    std::vector<Tap> taps;
    if (sound.empty())
        return taps;
    makePlain(plugin, sampleRate);
    for (std::size_t i = 0; i < asked.size(); ++i)
        set(plugin, kSingleTapControls[i].name, asked[i]);
    Response response = ImpulseRun(plugin, sampleRate).hear(kMemoryFrames);
    findTaps(response.side[0], sound, false, sampleRate, taps);
    findTaps(response.side[1], sound, true, sampleRate, taps);
    std::stable_sort(taps.begin(), taps.end(),
                     [](const Tap& a, const Tap& b) { return a.seconds < b.seconds; });
    return taps;
}

} // namespace tools::render
