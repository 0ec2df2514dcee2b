#include "dsp/engine_controls.h"

#include "base/recompute.h"
#include "dsp/biquad.h"
#include "dsp/smoother.h"

#include <bit>

namespace dsp {

using namespace base;
using namespace parameters;

namespace {

constexpr double kResonanceOnChange = 1.0;
constexpr double kResonanceOnPrepare = 0.3;

PatternRecord::Key keyOf(const PatternSettings& settings) {
    return std::bit_cast<PatternRecord::Key>(settings);
}

float feedbackFactor(float feedback) {
    return static_cast<float>(static_cast<double>(feedback * 0.9f) - 0.45);
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
    const PatternRecord::Rewrite rewrite = patternRecord.begin();
    clearTaps(pattern);
    patternRecord.endOther(rewrite);
    clearDelayMemory();
    setSampleRate(44100.0f);
    lfoRate.store(2.0f);
    designBiquad(preLowPass, BiquadType::lowPass, 8000.0, 44100.0, kResonanceOnPrepare);
    // A high-pass at 400 Hz and 44100 Hz.
    preHighPass.publish({0.9125569462776184f, -1.8251138925552368f, 0.9125569462776184f, -1.8236311674118042f,
                         0.8265966176986694f});
    fadeBlockCount.store(0);
    fadeArmed.store(false);
}

void EngineControls::computeTapPattern(const base::Shared<float>& sampleRate) {
    computeFrom([this] { return params[kLfoRate].loadInOrder(); },
                [this](float rate) { lfoRate.renew((rate * 14.0f) * rate); });
    computeFrom([this] { return params[kSet].loadInOrder(); },
                [this](float set) {
                    // A "Set" outside its range may give a mode that does not exist: cubic then.
                    const std::int32_t mode = interpolationModeOf(set);
                    interpMode.renew(mode == kLinear || mode == kWholeSamples ? mode : std::int32_t{kCubic});
                });
    updatePattern(sampleRate);
}

PatternSettings EngineControls::patternSettings(const base::Shared<float>& sampleRate) {
    const float ampDecay = params[kAmpDecay].limit(0.99999f);
    return {{params[kBaseLength].loadInOrder(), params[kTaps].loadInOrder(), params[kStretch].loadInOrder(),
             ampDecay, params[kCurve].loadInOrder()},
            sampleRate.loadInOrder()};
}

void EngineControls::updatePattern(const base::Shared<float>& sampleRate) {
    for (int computations = 0; computations < kMostComputations; ++computations) {
        const PatternSettings settings = patternSettings(sampleRate);
        if (patternRecord.holds(keyOf(settings)))
            return;
        const PatternRecord::Rewrite rewrite = patternRecord.begin();
        computeTaps(pattern, settings.parameters, settings.sampleRate);
        if (patternRecord.endComputed(rewrite, keyOf(settings)) == PatternRecord::Outcome::unfinished)
            return;
    }
}

/// Computes the pattern with all times at zero.
void EngineControls::collapsePattern(const base::Shared<float>& sampleRate) {
    for (int computations = 0; computations < kMostComputations; ++computations) {
        const PatternSettings settings = patternSettings(sampleRate);
        const PatternRecord::Rewrite rewrite = patternRecord.begin();
        computeTaps(pattern, settings.parameters, settings.sampleRate);
        for (base::Shared<float>& time : pattern.tapTimeTarget)
            time.store(0.0f);
        const PatternRecord::Outcome outcome = patternRecord.endOther(rewrite);
        const bool isPresent = sameBits(settings, patternSettings(sampleRate));
        if (outcome == PatternRecord::Outcome::unfinished ||
            (outcome == PatternRecord::Outcome::whole && isPresent))
            return;
    }
}

void EngineControls::prepare(const base::Shared<float>& sampleRate) {
    computeFrom([&] { return sampleRate.loadInOrder(); }, [this](float rate) { setSampleRate(rate); });
    designFilter(preLowPass, {BiquadType::lowPass, kPreLowPass, 18000.0f, 500.0f, kResonanceOnPrepare},
                 sampleRate);
    designFilter(preHighPass, {BiquadType::highPass, kPreHighPass, 2400.0f, 210.0f, kResonanceOnPrepare},
                 sampleRate);
    computeTapPattern(sampleRate);
    collapsePattern(sampleRate);
    fadeBlockCount.store(0);
    clearDelayMemory();
}

void EngineControls::setSampleRate(float sampleRate) {
    lfoSampleTime.renew(1.0f / sampleRate);
    dcRadiansPerSample.renew(6.28319f / sampleRate);
}

void EngineControls::armFade() {
    if (!fadeArmed.load())
        fadeBlockCount.store(0);
    fadeArmed.store(true);
}

// The filters have one taper when their parameter is set and another when the effect is turned on or the rate
// changes. Existing projects rely on the difference.
void EngineControls::designLowPassOnChange(const base::Shared<float>& sampleRate) {
    designFilter(preLowPass, {BiquadType::lowPass, kPreLowPass, 20090.0f, 500.0f, kResonanceOnChange},
                 sampleRate);
}

void EngineControls::designHighPassOnChange(const base::Shared<float>& sampleRate) {
    designFilter(preHighPass, {BiquadType::highPass, kPreHighPass, 2400.0f, 102.0f, kResonanceOnChange},
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
            designBiquad(filter, taper.type, static_cast<double>(p * taper.range * p + taper.lowest),
                         static_cast<double>(rate), taper.resonance);
        });
}

bool EngineControls::takeClearRequest() {
    const bool requested = clearRequested.load();
    if (requested)
        clearRequested.store(false);
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
    snapshot.feedback = feedbackFactor(parameterValue(kFeedback));
    snapshot.lfoRate = lfoRate.load();
    snapshot.lfoSampleTime = lfoSampleTime.load();
    snapshot.dcRadiansPerSample = dcRadiansPerSample.load();
    preLowPass.load(snapshot.lowPass);
    preHighPass.load(snapshot.highPass);
    return samePattern;
}

bool EngineControls::readPattern(ControlSnapshot& snapshot) const {
    const std::int32_t mode = interpMode.load();
    const bool sameMode = mode == snapshot.interpMode;
    snapshot.interpMode = mode;
    const std::uint32_t generation = patternRecord.generation();
    if (generation == snapshot.patternGeneration && generation != PatternRecord::kNone)
        return sameMode;
    snapshot.patternGeneration = generation;
    snapshot.numTaps = pattern.numTaps.load();
    // With an odd count the entry behind the last tap belongs to the last pair.
    const auto numTaps = static_cast<std::size_t>(snapshot.numTaps);
    for (std::size_t tap = 0; tap < (numTaps + 1) / 2 * 2; ++tap) {
        snapshot.tapGain[tap] = pattern.tapGain[tap].load();
        snapshot.tapTimeTarget[tap] = pattern.tapTimeTarget[tap].load();
    }
    snapshot.wetLevel = wetLevelOf(snapshot.tapGain, numTaps);
    return false;
}

} // namespace dsp
