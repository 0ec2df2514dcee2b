#include "tools/bank/probe_signals.h"

#include "tools/bank/bank_program.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <sndfile.h>

namespace bank {
namespace {

constexpr double kRate = kAuditionRate;
constexpr double kPassageSeconds = 8.0;

std::size_t samplesIn(double seconds) {
    return static_cast<std::size_t>(seconds * kRate);
}

/// White noise in -1..1 that never changes from one machine to the next.
class Noise {
  public:
    double next() {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<double>(state_ >> 8) / 8388608.0 - 1.0;
    }

  private:
    std::uint32_t state_ = 1;
};

Signal atFullScale(const std::vector<double>& samples) {
    double peak = 0.0;
    for (const double sample : samples)
        peak = std::max(peak, std::abs(sample));
    Signal signal(samples.size());
    std::transform(samples.begin(), samples.end(), signal.begin(),
                   [peak](double sample) { return static_cast<float>(sample / peak); });
    return signal;
}

/// A tone that falls by `fall` Hz to `hertz`, and dies away by a factor of e in `seconds`.
std::vector<double> fallingTone(double hertz, double fall, double seconds, double length) {
    std::vector<double> samples(samplesIn(length));
    double phase = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        phase += 2.0 * std::numbers::pi * (hertz + fall * std::exp(-t / 0.015)) / kRate;
        samples[i] = std::sin(phase) * std::exp(-t / seconds);
    }
    return samples;
}

std::vector<double> drum() {
    std::vector<double> samples = fallingTone(190.0, 120.0, 0.07, 0.5);
    Noise noise;
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] += 0.6 * noise.next() * std::exp(-static_cast<double>(i) / kRate / 0.05);
    return samples;
}

/// Differences of noise samples: little is left but the highest octaves.
std::vector<double> hiHat() {
    std::vector<double> samples(samplesIn(0.15));
    Noise noise;
    double last = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double now = noise.next();
        samples[i] = 0.5 * (now - last) * std::exp(-static_cast<double>(i) / kRate / 0.03);
        last = now;
    }
    return samples;
}

/// Adds a sound to `mix`, as far as that goes.
void addAt(std::vector<double>& mix, double seconds, const std::vector<double>& sound, double gain) {
    const std::size_t start = samplesIn(seconds);
    for (std::size_t i = 0; i < sound.size() && start + i < mix.size(); ++i)
        mix[start + i] += gain * sound[i];
}

std::vector<double> plucked(double hertz, double seconds) {
    // A delay line as long as one period, filled with noise, that loses a little of its highs at each pass.
    const std::size_t period = samplesIn(1.0 / hertz);
    std::vector<double> line(period);
    Noise noise;
    for (double& sample : line)
        sample = noise.next();
    std::vector<double> samples(samplesIn(seconds));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        double& oldest = line[i % period];
        samples[i] = oldest;
        oldest = 0.997 * (0.5 * oldest + 0.5 * line[(i + 1) % period]);
    }
    const std::size_t release = samplesIn(0.1);
    for (std::size_t i = 0; i < release; ++i)
        samples[samples.size() - 1 - i] *= static_cast<double>(i) / static_cast<double>(release);
    return samples;
}

} // namespace

Signal drumHit() {
    return atFullScale(drum());
}

Signal drumBars() {
    std::vector<double> mix(samplesIn(kPassageSeconds));
    const std::vector<double> bass = fallingTone(52.0, 130.0, 0.12, 0.6);
    const std::vector<double> snare = drum();
    const std::vector<double> hat = hiHat();
    constexpr double beat = 0.5;
    for (int eighth = 0; eighth < 32; ++eighth) {
        const double seconds = eighth * beat / 2.0;
        addAt(mix, seconds, hat, 0.35);
        if (eighth % 4 == 0)
            addAt(mix, seconds, bass, 1.0);
        if (eighth % 4 == 2)
            addAt(mix, seconds, snare, 0.8);
    }
    return atFullScale(mix);
}

Signal pluckedString() {
    return atFullScale(plucked(147.0, 3.0));
}

Signal pluckedPhrase() {
    std::vector<double> mix(samplesIn(kPassageSeconds));
    // D minor: a broken chord up and down, and its fourth degree.
    constexpr double notes[] = {147.0, 175.0, 220.0, 294.0, 220.0, 175.0, 147.0, 110.0,
                                196.0, 233.0, 294.0, 233.0, 220.0, 175.0, 165.0, 147.0};
    for (std::size_t i = 0; i < std::size(notes); ++i)
        addAt(mix, 0.5 * static_cast<double>(i), plucked(notes[i], 1.5), 1.0);
    return atFullScale(mix);
}

Signal repeatedSpeech(const Signal& speech) {
    Signal passage(samplesIn(kPassageSeconds));
    const std::size_t period = samplesIn(2.0);
    for (std::size_t i = 0; i < passage.size(); ++i)
        passage[i] = i % period < speech.size() ? speech[i % period] : 0.0f;
    return passage;
}

Signal recording(const std::string& path) {
    SF_INFO info{};
    const std::unique_ptr<SNDFILE, int (*)(SNDFILE*)> file(sf_open(path.c_str(), SFM_READ, &info), sf_close);
    if (!file)
        throw BankError(path + ": " + sf_strerror(nullptr));
    if (info.channels != 1 || info.samplerate != kAuditionRate)
        throw BankError(path + ": must be mono at " + std::to_string(kAuditionRate) + " Hz");
    std::vector<double> samples(static_cast<std::size_t>(info.frames));
    const sf_count_t got = sf_read_double(file.get(), samples.data(), info.frames);
    samples.resize(static_cast<std::size_t>(got));
    return atFullScale(samples);
}

Signal click() {
    return {1.0f};
}

Signal sustained(double seconds) {
    std::vector<double> samples(samplesIn(seconds));
    Noise noise;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double cycles = static_cast<double>(i) * 110.0 / kRate;
        const double saw = 2.0 * (cycles - std::floor(cycles)) - 1.0;
        samples[i] = saw + 0.3 * noise.next();
    }
    return atFullScale(samples);
}

} // namespace bank
