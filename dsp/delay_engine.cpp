#include "dsp/delay_engine.h"

#include "base/recompute.h"

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

} // namespace

void DelayEngine::startUp() {
    for (base::Shared<float>& value : params)
        value.store(0.0f);
    const PatternRecord::Rewrite rewrite = patternRecord.begin();
    clearTaps(pattern);
    patternRecord.endOther(rewrite);
    delay.clearDelayMemory();
    lfo.setSampleRate(44100.0f);
    lfo.rate.store(2.0f);
    designBiquad(preLowPass, BiquadType::lowPass, 8000.0, 44100.0, kResonanceOnPrepare);
    // A high-pass at 400 Hz and 44100 Hz.
    preHighPass.coefficients.publish({0.9125569462776184f, -1.8251138925552368f, 0.9125569462776184f,
                                      -1.8236311674118042f, 0.8265966176986694f});
    dcBlockLeft.setSampleRate(44100.0f);
    dcBlockRight.setSampleRate(44100.0f);
    fadeBlockCount.store(0);
    fadeArmed.store(false);
    feedbackPath.fbSample = 0.0f;
}

void DelayEngine::computeTapPattern(const base::Shared<float>& sampleRate) {
    computeFrom([this] { return params[kLfoRate].loadInOrder(); },
                [this](float lfoRate) { lfo.rate.renew((lfoRate * 14.0f) * lfoRate); });
    computeFrom([this] { return params[kSet].loadInOrder(); },
                [this](float set) {
                    // A "Set" outside its range may ask for a mode that does not exist; it is read as cubic
                    // then.
                    const std::int32_t mode = interpolationModeOf(set);
                    delay.interpMode.renew(mode == kLinear || mode == kWholeSamples ? mode
                                                                                    : std::int32_t{kCubic});
                });
    renewPattern(sampleRate);
}

PatternSettings DelayEngine::patternSettings(const base::Shared<float>& sampleRate) {
    const float ampDecay = params[kAmpDecay].limit(0.99999f);
    return {{params[kBaseLength].loadInOrder(), params[kTaps].loadInOrder(), params[kStretch].loadInOrder(),
             ampDecay, params[kCurve].loadInOrder()},
            sampleRate.loadInOrder()};
}

void DelayEngine::renewPattern(const base::Shared<float>& sampleRate) {
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

/// The present pattern with all its times at zero.
void DelayEngine::collapsePattern(const base::Shared<float>& sampleRate) {
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

void DelayEngine::prepare(const base::Shared<float>& sampleRate) {
    computeFrom([&] { return sampleRate.loadInOrder(); },
                [this](float rate) {
                    lfo.setSampleRate(rate);
                    dcBlockLeft.setSampleRate(rate);
                    dcBlockRight.setSampleRate(rate);
                });
    designFilter(preLowPass, {BiquadType::lowPass, kPreLowPass, 18000.0f, 500.0f, kResonanceOnPrepare},
                 sampleRate);
    designFilter(preHighPass, {BiquadType::highPass, kPreHighPass, 2400.0f, 210.0f, kResonanceOnPrepare},
                 sampleRate);
    computeTapPattern(sampleRate);
    collapsePattern(sampleRate);
    fadeBlockCount.store(0);
    clearDelayMemory();
}

void DelayEngine::armFade() {
    if (!fadeArmed.load())
        fadeBlockCount.store(0);
    fadeArmed.store(true);
}

// The filters follow one law when their parameter is set and another when the effect is turned on or the rate
// changes. Old projects sound the way they do because of it.
void DelayEngine::designLowPassOnChange(const base::Shared<float>& sampleRate) {
    designFilter(preLowPass, {BiquadType::lowPass, kPreLowPass, 20090.0f, 500.0f, kResonanceOnChange},
                 sampleRate);
}

void DelayEngine::designHighPassOnChange(const base::Shared<float>& sampleRate) {
    designFilter(preHighPass, {BiquadType::highPass, kPreHighPass, 2400.0f, 102.0f, kResonanceOnChange},
                 sampleRate);
}

void DelayEngine::designFilter(Biquad& filter, const FilterLaw& law, const base::Shared<float>& sampleRate) {
    computeFrom(
        [&] {
            return std::array{params[static_cast<std::size_t>(law.id)].loadInOrder(),
                              sampleRate.loadInOrder()};
        },
        [&](const std::array<float, 2>& seen) {
            const auto [p, rate] = seen;
            designBiquad(filter, law.type, static_cast<double>(p * law.span * p + law.lowest),
                         static_cast<double>(rate), law.resonance);
        });
}

} // namespace dsp
