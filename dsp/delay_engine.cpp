#include "dsp/delay_engine.h"

#include <bit>

namespace dsp {

using namespace parameters;

namespace {

// The filters follow one law when their parameter is set and another when the effect is turned on or the rate
// changes. Old projects sound the way they do because of it.
constexpr double kResonanceOnChange = 1.0;
constexpr double kResonanceOnPrepare = 0.3;

} // namespace

void DelayEngine::startUp() {
    params.fill(0.0f);
    static_cast<void>(patternRecord.begin());
    pattern = TapPattern{};
    patternRecord.endOther();
    delay.clearDelayMemory();
    lfo.setSampleRate(44100.0f);
    parameters::storeShared(lfo.rate, 2.0f);
    designBiquad(preLowPass, BiquadType::lowPass, 8000.0, 44100.0, kResonanceOnPrepare);
    // A high-pass at 400 Hz and 44100 Hz.
    preHighPass.coefficients.publish({0.9125569462776184f, -1.8251138925552368f, 0.9125569462776184f,
                                      -1.8236311674118042f, 0.8265966176986694f});
    dcBlockLeft.setSampleRate(44100.0f);
    dcBlockRight.setSampleRate(44100.0f);
    parameters::storeShared(fadeBlockCount, 0);
    parameters::storeShared(fadeArmed, std::uint8_t{0});
    feedbackPath.fbSample = 0.0f;
}

void DelayEngine::computeTapPattern(float sampleRate) {
    const float lfoRate = parameterValue(kLfoRate);
    parameters::storeShared(lfo.rate, (lfoRate * 14.0f) * lfoRate);
    // A "Set" outside its range may ask for a mode that does not exist; it is read as cubic then.
    const std::int32_t mode = interpolationModeOf(parameterValue(kSet));
    parameters::storeShared(delay.interpMode,
                            mode == kLinear || mode == kWholeSamples ? mode : std::int32_t{kCubic});
    const float ampDecay = limitShared(params[kAmpDecay], 0.99999f);
    renewPattern({parameterValue(kBaseLength), parameterValue(kTaps), parameterValue(kStretch), ampDecay,
                  parameterValue(kCurve)},
                 sampleRate);
}

void DelayEngine::renewPattern(const PatternParameters& values, float sampleRate) {
    const PatternRecord::Key key = {
        std::bit_cast<std::uint32_t>(values.baseLength), std::bit_cast<std::uint32_t>(values.taps),
        std::bit_cast<std::uint32_t>(values.stretch),    std::bit_cast<std::uint32_t>(values.ampDecay),
        std::bit_cast<std::uint32_t>(values.curve),      std::bit_cast<std::uint32_t>(sampleRate)};
    if (patternRecord.holds(key))
        return;
    const PatternRecord::Rewrite rewrite = patternRecord.begin();
    computeTaps(pattern, values, sampleRate);
    patternRecord.endComputed(rewrite, key);
}

void DelayEngine::prepare(float sampleRate) {
    lfo.setSampleRate(sampleRate);
    const float lowPass = parameterValue(kPreLowPass);
    const float highPass = parameterValue(kPreHighPass);
    designBiquad(preLowPass, BiquadType::lowPass, static_cast<double>(lowPass * 18000.0f * lowPass + 500.0f),
                 static_cast<double>(sampleRate), kResonanceOnPrepare);
    designBiquad(preHighPass, BiquadType::highPass,
                 static_cast<double>(highPass * 2400.0f * highPass + 210.0f), static_cast<double>(sampleRate),
                 kResonanceOnPrepare);
    dcBlockLeft.setSampleRate(sampleRate);
    dcBlockRight.setSampleRate(sampleRate);
    computeTapPattern(sampleRate);
    static_cast<void>(patternRecord.begin());
    for (float& time : pattern.tapTimeTarget)
        parameters::storeShared(time, 0.0f);
    patternRecord.endOther();
    parameters::storeShared(fadeBlockCount, 0);
    clearDelayMemory();
}

void DelayEngine::armFade() {
    if (!parameters::loadShared(fadeArmed))
        parameters::storeShared(fadeBlockCount, 0);
    parameters::storeShared(fadeArmed, std::uint8_t{1});
}

void DelayEngine::designLowPassOnChange(float sampleRate) {
    const float p = parameterValue(kPreLowPass);
    designBiquad(preLowPass, BiquadType::lowPass, static_cast<double>(p * 20090.0f * p + 500.0f),
                 static_cast<double>(sampleRate), kResonanceOnChange);
}

void DelayEngine::designHighPassOnChange(float sampleRate) {
    const float p = parameterValue(kPreHighPass);
    designBiquad(preHighPass, BiquadType::highPass, static_cast<double>(p * 2400.0f * p + 102.0f),
                 static_cast<double>(sampleRate), kResonanceOnChange);
}

} // namespace dsp
