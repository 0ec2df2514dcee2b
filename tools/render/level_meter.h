// Watches how loud the output gets, and how much of it a file of whole numbers cannot hold.
#pragma once

#include <cstdint>
#include <span>

namespace tools::render {

/// 20 log10 of a linear level; minus infinity for 0.
double decibels(double level);

class LevelMeter {
  public:
    void add(std::span<const float> samples);
    /// Largest magnitude so far, 1.0 being full scale.
    float peak() const { return peak_; }
    /// Samples beyond full scale, each channel counted for itself.
    std::int64_t samplesOver() const { return over_; }

  private:
    float peak_ = 0.0f;
    std::int64_t over_ = 0;
};

} // namespace tools::render
