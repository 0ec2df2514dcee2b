// One block of audio, from the host's buffers to the host's buffers.
//
// The block is cut into sub-blocks of at most 64 samples. Each stage takes a whole sub-block and leaves rows
// of samples to the next: what is smoothed and swept, the mono input, the delay, the wet signal, the output.
// Only what feeds back has to step sample by sample: the filters, and the first and the last tap, whose
// samples go into the memory again. All taps are then read one after the other, each for the whole sub-block
// at once (dsp/tap_kernels.h says when that is right), and the few that cannot be are looked up sample by
// sample.
#include "dsp/delay_engine.h"

#include "base/truncation.h"
#include "dsp/tap_reader.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace dsp {

using namespace base;
using namespace parameters;

namespace {

/// From this many taps on, tap times jump: gliding all of them would cost more than it gives.
constexpr std::int32_t kFirstCountWithoutGlide = 102;

/// So many taps are on their way from far memory while one is read.
constexpr std::size_t kTapsFetchedAhead = 8;
constexpr std::int32_t kSamplesPerCacheLine = 16;
/// The hint to bring them into the second cache, which has room for all of them.
constexpr int kIntoSecondCache = 2;

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

constexpr Row kSilence{};

/// The samples of a tap without interpolation, where they stand; null for one that has to be looked up.
const float* wholeSamples(const MemorySpan& span, float time) {
    std::int32_t first = span.start + 1 - trunc(time);
    if (first < 0)
        first += kDelaySize;
    const std::int32_t last = first + span.frames - 1;
    return isUnwritten(span, first, last) ? kSilence.data() : contiguousSlots(span, first, last, first);
}

/// Finds the bounds of a row of read offsets.
Sweep sweepOf(const float* lfoOffset, std::int32_t frames) {
    float min = 0.0f;
    float max = -std::numeric_limits<float>::infinity();
    std::int32_t strays = 0;
    for (std::int32_t i = 0; i < frames; ++i) {
        min = lfoOffset[i] < min ? lfoOffset[i] : min;
        max = lfoOffset[i] > max ? lfoOffset[i] : max;
        strays |= lfoOffset[i] <= 0.0f ? 0 : 1;
    }
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    return strays != 0 ? Sweep{lfoOffset, none, none} : Sweep{lfoOffset, min, max};
}

float timeAt(const TapPath& path, std::int32_t frame) {
    return path.times ? path.times[frame] : path.time;
}

} // namespace

void DelayEngine::processReplacing(const float* const* inputs, float* const* outputs,
                                   std::int32_t sampleFrames) {
    delay.serveClearRequest();
    Fade fade = beginBlock(sampleFrames);
    for (std::int32_t first = 0; first < sampleFrames;) {
        delay.serveClearRequest();
        const std::int32_t frames = std::min({kSubBlockFrames, sampleFrames - first, delay.slotsLeft()});
        // Both channels are read before either is written: a host may hand over the same buffers, also
        // crossed.
        std::copy_n(inputs[0] + first, frames, block.dryLeft.begin());
        std::copy_n(inputs[1] + first, frames, block.dryRight.begin());
        readControls();
        smoothParameters(frames);
        sweep(frames);
        mixInput(frames);
        moveTaps(frames);
        runDelay(frames);
        shapeWet(frames, first, fade);
        mixOutput(frames, outputs[0] + first, outputs[1] + first);
        first += frames;
    }
}

DelayEngine::Fade DelayEngine::beginBlock(std::int32_t sampleFrames) {
    const float tenth = static_cast<float>(sampleFrames) * 0.104f;
    Fade fade{false, sampleFrames, trunc(tenth), 1.0f / tenth, 1.0f};
    const std::int32_t count = fadeBlockCount.load();
    if (delay.interpMode.load() != kWholeSamples || count >= 4) {
        fadeArmed.store(false);
        return fade;
    }
    fadeBlockCount.store(count + 1);
    fade.armed = fadeArmed.load();
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

/// The tables are copied only where they are new: they are long and change seldom.
void DelayEngine::readPattern() {
    const std::int32_t interpMode = delay.interpMode.load();
    const std::uint32_t generation = patternRecord.generation();
    const bool sameTables = generation == controls.patternGeneration && generation != PatternRecord::kNone;
    tapsRest = tapsRest && sameTables && interpMode == controls.interpMode;
    controls.interpMode = interpMode;
    if (sameTables)
        return;
    controls.patternGeneration = generation;
    controls.numTaps = pattern.numTaps.load();
    // One more than are heard: with an odd count the last pair takes in the entry behind the last tap.
    for (std::size_t tap = 0; tap < at((controls.numTaps + 1) / 2 * 2); ++tap) {
        controls.gain[tap] = pattern.tapGain[tap].load();
        controls.target[tap] = pattern.tapTimeTarget[tap].load();
    }
    controls.wetLevel = wetLevelOf(controls.gain, controls.numTaps);
}

void DelayEngine::readControls() {
    readPattern();
    controls.stereo = parameterValue(kStereo);
    controls.mix = parameterValue(kDryWet);
    controls.pan = parameterValue(kOutPan);
    controls.depth = parameterValue(kLfoDepth);
    controls.prePan = parameterValue(kPrePan);
    controls.feedback = feedbackFactor(parameterValue(kFeedback));
    // Audio that runs always runs at full input gain, and the host is shown so.
    params[kPreGain].store(1.0f);
    controls.lfoStep = lfo.step();
    controls.dcRadiansLeft = dcBlockLeft.radiansPerSample.load();
    controls.dcRadiansRight = dcBlockRight.radiansPerSample.load();
    preLowPass.coefficients.load(controls.lowPass);
    preHighPass.coefficients.load(controls.highPass);
}

void DelayEngine::smoothParameters(std::int32_t frames) {
    stereoSmoother.gated(controls.stereo, block.stereo, frames);
    mixSmoother.gated(controls.mix, block.mix, frames);
    panSmoother.gated(controls.pan, block.pan, frames);
    depthSmoother.gated(controls.depth, block.depth, frames);
}

/// The sweep of a sample is heard in the sample after it.
void DelayEngine::sweep(std::int32_t frames) {
    Row phase;
    for (std::int32_t i = 0; i < frames; ++i)
        phase[at(i)] = lfo.advance(controls.lfoStep);
    block.lfoOffset[0] = delay.lfoOffset;
    for (std::int32_t i = 0; i < frames; ++i)
        block.lfoOffset[at(i + 1)] = -std::fabs((lfo.sine(phase[at(i)]) + 100.0f) * block.depth[at(i)]);
    delay.lfoOffset = block.lfoOffset[at(frames)];
    block.sweep = sweepOf(block.lfoOffset.data(), frames);
}

void DelayEngine::mixInput(std::int32_t frames) {
    for (std::int32_t i = 0; i < frames; ++i)
        block.mono[at(i)] =
            (1.0f - controls.prePan) * block.dryLeft[at(i)] + controls.prePan * block.dryRight[at(i)];
}

/// A tap at rest has one time for the whole sub-block; only those on their way need a row.
void DelayEngine::moveTaps(std::int32_t frames) {
    if (tapsRest)
        return;
    const bool glides = controls.interpMode != kWholeSamples && controls.numTaps < kFirstCountWithoutGlide;
    std::array<std::size_t, kMaxTaps> gliding;
    std::size_t count = 0;
    for (std::size_t tap = 0; tap < at(controls.numTaps); ++tap) {
        const float target = controls.target[tap];
        TapPath& path = block.tapPath[tap];
        path = {nullptr, target};
        if (!glides)
            continue;
        if (!OnePole::opens(target))
            path.time = 0.0f;
        else if (tapSmoother[tap].rests(target))
            path.time = tapSmoother[tap].z;
        else
            gliding[count++] = tap;
    }
    for (std::size_t first = 0; first < count; first += kGlideLanes)
        glideTaps({gliding.data() + first, std::min<std::size_t>(kGlideLanes, count - first)}, frames);
    tapsRest = count == 0;
}

/// Up to kGlideLanes taps at once: each sample of a glide waits for the one before, so glides go side by
/// side.
void DelayEngine::glideTaps(std::span<const std::size_t> gliding, std::int32_t frames) {
    alignas(64) std::array<float, kGlideLanes> step{}, now{};
    std::array<float*, kGlideLanes> rows;
    Row spare;
    rows.fill(spare.data());
    for (std::size_t lane = 0; lane < gliding.size(); ++lane) {
        const std::size_t tap = gliding[lane];
        step[lane] = controls.target[tap] * tapSmoother[tap].b;
        now[lane] = tapSmoother[tap].z;
        rows[lane] = block.tapTimeNow[tap].data();
        block.tapPath[tap].times = rows[lane];
    }
    kernels->glide(step.data(), OnePole{}.a, now.data(), rows.data(), frames);
    for (std::size_t lane = 0; lane < gliding.size(); ++lane)
        tapSmoother[gliding[lane]].z = now[lane];
}

void DelayEngine::runDelay(std::int32_t frames) {
    MemorySpan span = delay.beginSpan(frames);
    recirculate(span);
    delay.endSpan(span);
    sumTaps(span);
}

/// Writes the input and what the first and the last tap feed back. Where these two read nothing that the
/// sub-block itself writes, they are read before; else each sample has to wait for the one before it.
void DelayEngine::recirculate(const MemorySpan& span) {
    if (readAhead(span))
        writeMemory(span, [&](std::int32_t i) { return FedTaps{block.firstTap[i], block.lastTap[i]}; });
    else if (controls.interpMode == kWholeSamples)
        recirculateWith<WholeSampleReader>(span);
    else if (controls.interpMode == kLinear)
        recirculateWith<LinearReader>(span);
    else
        recirculateWith<CubicReader>(span);
}

bool DelayEngine::readAhead(const MemorySpan& span) {
    const std::size_t last = at(controls.numTaps - 1);
    block.firstTap = readTapAtOnce(span, 0, block.firstRow);
    block.lastTap = last > 0 && block.firstTap ? readTapAtOnce(span, last, block.lastRow) : block.firstTap;
    return block.lastTap;
}

template <class Reader>
void DelayEngine::recirculateWith(const MemorySpan& span) {
    const TapPath& first = block.tapPath[0];
    const TapPath& last = block.tapPath[at(controls.numTaps - 1)];
    writeMemory(span, [&](std::int32_t i) {
        const MemoryAtFrame memory{span, i};
        block.firstRow[at(i)] = Reader::read(memory, timeAt(first, i), block.lfoOffset[at(i)]);
        block.lastRow[at(i)] = Reader::read(memory, timeAt(last, i), block.lfoOffset[at(i)]);
        return FedTaps{block.firstRow[at(i)], block.lastRow[at(i)]};
    });
    block.firstTap = block.firstRow.data();
    block.lastTap = block.lastRow.data();
}

/// Filters the input and writes it with the feedback. Each of the two filters and the feedback needs its own
/// last result for the next; in one loop they do not wait for each other. They work on copies of their
/// states, which no store into the memory can reach.
template <class ReadFedTaps>
void DelayEngine::writeMemory(const MemorySpan& span, ReadFedTaps readFedTaps) {
    if (filterSubnormals(span.frames)) {
        feedBack(span, [&](std::int32_t i) { return block.filteredInput[at(i)]; }, readFedTaps);
        return;
    }
    BiquadState lowPass = preLowPass.state;
    BiquadState highPass = preHighPass.state;
    const auto filtered = [&](std::int32_t i) {
        const float low = lowPass.process(block.mono[at(i)], controls.lowPass);
        return static_cast<double>(highPass.process(low, controls.highPass));
    };
    feedBack(span, filtered, readFedTaps);
    preLowPass.state = lowPass;
    preHighPass.state = highPass;
}

template <class ReadFiltered, class ReadFedTaps>
void DelayEngine::feedBack(const MemorySpan& span, ReadFiltered readFiltered, ReadFedTaps readFedTaps) {
    float* const slots = delay.samples.data() + span.start;
    FeedbackPath feedback = feedbackPath;
    for (std::int32_t i = 0; i < span.frames; ++i) {
        slots[i] = feedback.memoryInput(readFiltered(i), controls.feedback);
        const FedTaps fed = readFedTaps(i);
        feedback.capture(fed.first, fed.last);
    }
    feedbackPath = feedback;
}

/// Both filters over silence, or over what is next to it. False, with nothing done, if they are not that
/// quiet, or do not stay so.
bool DelayEngine::filterSubnormals(std::int32_t frames) {
    const auto inRange = [](float sample) { return SubnormalBiquad::inRange(sample); };
    if (!SubnormalBiquad::inRange(preLowPass.state, controls.lowPass) ||
        !SubnormalBiquad::inRange(preHighPass.state, controls.highPass) ||
        !std::all_of(block.mono.begin(), block.mono.begin() + frames, inRange))
        return false;
    constexpr double kSmallestStep = std::numeric_limits<float>::denorm_min();
    SubnormalBiquad lowPass(preLowPass.state);
    SubnormalBiquad highPass(preHighPass.state);
    for (std::int32_t i = 0; i < frames; ++i) {
        const double low = lowPass.process(SubnormalBiquad::stepsOf(block.mono[at(i)]), controls.lowPass);
        const double filtered = highPass.process(low, controls.highPass);
        if (!SubnormalBiquad::inRange(low) || !SubnormalBiquad::inRange(filtered))
            return false;
        block.filteredInput[at(i)] = filtered * kSmallestStep;
    }
    preLowPass.state = lowPass.state();
    preHighPass.state = highPass.state();
    return true;
}

/// Asks the processor to bring near what a tap will read. A hundred taps all over 16 MiB are more streams
/// than it finds out about by itself. Always inlined, and its asking in no function of its own: a compiler
/// sees no effect in either and drops their calls.
[[gnu::always_inline]] inline void DelayEngine::fetchTap(const MemorySpan& span, std::size_t tap) const {
    const TapPath& path = block.tapPath[tap];
    const float swept = controls.interpMode == kWholeSamples ? 0.0f : block.lfoOffset[0];
    // Without a sign, so that a wild time only leads to the wrong place.
    const auto slotAt = [&](std::int32_t frame) {
        return static_cast<std::uint32_t>(span.start + frame) -
               static_cast<std::uint32_t>(trunc(timeAt(path, frame) - swept));
    };
    std::uint32_t slot = slotAt(0);
    std::uint32_t step = kSamplesPerCacheLine;
    std::int32_t lines = span.frames / kSamplesPerCacheLine + 1;
    if (path.times) {
        // Within a sub-block a glide is as good as straight.
        const auto way = static_cast<std::int32_t>(slotAt(span.frames - 1) - slot);
        lines = std::min(span.frames, std::abs(way / kSamplesPerCacheLine) + 2);
        step = static_cast<std::uint32_t>(way / lines);
    } else {
        slot += step; // The first line came with the sub-block before.
    }
    for (std::int32_t line = 0; line < lines; ++line, slot += step)
        __builtin_prefetch(span.samples + (slot & kDelayMask), 0, kIntoSecondCache);
}

/// Adds up all taps in their order; even taps sound left, odd taps right.
void DelayEngine::sumTaps(const MemorySpan& span) {
    block.sumLeft.fill(0.0f);
    block.sumRight.fill(0.0f);
    const std::size_t last = at(controls.numTaps - 1);
    alignas(64) Row row;
    for (std::size_t tap = 0; tap < std::min(kTapsFetchedAhead, last); ++tap)
        fetchTap(span, tap);
    for (std::size_t tap = 0; tap <= last; ++tap) {
        if (tap + kTapsFetchedAhead < last)
            fetchTap(span, tap + kTapsFetchedAhead);
        const float* echo;
        if (tap == 0)
            echo = block.firstTap;
        else if (tap == last)
            echo = block.lastTap;
        else
            echo = readTap(span, tap, row);
        Row& sum = tap % 2 == 0 ? block.sumLeft : block.sumRight;
        kernels->addTap(sum.data(), echo, controls.gain[tap], span.frames);
        delay.tapOut[tap] = echo[span.frames - 1];
    }
    // With an odd count the last pair takes in the entry behind the last tap. Its gain is zero; what it read
    // long ago is heard only if it was no number.
    if (last % 2 == 0) {
        const float stray = delay.tapOut[last + 1] * controls.gain[last + 1];
        for (float& sum : block.sumRight)
            sum += stray;
    }
}

/// A tap's samples for the whole span, in `row` or wherever they stand already.
const float* DelayEngine::readTap(const MemorySpan& span, std::size_t tap, Row& row) const {
    if (const float* const echo = readTapAtOnce(span, tap, row))
        return echo;
    readTapCarefully(span, tap, row);
    return row.data();
}

/// The same, or null for a tap whose samples have to be looked up one by one.
const float* DelayEngine::readTapAtOnce(const MemorySpan& span, std::size_t tap, Row& row) const {
    const TapPath& path = block.tapPath[tap];
    if (controls.interpMode == kWholeSamples)
        return wholeSamples(span, path.time);
    const auto read = controls.interpMode == kLinear ? kernels->readLinear : kernels->readCubic;
    switch (read(span, block.sweep, path, row.data())) {
    case TapRead::done:
        return row.data();
    case TapRead::silence:
        return kSilence.data();
    default:
        return nullptr;
    }
}

void DelayEngine::readTapCarefully(const MemorySpan& span, std::size_t tap, Row& row) const {
    const TapPath& path = block.tapPath[tap];
    const auto readWith = [&](auto reader) {
        for (std::int32_t i = 0; i < span.frames; ++i)
            row[at(i)] = reader.read(MemoryAtFrame{span, i}, timeAt(path, i), block.lfoOffset[at(i)]);
    };
    if (controls.interpMode == kWholeSamples)
        readWith(WholeSampleReader{});
    else if (controls.interpMode == kLinear)
        readWith(LinearReader{});
    else
        readWith(CubicReader{});
}

/// Lifts thin patterns, fades where the taps have jumped, and takes the DC out, left and right side by side.
void DelayEngine::shapeWet(std::int32_t frames, std::int32_t firstFrame, Fade& fade) {
    Row norm;
    for (std::int32_t i = 0; i < frames; ++i)
        norm[at(i)] = controls.wetLevel * fade.next(firstFrame + i);
    float left = dcBlockLeft.state;
    float right = dcBlockRight.state;
    for (std::int32_t i = 0; i < frames; ++i) {
        const float wetLeft = block.sumLeft[at(i)] * norm[at(i)];
        const float wetRight = norm[at(i)] * block.sumRight[at(i)];
        block.wetLeft[at(i)] = Smoother::process(left, wetLeft, controls.dcRadiansLeft);
        block.wetRight[at(i)] = Smoother::process(right, wetRight, controls.dcRadiansRight);
    }
    dcBlockLeft.state = left;
    dcBlockRight.state = right;
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
