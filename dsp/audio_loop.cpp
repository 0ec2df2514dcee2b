#include "dsp/audio_loop.h"

#include "parameters/parameter_table.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace dsp {

using namespace parameters;

namespace {

/// Below this length a sub-block is rendered frame by frame: to set up rows costs more than they save.
constexpr std::int32_t kShortestRow = 8;

/// Up to this many taps, playByFrame reads each for itself.
constexpr std::int32_t kFewTaps = 6;

constexpr std::size_t at(std::int32_t index) {
    return static_cast<std::size_t>(index);
}

/// Calls what it is given with each of `frames` frames.
auto byFrame(std::int32_t frames) {
    return [frames](auto playFrame) {
        for (std::int32_t i = 0; i < frames; ++i)
            playFrame(i);
    };
}

} // namespace

void AudioLoop::processReplacing(EngineControls& shared, const float* const* inputs, float* const* outputs,
                                 std::int32_t sampleFrames) {
    assert(entry_.enter() && "two threads render at once");
    serveClearRequest(shared);
    Fade fade(sampleFrames, shared.beginFadeBlock());
    for (std::int32_t first = 0; first < sampleFrames;) {
        serveClearRequest(shared);
        readControls(shared);
        const std::int32_t frames = std::min({kSubBlockFrames, sampleFrames - first, delay_.slotsLeft()});
        const Buffers buffers = {
            inputs[0] + first, inputs[1] + first, outputs[0] + first, outputs[1] + first, first, frames};
        if (frames < kShortestRow)
            playByFrame(buffers, fade);
        else
            playByRow(buffers, fade);
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

void AudioLoop::playByRow(const Buffers& buffers, Fade& fade) {
    const std::int32_t frames = buffers.frames;
    Rows& rows = rows_;
    // Both channels are read before either is written: a host may pass the same buffers, also crossed.
    std::copy_n(buffers.inLeft, frames, rows.dry.left.begin());
    std::copy_n(buffers.inRight, frames, rows.dry.right.begin());
    smoothParameters(frames, rows.smoothed);
    const Sweep sweep = sweepTaps(frames, rows.smoothed.depth, rows.phases, rows.lfoOffset);
    kernels_->rows.mixInput(rows.dry, controls_.prePan, rows.mono.data(), frames);
    const TapPaths& paths = tapGlides_.advance(controls_, kernels_->taps, frames);
    for (std::int32_t i = 0; i < frames; ++i)
        rows.norm[at(i)] = controls_.wetLevel * fade.next(buffers.first + i);
    runDelay(frames, rows.mono, sweep, paths, rows.norm, rows.wet);
    kernels_->rows.mixOutput(rows.dry, rows.wet, rows.smoothed, buffers.outLeft, buffers.outRight, frames);
}

void AudioLoop::smoothParameters(std::int32_t frames, SmoothedRows& smoothed) {
    stereoSmoother_.gated(controls_.stereo, smoothed.stereo, frames);
    mixSmoother_.gated(controls_.mix, smoothed.mix, frames);
    panSmoother_.gated(controls_.pan, smoothed.pan, frames);
    depthSmoother_.gated(controls_.depth, smoothed.depth, frames);
}

/// The offset computed in a frame applies to the frame after it.
Sweep AudioLoop::sweepTaps(std::int32_t frames, const Row& depth, Row& phases, SweepRow& lfoOffset) {
    ModuleFMop oscillator = lfo; // a copy, which no store into the rows can alias
    const float step = oscillator.step(controls_.lfoRate, controls_.lfoSampleTime);
    for (std::int32_t i = 0; i < frames; ++i)
        phases[at(i)] = oscillator.advance(step);
    lfo = oscillator;
    lfoOffset[0] = delay_.lfoOffset;
    const Sweep sweep =
        kernels_->rows.sweep(phases.data(), lfo.phaseMod, depth.data(), lfoOffset.data(), frames);
    delay_.lfoOffset = lfoOffset[at(frames)];
    return sweep;
}

/// Filters, memory, taps, level and removal of DC. Where no tap reads what the sub-block writes, all taps
/// come first. Then everything that waits for its own last sample runs in one loop.
void AudioLoop::runDelay(std::int32_t frames, const Row& mono, const Sweep& sweep, const TapPaths& paths,
                         const Row& norm, StereoRow& wet) {
    MemorySpan span = delay_.beginSpan(frames);
    const SubBlockReader reader{kernels_->taps, controls_, span, sweep, paths, rows_.plan};
    planTaps(reader);
    const float radians = controls_.dcRadiansPerSample;
    if (rows_.plan.first >= TapPlace::apart) {
        const std::size_t last = at(controls_.numTaps - 1);
        const float* const fedFirst = reader.read(0, rows_.fed.left);
        const float* const fedLast = last > 0 ? reader.read(last, rows_.fed.right) : fedFirst;
        sumTaps(reader, {fedFirst, fedLast}, rows_.sum);
        applyLevel(frames, rows_.sum, norm, rows_.leveled);
        writeMemory(
            span, mono, [&](std::int32_t i) { return FedSamples{fedFirst[i], fedLast[i]}; },
            [&](auto writeFrame) { dcRemover_.process(rows_.leveled, wet, radians, frames, writeFrame); });
        delay_.endSpan(span);
        return;
    }
    const FedTaps fed = recirculate(reader, mono, rows_.fed);
    delay_.endSpan(span);
    sumTaps(reader, fed, rows_.sum);
    applyLevel(frames, rows_.sum, norm, rows_.leveled);
    dcRemover_.process(rows_.leveled, wet, radians, frames);
}

void AudioLoop::planTaps(const SubBlockReader& reader) {
    const TapKernels& kernels = kernels_->taps;
    if (reader.readsWholeSamples())
        kernels.planWhole(reader.span, reader.paths, controls_.numTaps, rows_.plan);
    else
        kernels.planSwept(reader.span, reader.sweep, reader.paths, controls_.numTaps, rows_.plan);
    kernels.prefetchFirst(reader.span, rows_.plan, controls_.numTaps);
}

/// Writes the input and the feedback to the memory. The first and the last tap are read for the whole
/// sub-block beforehand where they read nothing that it writes, and else frame by frame.
AudioLoop::FedTaps AudioLoop::recirculate(const SubBlockReader& reader, const Row& mono, StereoRow& fedRows) {
    const std::size_t last = at(controls_.numTaps - 1);
    FedTaps fed;
    fed.first = reader.readAtOnce(0, fedRows.left);
    fed.last = last > 0 && fed.first ? reader.readAtOnce(last, fedRows.right) : fed.first;
    if (fed.last) {
        writeMemory(
            reader.span, mono, [&](std::int32_t i) { return FedSamples{fed.first[i], fed.last[i]}; },
            byFrame(reader.span.frames));
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
    const auto readFed = [&](std::int32_t i) {
        fedRows.left[at(i)] = reader.readFrame<Reader>(0, i);
        fedRows.right[at(i)] = reader.readFrame<Reader>(last, i);
        return FedSamples{fedRows.left[at(i)], fedRows.right[at(i)]};
    };
    writeMemory(reader.span, mono, readFed, byFrame(reader.span.frames));
    return {fedRows.left.data(), fedRows.right.data()};
}

/// Filters the input and writes it with the feedback. `run` calls the function that it is given with each
/// frame. Both filters and the feedback are recursions of their own; in one loop the processor overlaps them.
/// They run on copies of their states, which no store into the memory can alias.
template <class ReadFed, class Run>
void AudioLoop::writeMemory(const MemorySpan& span, const Row& mono, ReadFed readFed, Run run) {
    if (filterSubnormals(span.frames, mono.data(), rows_.filtered.data())) {
        feedBack(span, [&](std::int32_t i) { return rows_.filtered[at(i)]; }, readFed, run);
        return;
    }
    BiquadState lowPass = preLowPass;
    BiquadState highPass = preHighPass;
    const auto filter = [&](std::int32_t i) {
        const float low = lowPass.process(mono[at(i)], controls_.lowPass);
        return static_cast<double>(highPass.process(low, controls_.highPass));
    };
    feedBack(span, filter, readFed, run);
    preLowPass = lowPass;
    preHighPass = highPass;
}

template <class ReadFiltered, class ReadFed, class Run>
void AudioLoop::feedBack(const MemorySpan& span, ReadFiltered readFiltered, ReadFed readFed, Run run) {
    float* const slots = delay_.samples.data() + span.start;
    FeedbackPath feedback = feedbackPath_;
    run([&](std::int32_t i) {
        slots[i] = feedback.memoryInput(readFiltered(i), controls_.feedback);
        const FedSamples fed = readFed(i);
        feedback.capture(fed.first, fed.last);
    });
    feedbackPath_ = feedback;
}

/// Runs both filters on (near-)subnormal input; false, with nothing changed, if out of range.
bool AudioLoop::filterSubnormals(std::int32_t frames, const float* mono, double* filtered) {
    const auto inRange = [](float sample) { return SubnormalBiquad::inRange(sample); };
    if (!std::all_of(mono, mono + frames, inRange) ||
        !SubnormalBiquad::inRange(preLowPass, controls_.lowPass) ||
        !SubnormalBiquad::inRange(preHighPass, controls_.highPass))
        return false;
    constexpr double kStep = std::numeric_limits<float>::denorm_min();
    SubnormalBiquad lowPass(preLowPass);
    SubnormalBiquad highPass(preHighPass);
    for (std::int32_t i = 0; i < frames; ++i) {
        const double low = lowPass.process(SubnormalBiquad::stepsOf(mono[i]), controls_.lowPass);
        const double high = highPass.process(low, controls_.highPass);
        if (!SubnormalBiquad::inRange(low) || !SubnormalBiquad::inRange(high))
            return false;
        filtered[i] = high * kStep;
    }
    preLowPass = lowPass.state();
    preHighPass = highPass.state();
    return true;
}

/// Adds up all taps in order: even taps to the left, odd taps to the right.
void AudioLoop::sumTaps(const SubBlockReader& reader, const FedTaps& fed, StereoRow& sum) {
    const std::int32_t frames = reader.span.frames;
    const std::int32_t taps = controls_.numTaps;
    sum.left.fill(0.0f);
    sum.right.fill(0.0f);
    // Samples that lie in the memory need no rows, and are added all at once.
    const bool inPlace = reader.readsWholeSamples() && rows_.plan.first != TapPlace::unclear;
    const std::int32_t atOnce = inPlace ? taps : kTapsAtOnce;
    SubBlockReader::TapSamples& samples = rows_.tapSamples;
    for (std::int32_t begin = 0; begin < taps; begin += atOnce) {
        const std::int32_t end = std::min(begin + atOnce, taps);
        if (reader.readsWholeSamples())
            reader.readWholeSamples(begin, end, rows_.taps, samples);
        else
            reader.read(std::max(begin, 1), std::min(end, taps - 1), rows_.taps, samples);
        if (begin == 0)
            samples[0] = fed.first;
        if (end == taps)
            samples[at(taps - 1)] = fed.last;
        kernels_->taps.addTaps(samples.data() + begin, controls_.tapGain.data() + begin, end - begin, inPlace,
                               sum, frames);
        for (std::int32_t tap = begin; tap < end; ++tap)
            delay_.tapOut[at(tap)] = samples[at(tap)][frames - 1];
    }
    // With an odd count the entry behind the last tap belongs to the last pair. Its gain is zero, so what it
    // read last matters only if it was infinite or NaN.
    if (taps % 2 == 1) {
        const float unused = delay_.tapOut[at(taps)] * controls_.tapGain[at(taps)];
        for (float& sample : sum.right)
            sample += unused;
    }
}

void AudioLoop::applyLevel(std::int32_t frames, const StereoRow& sum, const Row& norm, StereoRow& leveled) {
    for (std::int32_t i = 0; i < frames; ++i) {
        leveled.left[at(i)] = sum.left[at(i)] * norm[at(i)];
        leveled.right[at(i)] = norm[at(i)] * sum.right[at(i)];
    }
}

double AudioLoop::filterFrame(float mono) {
    double filtered;
    if (SubnormalBiquad::inRange(mono) && filterSubnormals(1, &mono, &filtered))
        return filtered;
    return static_cast<double>(
        preHighPass.process(preLowPass.process(mono, controls_.lowPass), controls_.highPass));
}

/// Reads and adds up all taps in the frame that was just written.
StereoSample AudioLoop::sumTaps(const TapPaths& paths) {
    const bool inReach = delay_.lfoOffset <= 0.0f && delay_.lfoOffset >= -static_cast<float>(kDelaySize);
    if (controls_.interpMode == kWholeSamples)
        return sumTapsOneByOne<WholeSampleReader>(paths);
    if (controls_.numTaps > kFewTaps && inReach)
        return sumTapsAtOnce(paths);
    return controls_.interpMode == kLinear ? sumTapsOneByOne<LinearReader>(paths)
                                           : sumTapsOneByOne<CubicReader>(paths);
}

template <class Reader>
StereoSample AudioLoop::sumTapsOneByOne(const TapPaths& paths) {
    const MemoryNow memory = {delay_};
    const auto read = [&](std::size_t tap) {
        const float sample = Reader::read(memory, paths.firstTimes[tap], delay_.lfoOffset);
        delay_.tapOut[tap] = sample;
        return sample * controls_.tapGain[tap];
    };
    StereoSample sum = {0.0f, 0.0f};
    const std::size_t taps = at(controls_.numTaps);
    for (std::size_t tap = 0; tap + 1 < taps; tap += 2) {
        sum.left += read(tap);
        sum.right += read(tap + 1);
    }
    if (taps % 2 == 1) {
        sum.left += read(taps - 1);
        sum.right += delay_.tapOut[taps] * controls_.tapGain[taps];
    }
    return sum;
}

StereoSample AudioLoop::sumTapsAtOnce(const TapPaths& paths) {
    const bool linear = controls_.interpMode == kLinear;
    const auto& interpolation = linear ? kernels_->taps.linear : kernels_->taps.cubic;
    std::array<std::int32_t, kMaxTaps> left;
    const TapFrame frame = {delay_.samples.data(), delay_.written,   delay_.writeIndex,
                            delay_.lfoOffset,      paths.firstTimes, controls_.numTaps};
    const std::int32_t count = interpolation.readFrame(frame, delay_.tapOut.data(), left.data());
    const MemoryNow memory = {delay_};
    for (std::int32_t k = 0; k < count; ++k) {
        const std::size_t tap = at(left[at(k)]);
        const float time = paths.firstTimes[tap];
        delay_.tapOut[tap] = linear ? LinearReader::read(memory, time, delay_.lfoOffset)
                                    : CubicReader::read(memory, time, delay_.lfoOffset);
    }
    StereoSample sum = {0.0f, 0.0f};
    for (std::size_t tap = 0; tap < at(controls_.numTaps); tap += 2) {
        sum.left += delay_.tapOut[tap] * controls_.tapGain[tap];
        sum.right += delay_.tapOut[tap + 1] * controls_.tapGain[tap + 1];
    }
    return sum;
}

/// The same as playByRow, in the order in which each frame needs it.
void AudioLoop::playByFrame(const Buffers& buffers, Fade& fade) {
    const float step = lfo.step(controls_.lfoRate, controls_.lfoSampleTime);
    for (std::int32_t i = 0; i < buffers.frames; ++i) {
        const StereoSample dry = {buffers.inLeft[i], buffers.inRight[i]};
        const MixLevels levels = {stereoSmoother_.gated(controls_.stereo), mixSmoother_.gated(controls_.mix),
                                  panSmoother_.gated(controls_.pan)};
        const TapPaths& paths = tapGlides_.advance(controls_, kernels_->taps, 1);
        const float mono = withProductFor(isTiny(dry.left) || isTiny(dry.right), [&](auto times) {
            return mixedInput(dry, controls_.prePan, times);
        });
        delay_.write(feedbackPath_.memoryInput(filterFrame(mono), controls_.feedback));
        const StereoSample sum = sumTaps(paths);
        const float norm = controls_.wetLevel * fade.next(buffers.first + i);
        const StereoSample wet =
            dcRemover_.process({sum.left * norm, norm * sum.right}, controls_.dcRadiansPerSample);
        delay_.lfoOffset =
            sweptOffset(lfo.advance(step), lfo.phaseMod, depthSmoother_.gated(controls_.depth));
        feedbackPath_.capture(delay_.tapOut[0], delay_.tapOut[at(controls_.numTaps - 1)]);
        const StereoSample mixed = mixedOutput(dry, wet, levels);
        buffers.outLeft[i] = mixed.left;
        buffers.outRight[i] = mixed.right;
    }
}

} // namespace dsp
