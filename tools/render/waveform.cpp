#include "tools/render/waveform.h"

#include <algorithm>
#include <cmath>

namespace tools::render {

namespace {

void widen(Extremes& extremes, const Extremes& by) {
    for (int side = 0; side < 2; ++side) {
        extremes.lowest[side] = std::min(extremes.lowest[side], by.lowest[side]);
        extremes.highest[side] = std::max(extremes.highest[side], by.highest[side]);
    }
}

float peakOf(const Extremes& extremes) {
    return std::max({-extremes.lowest[0], -extremes.lowest[1], extremes.highest[0], extremes.highest[1]});
}

} // namespace

void Waveform::add(std::span<const float> samples, int channels) {
    const auto width = static_cast<std::size_t>(channels);
    for (std::size_t i = 0; i + width <= samples.size(); i += width, ++frames_) {
        const float left = samples[i];
        const float right = samples[i + width - 1];
        const Extremes frame{{left, right}, {left, right}};
        if (frames_ % framesEach_ != 0) {
            widen(stretches_.back(), frame);
            continue;
        }
        if (stretches_.size() == kMostStretches)
            halve();
        if (frames_ % framesEach_ == 0)
            stretches_.push_back(frame);
        else
            widen(stretches_.back(), frame);
    }
}

Extremes Waveform::between(double first, double last) const {
    const auto each = static_cast<double>(framesEach_);
    const auto count = static_cast<std::int64_t>(stretches_.size());
    const auto from = std::clamp<std::int64_t>(static_cast<std::int64_t>(std::floor(first / each)), 0, count);
    const auto to = std::clamp<std::int64_t>(static_cast<std::int64_t>(std::ceil(last / each)), 0, count);
    if (from >= to)
        return {};
    Extremes result = stretches_[static_cast<std::size_t>(from)];
    for (auto i = from + 1; i < to; ++i)
        widen(result, stretches_[static_cast<std::size_t>(i)]);
    return result;
}

float Waveform::peak() const {
    float peak = 0.0f;
    for (const Extremes& stretch : stretches_)
        peak = std::max(peak, peakOf(stretch));
    return peak;
}

std::int64_t Waveform::lastReaching(float level) const {
    for (std::size_t i = stretches_.size(); i > 0; --i)
        if (peakOf(stretches_[i - 1]) >= level)
            return std::min(static_cast<std::int64_t>(i) * framesEach_, frames_);
    return 0;
}

void Waveform::halve() {
    for (std::size_t i = 0; i < stretches_.size() / 2; ++i) {
        stretches_[i] = stretches_[2 * i];
        widen(stretches_[i], stretches_[2 * i + 1]);
    }
    stretches_.resize(stretches_.size() / 2);
    framesEach_ *= 2;
}

} // namespace tools::render
