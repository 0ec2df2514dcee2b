#include "tools/render/level_meter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tools::render {

double decibels(double level) {
    return level > 0.0 ? 20.0 * std::log10(level) : -std::numeric_limits<double>::infinity();
}

void LevelMeter::add(std::span<const float> samples) {
    for (float sample : samples) {
        const float magnitude = std::abs(sample);
        peak_ = std::max(peak_, magnitude);
        over_ += magnitude > 1.0f ? 1 : 0;
    }
}

} // namespace tools::render
