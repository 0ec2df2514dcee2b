#include "dsp/engine_controls.h"

#include "base/recompute.h"
#include "dsp/biquad.h"
#include "dsp/smoother.h"
#include "parameters/pattern_laws.h"

#include <bit>

namespace dsp {

using namespace base;
using namespace parameters;

namespace {

constexpr double kResonanceOnChange = 1.0;
constexpr double kResonanceOnPrepare = 0.3;

// The filters have one taper when their parameter is set, which the displays show, and these when the effect
// is turned on or the rate changes. Existing projects rely on the difference.
constexpr Law kLowPassOnPrepare = {Law::Shape::square, 18000.0, 500.0, "Hz"};
constexpr Law kHighPassOnPrepare = {Law::Shape::square, 2400.0, 210.0, "Hz"};

PatternRecord::Key keyOf(const PatternSettings& settings) {
    return std::bit_cast<PatternRecord::Key>(settings);
}

/// Level of the wet signal: 1 for a flat pattern of full gain, up to 2 for a sparse one.
float wetLevelOf(const std::array<float, kMaxTaps>& tapGain, std::size_t numTaps) {
    float gainSum = 0.0f;
    for (std::size_t tap = 0; tap < numTaps; tap += 2)
        gainSum += tapGain[tap] + tapGain[tap + 1];
    return 2.0f - gainSum / static_cast<float>(numTaps);
}

} // namespace

void EngineControls::reset() {
    for (base::Shared<float>& value : params)
        value.store(0.0f);
    const PatternRecord::Rewrite rewrite = patternRecord_.begin();
    clearTaps(pattern_);
    patternRecord_.endOther(rewrite);
    clearDelayMemory();
    setSampleRate(44100.0f);
    lfoRate_.store(2.0f);
    designBiquad(preLowPass, BiquadType::lowPass, 8000.0, 44100.0, kResonanceOnPrepare);
    // A high-pass at 400 Hz and 44100 Hz.
    preHighPass.publish({0.9125569462776184f, -1.8251138925552368f, 0.9125569462776184f, -1.8236311674118042f,
                         0.8265966176986694f});
    fadeBlockCount.store(0);
    fadeArmed.store(false);
}

void EngineControls::computeTapPattern(const base::Shared<float>& sampleRate) {
    computeFrom([this] { return params[kLfoRate].loadInOrder(); },
                [this](float rate) { lfoRate_.renew(kSweepRate.numberFor(rate)); });
    computeFrom([this] { return params[kSet].loadInOrder(); },
                [this](float set) {
                    // A "Set" outside its range may give a mode that does not exist: cubic then.
                    const std::int32_t mode = interpolationModeOf(set);
                    interpMode.renew(mode == kLinear || mode == kWholeSamples ? mode : std::int32_t{kCubic});
                });
    updatePattern(sampleRate);
}

PatternSettings EngineControls::patternSettings(const base::Shared<float>& sampleRate) {
    const float ampDecay = params[kAmpDecay].limit(kMostAmpDecay);
    return {{params[kBaseLength].loadInOrder(), params[kTaps].loadInOrder(), params[kStretch].loadInOrder(),
             ampDecay, params[kCurve].loadInOrder()},
            sampleRate.loadInOrder()};
}

void EngineControls::updatePattern(const base::Shared<float>& sampleRate) {
    for (int computations = 0; computations < kMostComputations; ++computations) {
        const PatternSettings settings = patternSettings(sampleRate);
        if (patternRecord_.holds(keyOf(settings)))
            return;
        const PatternRecord::Rewrite rewrite = patternRecord_.begin();
        computeTaps(pattern_, settings.parameters, settings.sampleRate);
        if (patternRecord_.endComputed(rewrite, keyOf(settings)) == PatternRecord::Outcome::unfinished)
            return;
    }
}

/// Computes the pattern with all times at zero.
void EngineControls::collapsePattern(const base::Shared<float>& sampleRate) {
    for (int computations = 0; computations < kMostComputations; ++computations) {
        const PatternSettings settings = patternSettings(sampleRate);
        const PatternRecord::Rewrite rewrite = patternRecord_.begin();
        computeTaps(pattern_, settings.parameters, settings.sampleRate);
        for (base::Shared<float>& time : pattern_.tapTimeTarget)
            time.store(0.0f);
        const PatternRecord::Outcome outcome = patternRecord_.endOther(rewrite);
        const bool isPresent = sameBits(settings, patternSettings(sampleRate));
        if (outcome == PatternRecord::Outcome::unfinished ||
            (outcome == PatternRecord::Outcome::whole && isPresent))
            return;
    }
}

void EngineControls::prepare(const base::Shared<float>& sampleRate) {
    computeFrom([&] { return sampleRate.loadInOrder(); }, [this](float rate) { setSampleRate(rate); });
    designFilter(preLowPass, {BiquadType::lowPass, kPreLowPass, kLowPassOnPrepare, kResonanceOnPrepare},
                 sampleRate);
    designFilter(preHighPass, {BiquadType::highPass, kPreHighPass, kHighPassOnPrepare, kResonanceOnPrepare},
                 sampleRate);
    computeTapPattern(sampleRate);
    collapsePattern(sampleRate);
    fadeBlockCount.store(0);
    clearDelayMemory();
}

void EngineControls::setSampleRate(float sampleRate) {
    lfoSampleTime_.renew(1.0f / sampleRate);
    dcRadiansPerSample_.renew(6.28319f / sampleRate);
}

void EngineControls::armFade() {
    if (!fadeArmed.load())
        fadeBlockCount.store(0);
    fadeArmed.store(true);
}

void EngineControls::designLowPassOnChange(const base::Shared<float>& sampleRate) {
    designFilter(preLowPass, {BiquadType::lowPass, kPreLowPass, kLowPassFrequency, kResonanceOnChange},
                 sampleRate);
}

void EngineControls::designHighPassOnChange(const base::Shared<float>& sampleRate) {
    designFilter(preHighPass, {BiquadType::highPass, kPreHighPass, kHighPassFrequency, kResonanceOnChange},
                 sampleRate);
}

void EngineControls::designFilter(SharedCoefficients& filter, const FilterTaper& taper,
                                  const base::Shared<float>& sampleRate) {
    computeFrom(
        [&] {
            return std::array{params[static_cast<std::size_t>(taper.id)].loadInOrder(),
                              sampleRate.loadInOrder()};
        },
        [&](const std::array<float, 2>& seen) {
            const auto [p, rate] = seen;
            designBiquad(filter, taper.type, static_cast<double>(taper.frequency.numberFor(p)),
                         static_cast<double>(rate), taper.resonance);
        });
}

bool EngineControls::takeClearRequest() {
    const bool requested = clearRequested_.load();
    if (requested)
        clearRequested_.store(false);
    return requested;
}

bool EngineControls::beginFadeBlock() {
    const std::int32_t count = fadeBlockCount.load();
    if (interpMode.load() != kWholeSamples || count >= 4) {
        fadeArmed.store(false);
        return false;
    }
    fadeBlockCount.store(count + 1);
    return fadeArmed.load();
}

bool EngineControls::read(ControlSnapshot& snapshot) const {
    const bool samePattern = readPattern(snapshot);
    snapshot.stereo = parameterValue(kStereo);
    snapshot.mix = parameterValue(kDryWet);
    snapshot.pan = parameterValue(kOutPan);
    snapshot.depth = parameterValue(kLfoDepth);
    snapshot.prePan = parameterValue(kPrePan);
    snapshot.feedback = static_cast<float>(feedbackFactorOf(parameterValue(kFeedback)));
    snapshot.lfoRate = lfoRate_.load();
    snapshot.lfoSampleTime = lfoSampleTime_.load();
    snapshot.dcRadiansPerSample = dcRadiansPerSample_.load();
    preLowPass.load(snapshot.lowPass);
    preHighPass.load(snapshot.highPass);
    return samePattern;
}

bool EngineControls::readPattern(ControlSnapshot& snapshot) const {
    const std::int32_t mode = interpMode.load();
    const bool sameMode = mode == snapshot.interpMode;
    snapshot.interpMode = mode;
    const std::uint32_t generation = patternRecord_.generation();
    if (generation == snapshot.patternGeneration && generation != PatternRecord::kNone)
        return sameMode;
    snapshot.patternGeneration = generation;
    snapshot.numTaps = pattern_.numTaps.load();
    // With an odd count the entry behind the last tap belongs to the last pair.
    const auto numTaps = static_cast<std::size_t>(snapshot.numTaps);
    for (std::size_t tap = 0; tap < (numTaps + 1) / 2 * 2; ++tap) {
        snapshot.tapGain[tap] = pattern_.tapGain[tap].load();
        snapshot.tapTimeTarget[tap] = pattern_.tapTimeTarget[tap].load();
    }
    snapshot.wetLevel = wetLevelOf(snapshot.tapGain, numTaps);
    return false;
}

} // namespace dsp
