#include "dsp/audio_loop.h"

#include "parameters/parameter_table.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <limits>

namespace dsp {

using namespace parameters;

namespace {

/// Prefetch distance, in taps.
constexpr std::size_t kPrefetchedTaps = 8;

constexpr std::size_t at(std::int32_t index) {
    return static_cast<std::size_t>(index);
}

/// The range of a row of read offsets.
Sweep sweepOf(const float* lfoOffset, std::int32_t frames) {
    float min = 0.0f;
    float max = -std::numeric_limits<float>::infinity();
    std::int32_t outOfRange = 0;
    for (std::int32_t i = 0; i < frames; ++i) {
        min = lfoOffset[i] < min ? lfoOffset[i] : min;
        max = lfoOffset[i] > max ? lfoOffset[i] : max;
        outOfRange |= lfoOffset[i] <= 0.0f ? 0 : 1;
    }
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    return outOfRange != 0 ? Sweep{lfoOffset, nan, nan} : Sweep{lfoOffset, min, max};
}

} // namespace

void AudioLoop::processReplacing(EngineControls& shared, const float* const* inputs, float* const* outputs,
                                 std::int32_t sampleFrames) {
    assert(entry_.enter() && "two threads render at once");
    serveClearRequest(shared);
    Fade fade(sampleFrames, shared.beginFadeBlock());
    for (std::int32_t first = 0; first < sampleFrames;) {
        serveClearRequest(shared);
        const std::int32_t frames = std::min({kSubBlockFrames, sampleFrames - first, delay_.slotsLeft()});
        StereoRow dry, sum, wet;
        SmoothedRows smoothed;
        alignas(64) SweepRow lfoOffset;
        alignas(64) Row mono;
        // Both channels are read before either is written: a host may pass the same buffers, also crossed.
        std::copy_n(inputs[0] + first, frames, dry.left.begin());
        std::copy_n(inputs[1] + first, frames, dry.right.begin());
        readControls(shared);
        smoothParameters(frames, smoothed);
        const Sweep sweep = sweepTaps(frames, smoothed.depth, lfoOffset);
        mixInput(frames, dry, mono);
        const TapPaths& paths = tapGlides_.advance(controls_, *kernels_, frames);
        runDelay(frames, mono, sweep, paths, sum);
        shapeWet(frames, first, fade, sum, wet);
        mixOutput(frames, dry, wet, smoothed, outputs[0] + first, outputs[1] + first);
        first += frames;
    }
    assert(entry_.leave());
}

void AudioLoop::serveClearRequest(EngineControls& shared) {
    if (shared.takeClearRequest())
        delay_.clearDelayMemory();
}

void AudioLoop::readControls(EngineControls& shared) {
    if (!shared.read(controls_))
        tapGlides_.restart();
    shared.showFullInputGain();
}

void AudioLoop::smoothParameters(std::int32_t frames, SmoothedRows& smoothed) {
    stereoSmoother_.gated(controls_.stereo, smoothed.stereo, frames);
    mixSmoother_.gated(controls_.mix, smoothed.mix, frames);
    panSmoother_.gated(controls_.pan, smoothed.pan, frames);
    depthSmoother_.gated(controls_.depth, smoothed.depth, frames);
}

/// The offset computed in a frame applies to the frame after it.
Sweep AudioLoop::sweepTaps(std::int32_t frames, const Row& depth, SweepRow& lfoOffset) {
    alignas(64) Row phase;
    ModuleFMop oscillator = lfo; // a copy, which no store into the rows can alias
    const float step = oscillator.step(controls_.lfoRate, controls_.lfoSampleTime);
    for (std::int32_t i = 0; i < frames; ++i)
        phase[at(i)] = oscillator.advance(step);
    lfo = oscillator;
    lfoOffset[0] = delay_.lfoOffset;
    for (std::int32_t i = 0; i < frames; ++i)
        lfoOffset[at(i + 1)] = -std::fabs((oscillator.sine(phase[at(i)]) + 100.0f) * depth[at(i)]);
    delay_.lfoOffset = lfoOffset[at(frames)];
    return sweepOf(lfoOffset.data(), frames);
}

void AudioLoop::mixInput(std::int32_t frames, const StereoRow& dry, Row& mono) const {
    const float pan = controls_.prePan;
    for (std::int32_t i = 0; i < frames; ++i)
        mono[at(i)] = (1.0f - pan) * dry.left[at(i)] + pan * dry.right[at(i)];
}

void AudioLoop::runDelay(std::int32_t frames, const Row& mono, const Sweep& sweep, const TapPaths& paths,
                         StereoRow& sum) {
    MemorySpan span = delay_.beginSpan(frames);
    const SubBlockReader reader{*kernels_, controls_, span, sweep, paths};
    StereoRow fedRows;
    const FedTaps fed = recirculate(reader, mono, fedRows);
    delay_.endSpan(span);
    sumTaps(reader, fed, sum);
}

/// Writes the input and the feedback to the memory. The first and the last tap are read for the whole
/// sub-block beforehand where they read nothing that it writes, and else frame by frame.
AudioLoop::FedTaps AudioLoop::recirculate(const SubBlockReader& reader, const Row& mono, StereoRow& fedRows) {
    const std::size_t last = at(controls_.numTaps - 1);
    FedTaps fed;
    fed.first = reader.readAtOnce(0, fedRows.left);
    fed.last = last > 0 && fed.first ? reader.readAtOnce(last, fedRows.right) : fed.first;
    if (fed.last) {
        writeMemory(reader.span, mono, [&](std::int32_t i) { return FedSamples{fed.first[i], fed.last[i]}; });
        return fed;
    }
    if (controls_.interpMode == kWholeSamples)
        return recirculateByFrame<WholeSampleReader>(reader, mono, fedRows);
    if (controls_.interpMode == kLinear)
        return recirculateByFrame<LinearReader>(reader, mono, fedRows);
    return recirculateByFrame<CubicReader>(reader, mono, fedRows);
}

template <class Reader>
AudioLoop::FedTaps AudioLoop::recirculateByFrame(const SubBlockReader& reader, const Row& mono,
                                                 StereoRow& fedRows) {
    const std::size_t last = at(controls_.numTaps - 1);
    writeMemory(reader.span, mono, [&](std::int32_t i) {
        fedRows.left[at(i)] = reader.readFrame<Reader>(0, i);
        fedRows.right[at(i)] = reader.readFrame<Reader>(last, i);
        return FedSamples{fedRows.left[at(i)], fedRows.right[at(i)]};
    });
    return {fedRows.left.data(), fedRows.right.data()};
}

/// Filters the input and writes it with the feedback. Both filters and the feedback are recursions of their
/// own; in one loop the processor overlaps them. They run on copies of their states, which no store into the
/// memory can alias.
template <class ReadFed>
void AudioLoop::writeMemory(const MemorySpan& span, const Row& mono, ReadFed readFed) {
    alignas(64) FilteredRow filtered;
    if (filterSubnormals(span.frames, mono, filtered)) {
        feedBack(span, [&](std::int32_t i) { return filtered[at(i)]; }, readFed);
        return;
    }
    BiquadState lowPass = preLowPass;
    BiquadState highPass = preHighPass;
    const auto filter = [&](std::int32_t i) {
        const float low = lowPass.process(mono[at(i)], controls_.lowPass);
        return static_cast<double>(highPass.process(low, controls_.highPass));
    };
    feedBack(span, filter, readFed);
    preLowPass = lowPass;
    preHighPass = highPass;
}

template <class ReadFiltered, class ReadFed>
void AudioLoop::feedBack(const MemorySpan& span, ReadFiltered readFiltered, ReadFed readFed) {
    float* const slots = delay_.samples.data() + span.start;
    FeedbackPath feedback = feedbackPath_;
    for (std::int32_t i = 0; i < span.frames; ++i) {
        slots[i] = feedback.memoryInput(readFiltered(i), controls_.feedback);
        const FedSamples fed = readFed(i);
        feedback.capture(fed.first, fed.last);
    }
    feedbackPath_ = feedback;
}

/// Runs both filters on (near-)subnormal input; false, with nothing changed, if out of range.
bool AudioLoop::filterSubnormals(std::int32_t frames, const Row& mono, FilteredRow& filtered) {
    const auto inRange = [](float sample) { return SubnormalBiquad::inRange(sample); };
    if (!SubnormalBiquad::inRange(preLowPass, controls_.lowPass) ||
        !SubnormalBiquad::inRange(preHighPass, controls_.highPass) ||
        !std::all_of(mono.begin(), mono.begin() + frames, inRange))
        return false;
    constexpr double kStep = std::numeric_limits<float>::denorm_min();
    SubnormalBiquad lowPass(preLowPass);
    SubnormalBiquad highPass(preHighPass);
    for (std::int32_t i = 0; i < frames; ++i) {
        const double low = lowPass.process(SubnormalBiquad::stepsOf(mono[at(i)]), controls_.lowPass);
        const double high = highPass.process(low, controls_.highPass);
        if (!SubnormalBiquad::inRange(low) || !SubnormalBiquad::inRange(high))
            return false;
        filtered[at(i)] = high * kStep;
    }
    preLowPass = lowPass.state();
    preHighPass = highPass.state();
    return true;
}

/// Adds up all taps in order: even taps to the left, odd taps to the right.
void AudioLoop::sumTaps(const SubBlockReader& reader, const FedTaps& fed, StereoRow& sum) {
    sum.left.fill(0.0f);
    sum.right.fill(0.0f);
    const std::int32_t frames = reader.span.frames;
    const std::size_t last = at(controls_.numTaps - 1);
    alignas(64) Row row;
    for (std::size_t tap = 0; tap < std::min(kPrefetchedTaps, last); ++tap)
        reader.prefetch(tap);
    for (std::size_t tap = 0; tap <= last; ++tap) {
        if (tap + kPrefetchedTaps < last)
            reader.prefetch(tap + kPrefetchedTaps);
        const float* samples;
        if (tap == 0)
            samples = fed.first;
        else if (tap == last)
            samples = fed.last;
        else
            samples = reader.read(tap, row);
        Row& side = tap % 2 == 0 ? sum.left : sum.right;
        kernels_->addTap(side.data(), samples, controls_.tapGain[tap], frames);
        delay_.tapOut[tap] = samples[frames - 1];
    }
    // With an odd count the entry behind the last tap belongs to the last pair. Its gain is zero, so what it
    // read last matters only if it was infinite or NaN.
    if (last % 2 == 0) {
        const float unused = delay_.tapOut[last + 1] * controls_.tapGain[last + 1];
        for (float& sample : sum.right)
            sample += unused;
    }
}

/// Applies level and fade and removes DC.
void AudioLoop::shapeWet(std::int32_t frames, std::int32_t firstFrame, Fade& fade, const StereoRow& sum,
                         StereoRow& wet) {
    alignas(64) Row norm;
    for (std::int32_t i = 0; i < frames; ++i)
        norm[at(i)] = controls_.wetLevel * fade.next(firstFrame + i);
    // Copies, which no store into the rows can alias.
    Smoother left = dcBlockLeft;
    Smoother right = dcBlockRight;
    const float radians = controls_.dcRadiansPerSample;
    for (std::int32_t i = 0; i < frames; ++i) {
        wet.left[at(i)] = left.process(sum.left[at(i)] * norm[at(i)], radians);
        wet.right[at(i)] = right.process(norm[at(i)] * sum.right[at(i)], radians);
    }
    dcBlockLeft = left;
    dcBlockRight = right;
}

/// "Stereo" crosses the wet pair over, "Out Pan" balances it, "Dry Wet" mixes it with the dry input.
void AudioLoop::mixOutput(std::int32_t frames, const StereoRow& dry, const StereoRow& wet,
                          const SmoothedRows& smoothed, float* left, float* right) {
    for (std::int32_t i = 0; i < frames; ++i) {
        const float stereo = smoothed.stereo[at(i)];
        const float mix = smoothed.mix[at(i)];
        const float pan = smoothed.pan[at(i)];
        const float a = (1.0f - stereo) * wet.left[at(i)] + wet.right[at(i)] * stereo;
        const float b = (1.0f - stereo) * wet.right[at(i)] + wet.left[at(i)] * stereo;
        left[i] = a * ((1.0f - pan) + (1.0f - pan)) * mix + (1.0f - mix) * dry.left[at(i)];
        right[i] = (b * pan + b * pan) * mix + (1.0f - mix) * dry.right[at(i)];
    }
}

} // namespace dsp
