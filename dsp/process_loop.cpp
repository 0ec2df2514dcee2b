// One block of audio, from the host's buffers to the host's buffers.
//
// The block is cut into sub-blocks of at most 64 samples. Each stage takes a whole sub-block and leaves rows
// of samples to the next: what is smoothed and swept, the filtered input, the delay, the wet signal, the
// output. Only the delay itself has to step sample by sample, since each sample that it writes may come back
// through a tap.
#include "dsp/delay_engine.h"

#include "dsp/tap_reader.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace dsp {

using namespace parameters;

namespace {

/// Added to everything that enters the memory: keeps decaying echoes out of the range where arithmetic gets
/// slow.
constexpr float kAntiDenormal = 1e-11f;

/// From this many taps on, tap times jump: gliding all of them would cost more than it gives.
constexpr std::int32_t kFirstCountWithoutGlide = 102;

constexpr std::size_t at(std::int32_t index) {
    return static_cast<std::size_t>(index);
}

float feedbackFactor(float feedback) {
    return static_cast<float>(static_cast<double>(feedback * 0.9f) - 0.45);
}

/// How much the wet signal is lifted: not at all for a flat pattern, up to twice for a thin one.
float wetLevelOf(const std::array<float, kMaxTaps>& gain, std::int32_t numTaps) {
    float gainSum = 0.0f;
    for (std::int32_t pair = 0; pair < (numTaps + 1) / 2; ++pair)
        gainSum += gain[at(2 * pair)] + gain[at(2 * pair + 1)];
    return 2.0f - gainSum / static_cast<float>(numTaps);
}

} // namespace

void DelayEngine::processReplacing(const float* const* inputs, float* const* outputs,
                                   std::int32_t sampleFrames) {
    delay.serveClearRequest();
    Fade fade = beginBlock(sampleFrames);
    for (std::int32_t first = 0; first < sampleFrames; first += kSubBlockFrames) {
        const std::int32_t frames = std::min(kSubBlockFrames, sampleFrames - first);
        // Both channels are read before either is written: a host may hand over the same buffers, also
        // crossed.
        std::copy_n(inputs[0] + first, frames, block.dryLeft.begin());
        std::copy_n(inputs[1] + first, frames, block.dryRight.begin());
        delay.serveClearRequest();
        readControls();
        smoothParameters(frames);
        filterInput(frames);
        moveTaps(frames);
        runDelay(frames);
        shapeWet(frames, first, fade);
        mixOutput(frames, outputs[0] + first, outputs[1] + first);
    }
}

DelayEngine::Fade DelayEngine::beginBlock(std::int32_t sampleFrames) {
    const float tenth = static_cast<float>(sampleFrames) * 0.104f;
    Fade fade{false, sampleFrames, trunc(tenth), 1.0f / tenth, 1.0f};
    const std::int32_t count = parameters::loadShared(fadeBlockCount);
    if (parameters::loadShared(delay.interpMode) != kWholeSamples || count >= 4) {
        parameters::storeShared(fadeArmed, std::uint8_t{0});
        return fade;
    }
    parameters::storeShared(fadeBlockCount, count + 1);
    fade.armed = parameters::loadShared(fadeArmed) != 0;
    fade.level = fade.armed ? 0.0f : 1.0f;
    return fade;
}

float DelayEngine::Fade::next(std::int32_t i) {
    if (armed) {
        if (i <= length)
            level += step;
        else if (i >= blockFrames - length)
            level -= step;
        level = std::clamp(level, 0.0f, 1.0f);
    }
    return level;
}

void DelayEngine::readControls() {
    controls.numTaps = parameters::loadShared(pattern.numTaps);
    controls.interpMode = parameters::loadShared(delay.interpMode);
    for (std::size_t tap = 0; tap < kMaxTaps; ++tap) {
        controls.gain[tap] = parameters::loadShared(pattern.tapGain[tap]);
        controls.target[tap] = parameters::loadShared(pattern.tapTimeTarget[tap]);
    }
    controls.wetLevel = wetLevelOf(controls.gain, controls.numTaps);
    controls.stereo = parameterValue(kStereo);
    controls.mix = parameterValue(kDryWet);
    controls.pan = parameterValue(kOutPan);
    controls.depth = parameterValue(kLfoDepth);
    controls.prePan = parameterValue(kPrePan);
    controls.feedback = feedbackFactor(parameterValue(kFeedback));
    // Audio that runs always runs at full input gain, and the host is shown so.
    setParameterValue(kPreGain, 1.0f);
    controls.lfoStep = lfo.step();
    controls.dcRadiansLeft = parameters::loadShared(dcBlockLeft.radiansPerSample);
    controls.dcRadiansRight = parameters::loadShared(dcBlockRight.radiansPerSample);
    controls.lowPass = preLowPass.loadCoefficients();
    controls.highPass = preHighPass.loadCoefficients();
}

void DelayEngine::smoothParameters(std::int32_t frames) {
    Row depth;
    for (std::int32_t i = 0; i < frames; ++i) {
        block.stereo[at(i)] = stereoSmoother.gated(controls.stereo);
        block.mix[at(i)] = mixSmoother.gated(controls.mix);
        block.pan[at(i)] = panSmoother.gated(controls.pan);
        depth[at(i)] = depthSmoother.gated(controls.depth);
    }
    sweep(frames, depth);
}

/// The sweep of a sample is heard in the sample after it.
void DelayEngine::sweep(std::int32_t frames, const Row& depth) {
    for (std::int32_t i = 0; i < frames; ++i) {
        block.lfoOffset[at(i)] = delay.lfoOffset;
        const float sine = lfo.advance(controls.lfoStep);
        delay.lfoOffset = -std::fabs((sine + 100.0f) * depth[at(i)]);
    }
}

void DelayEngine::filterInput(std::int32_t frames) {
    for (std::int32_t i = 0; i < frames; ++i) {
        const float mono =
            (1.0f - controls.prePan) * block.dryLeft[at(i)] + controls.prePan * block.dryRight[at(i)];
        block.filtered[at(i)] =
            preHighPass.process(preLowPass.process(mono, controls.lowPass), controls.highPass);
    }
}

void DelayEngine::moveTaps(std::int32_t frames) {
    const bool glides = controls.interpMode != kWholeSamples && controls.numTaps < kFirstCountWithoutGlide;
    for (std::size_t tap = 0; tap < at(controls.numTaps); ++tap) {
        float* const times = block.tapTimeNow[tap].data();
        const float target = controls.target[tap];
        for (std::int32_t i = 0; i < frames; ++i)
            times[i] = glides ? tapSmoother[tap].gated(target) : target;
    }
}

void DelayEngine::runDelay(std::int32_t frames) {
    if (controls.interpMode == kWholeSamples)
        runDelayWith<WholeSampleReader>(frames);
    else if (controls.interpMode == kLinear)
        runDelayWith<LinearReader>(frames);
    else
        runDelayWith<CubicReader>(frames);
}

template <class Reader>
void DelayEngine::runDelayWith(std::int32_t frames) {
    for (std::int32_t i = 0; i < frames; ++i) {
        delay.write(memoryInput(block.filtered[at(i)]));
        sumTaps<Reader>(i);
        captureFeedback();
    }
}

/// What goes into the memory: the input and the feedback less its low end.
float DelayEngine::memoryInput(float filtered) {
    const double fed = static_cast<double>(controls.feedback * fbSample);
    fbLowpass = fbLowpass * 0.997 + fed * 0.003;
    // Flushed by a look at the lower half of the number: the state drops to zero now and then even under a
    // live signal, and every project that feeds back has that in its sound.
    if ((std::bit_cast<std::uint64_t>(fbLowpass) & 0x7F800000u) == 0)
        fbLowpass = 0.0;
    return static_cast<float>((fed - fbLowpass) + static_cast<double>(filtered) +
                              static_cast<double>(kAntiDenormal));
}

/// Reads every tap at one moment; even taps sound left, odd taps right.
template <class Reader>
void DelayEngine::sumTaps(std::int32_t frame) {
    const float offset = block.lfoOffset[at(frame)];
    for (std::size_t tap = 0; tap < at(controls.numTaps); ++tap)
        delay.tapOut[tap] = Reader::read(delay, block.tapTimeNow[tap][at(frame)], offset);
    float left = 0.0f;
    float right = 0.0f;
    // With an odd count the last pair takes in the entry behind the last tap, whose gain is zero.
    for (std::size_t tap = 0; tap < at(controls.numTaps); tap += 2) {
        left += delay.tapOut[tap] * controls.gain[tap];
        right += delay.tapOut[tap + 1] * controls.gain[tap + 1];
    }
    block.sumLeft[at(frame)] = left;
    block.sumRight[at(frame)] = right;
}

/// The first and the last tap feed back, as they were read. While the first is silent, the last value is
/// held.
void DelayEngine::captureFeedback() {
    const float first = delay.tapOut[0];
    const float last = delay.tapOut[at(controls.numTaps - 1)];
    if (std::fabs(first) > kAntiDenormal)
        fbSample = first + last - kAntiDenormal;
    if ((std::bit_cast<std::uint32_t>(fbSample) & 0x7F800000u) == 0)
        fbSample = 0.0f;
}

void DelayEngine::shapeWet(std::int32_t frames, std::int32_t firstFrame, Fade& fade) {
    for (std::int32_t i = 0; i < frames; ++i) {
        const float norm = controls.wetLevel * fade.next(firstFrame + i);
        block.wetLeft[at(i)] = dcBlockLeft.process(block.sumLeft[at(i)] * norm, controls.dcRadiansLeft);
        block.wetRight[at(i)] = dcBlockRight.process(norm * block.sumRight[at(i)], controls.dcRadiansRight);
    }
}

/// "Stereo" crosses the wet pair over, "Out Pan" weighs it, "Dry Wet" blends it with the untouched input.
void DelayEngine::mixOutput(std::int32_t frames, float* left, float* right) const {
    for (std::int32_t i = 0; i < frames; ++i) {
        const float stereo = block.stereo[at(i)];
        const float mix = block.mix[at(i)];
        const float pan = block.pan[at(i)];
        const float a = (1.0f - stereo) * block.wetLeft[at(i)] + block.wetRight[at(i)] * stereo;
        const float b = (1.0f - stereo) * block.wetRight[at(i)] + block.wetLeft[at(i)] * stereo;
        left[i] = a * ((1.0f - pan) + (1.0f - pan)) * mix + (1.0f - mix) * block.dryLeft[at(i)];
        right[i] = (b * pan + b * pan) * mix + (1.0f - mix) * block.dryRight[at(i)];
    }
}

} // namespace dsp
