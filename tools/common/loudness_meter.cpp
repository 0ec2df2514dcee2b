#include "tools/common/loudness_meter.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ebur128.h>
#include <limits>
#include <mutex>
#include <new>
#include <shared_mutex>

namespace tools {

namespace {

constexpr double kShortestRange = 3.0;

/// The library writes its tables each time that a measurement starts, always with the same numbers. No other
/// thread may read them in that moment.
std::shared_mutex& tables() {
    static std::shared_mutex mutex;
    return mutex;
}

double decibels(double level) {
    return level > 0.0 ? 20.0 * std::log10(level) : -std::numeric_limits<double>::infinity();
}

struct StateDeleter {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};

using State = std::unique_ptr<ebur128_state, StateDeleter>;

State startedState(int channels, int sampleRate, LoudnessMeter::Extent extent) {
    int mode = EBUR128_MODE_I | EBUR128_MODE_LRA;
    if (extent == LoudnessMeter::Extent::loudnessAndTruePeak)
        mode |= EBUR128_MODE_TRUE_PEAK;
    const std::unique_lock lock(tables());
    State state(ebur128_init(static_cast<unsigned>(channels), static_cast<unsigned long>(sampleRate), mode));
    if (!state)
        throw std::bad_alloc();
    return state;
}

} // namespace

struct LoudnessMeter::Measurement {
    State state; ///< none below kLowestRate
    int channels = 0;
    int sampleRate = 0;
    bool hasTruePeak = false;
    std::int64_t frames = 0;
    float peak = 0.0f;

    bool lasts(double seconds) const { return static_cast<double>(frames) >= seconds * sampleRate; }
};

LoudnessMeter::LoudnessMeter(int channels, int sampleRate, Extent extent)
    : measurement_(std::make_unique<Measurement>()) {
    measurement_->channels = channels;
    measurement_->sampleRate = sampleRate;
    if (sampleRate < kLowestRate)
        return;
    measurement_->state = startedState(channels, sampleRate, extent);
    measurement_->hasTruePeak = extent == Extent::loudnessAndTruePeak;
}

LoudnessMeter::~LoudnessMeter() = default;
LoudnessMeter::LoudnessMeter(LoudnessMeter&&) noexcept = default;
LoudnessMeter& LoudnessMeter::operator=(LoudnessMeter&&) noexcept = default;

void LoudnessMeter::add(std::span<const float> samples) {
    const std::size_t frames = samples.size() / static_cast<std::size_t>(measurement_->channels);
    measurement_->frames += static_cast<std::int64_t>(frames);
    for (const float sample : samples)
        measurement_->peak = std::max(measurement_->peak, std::abs(sample));
    if (!measurement_->state)
        return;
    const std::shared_lock lock(tables());
    if (ebur128_add_frames_float(measurement_->state.get(), samples.data(), frames) != EBUR128_SUCCESS)
        throw std::bad_alloc();
}

std::optional<double> LoudnessMeter::integrated() const {
    if (!measurement_->state || !measurement_->lasts(kShortest))
        return std::nullopt;
    const std::shared_lock lock(tables());
    double loudness = 0.0;
    if (ebur128_loudness_global(measurement_->state.get(), &loudness) != EBUR128_SUCCESS ||
        !std::isfinite(loudness))
        return std::nullopt;
    return loudness;
}

std::optional<double> LoudnessMeter::range() const {
    if (!measurement_->lasts(kShortestRange) || !integrated())
        return std::nullopt;
    const std::shared_lock lock(tables());
    double range = 0.0;
    if (ebur128_loudness_range(measurement_->state.get(), &range) != EBUR128_SUCCESS)
        throw std::bad_alloc();
    return range;
}

std::optional<double> LoudnessMeter::truePeak() const {
    if (!measurement_->hasTruePeak)
        return std::nullopt;
    double highest = 0.0;
    for (int channel = 0; channel < measurement_->channels; ++channel) {
        double peak = 0.0;
        ebur128_true_peak(measurement_->state.get(), static_cast<unsigned>(channel), &peak);
        highest = std::max(highest, peak);
    }
    return decibels(highest);
}

double LoudnessMeter::samplePeak() const {
    return decibels(static_cast<double>(measurement_->peak));
}

} // namespace tools
