#include "tools/bank/audition.h"

#include "parameters/pattern_laws.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace bank {

using namespace parameters;

namespace {

constexpr std::int32_t kBlockSize = 512;
/// Gliding taps and smoothed parameters close in by a factor of e in about 8300 samples.
constexpr double kSettlingSeconds = 4.0;
constexpr double kPassageSeconds = 0.4;

std::size_t framesIn(double seconds) {
    return static_cast<std::size_t>(seconds * kAuditionRate);
}

double rms(double energy, std::size_t frames) {
    return frames ? std::sqrt(energy / static_cast<double>(frames)) : 0.0;
}

double squared(float sample) {
    return static_cast<double>(sample) * static_cast<double>(sample);
}

/// By how much per sample the slowest part of the echoes decays: the root of
/// 1 = gain * (r^-first + r^-last), the case where both taps come back in step.
double slowestDecay(double gain, double first, double last) {
    double low = 0.5;
    double high = 1.0;
    for (int i = 0; i < 200; ++i) {
        const double r = 0.5 * (low + high);
        const double excess = gain * (std::pow(r, -first) + std::pow(r, -last)) - 1.0;
        (excess > 0.0 ? low : high) = r;
    }
    return high;
}

} // namespace

StereoSignal Audition::play(std::size_t program, const Signal& input, double seconds,
                            Listening listening) const {
    std::unique_lock making(making_);
    host::Plugin plugin(library_);
    if (!chunk_.empty())
        plugin.setChunk(chunk_, false);
    making.unlock();
    plugin.start(kAuditionRate, kBlockSize);
    plugin.setProgram(static_cast<std::int32_t>(program));
    if (listening == Listening::wetOnly)
        plugin.setParameter(kDryWet, 1.0f);

    const auto play = [&](const Signal& mono) {
        StereoSignal output{Signal(mono.size()), Signal(mono.size())};
        plugin.processStereo(mono.data(), mono.data(), output.left.data(), output.right.data(),
                             static_cast<std::int64_t>(mono.size()), kBlockSize);
        return output;
    };
    play(Signal(framesIn(kSettlingSeconds)));
    Signal padded = input;
    padded.resize(framesIn(seconds));
    StereoSignal output = play(padded);
    making.lock();
    return output;
}

std::vector<std::uint8_t> Audition::chunk() const {
    const std::lock_guard making(making_);
    host::Plugin plugin(library_);
    return plugin.getChunk(false);
}

dsp::TapPattern patternOf(const BankProgram& program) {
    dsp::TapPattern pattern;
    dsp::computeTaps(pattern,
                     {program.value(kBaseLength), program.value(kTaps), program.value(kStretch),
                      std::min(program.value(kAmpDecay), kMostAmpDecay), program.value(kCurve)},
                     static_cast<float>(kAuditionRate));
    return pattern;
}

double sweepSamples(const BankProgram& program) {
    if (interpolationModeOf(program.value(kSet)) == kWholeSamples)
        return 0.0;
    return 200.0 * static_cast<double>(program.value(kLfoDepth));
}

FeedbackTail feedbackTail(const BankProgram& program) {
    const dsp::TapPattern pattern = patternOf(program);
    const auto lastTap = static_cast<std::size_t>(pattern.numTaps.load() - 1);
    const double gain = feedbackFactorOf(program.value(kFeedback));
    constexpr double kInaudible = 1e-3;
    if (std::abs(gain) < kInaudible)
        return {gain, 0.0};
    const double first = static_cast<double>(pattern.tapTimeTarget[0].load()) + sweepSamples(program);
    const double last = static_cast<double>(pattern.tapTimeTarget[lastTap].load()) + sweepSamples(program);
    const double r = slowestDecay(std::abs(gain), first, last);
    return {gain, std::log(1e-3) / std::log(r) / kAuditionRate};
}

double patternSeconds(const dsp::TapPattern& pattern) {
    double last = 0.0;
    for (std::size_t tap = 0; tap < static_cast<std::size_t>(pattern.numTaps.load()); ++tap)
        if (pattern.tapGain[tap].load() > 0.0f)
            last = static_cast<double>(pattern.tapTimeTarget[tap].load());
    return last / kAuditionRate;
}

double decibels(double amplitude) {
    return 20.0 * std::log10(std::max(amplitude, 1e-10));
}

double peakOf(const StereoSignal& signal) {
    float peak = 0.0f;
    for (const Signal* channel : {&signal.left, &signal.right})
        for (const float sample : *channel)
            peak = std::max(peak, std::abs(sample));
    return static_cast<double>(peak);
}

bool isFinite(const StereoSignal& signal) {
    const auto finite = [](float sample) { return std::isfinite(sample); };
    return std::all_of(signal.left.begin(), signal.left.end(), finite) &&
           std::all_of(signal.right.begin(), signal.right.end(), finite);
}

double energyOf(const StereoSignal& signal, std::size_t from) {
    double energy = 0.0;
    for (std::size_t i = from; i < signal.frames(); ++i)
        energy += squared(signal.left[i]) + squared(signal.right[i]);
    return energy / 2.0;
}

double energyOf(const Signal& signal) {
    double energy = 0.0;
    for (const float sample : signal)
        energy += squared(sample);
    return energy;
}

double loudestPassage(const StereoSignal& signal) {
    const std::size_t length = std::min(framesIn(kPassageSeconds), signal.frames());
    double energy = 0.0;
    double loudest = 0.0;
    for (std::size_t i = 0; i < signal.frames(); ++i) {
        energy += (squared(signal.left[i]) + squared(signal.right[i])) / 2.0;
        if (i >= length)
            energy -= (squared(signal.left[i - length]) + squared(signal.right[i - length])) / 2.0;
        loudest = std::max(loudest, energy);
    }
    return rms(loudest, length);
}

double loudestPassage(const Signal& signal) {
    return loudestPassage(StereoSignal{signal, signal});
}

double correlation(const StereoSignal& signal) {
    double left = 0.0;
    double right = 0.0;
    double both = 0.0;
    for (std::size_t i = 0; i < signal.frames(); ++i) {
        left += squared(signal.left[i]);
        right += squared(signal.right[i]);
        both += static_cast<double>(signal.left[i]) * static_cast<double>(signal.right[i]);
    }
    const double scale = std::sqrt(left * right);
    return scale > 0.0 ? both / scale : 0.0;
}

double secondsToFall(const StereoSignal& signal, double fall) {
    const double threshold = energyOf(signal) * std::pow(10.0, -fall / 10.0);
    double remaining = 0.0;
    for (std::size_t i = signal.frames(); i-- > 0;) {
        remaining += (squared(signal.left[i]) + squared(signal.right[i])) / 2.0;
        if (remaining > threshold)
            return static_cast<double>(i + 1) / kAuditionRate;
    }
    return 0.0;
}

} // namespace bank
