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

} // namespace

Signal drumHit() {
    std::vector<double> samples(samplesIn(0.5));
    Noise noise;
    double phase = 0.0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double t = static_cast<double>(i) / kRate;
        phase += 2.0 * std::numbers::pi * (190.0 + 120.0 * std::exp(-t / 0.015)) / kRate;
        samples[i] = std::sin(phase) * std::exp(-t / 0.07) + 0.6 * noise.next() * std::exp(-t / 0.05);
    }
    return atFullScale(samples);
}

Signal pluckedString() {
    // A delay line as long as one period, filled with noise, that loses a little of its highs at each pass.
    const std::size_t period = samplesIn(1.0 / 147.0);
    std::vector<double> line(period);
    Noise noise;
    for (double& sample : line)
        sample = noise.next();
    std::vector<double> samples(samplesIn(3.0));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        double& oldest = line[i % period];
        samples[i] = oldest;
        oldest = 0.997 * (0.5 * oldest + 0.5 * line[(i + 1) % period]);
    }
    const std::size_t release = samplesIn(0.1);
    for (std::size_t i = 0; i < release; ++i)
        samples[samples.size() - 1 - i] *= static_cast<double>(i) / static_cast<double>(release);
    return atFullScale(samples);
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
