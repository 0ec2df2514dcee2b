// The outline of a sound of any length, for drawing: the lowest and highest sample of each of a few thousand
// stretches.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tools::render {

/// Extremes of the samples of one stretch, of the left and of the right channel.
struct Extremes {
    float lowest[2] = {0.0f, 0.0f};
    float highest[2] = {0.0f, 0.0f};
};

class Waveform {
  public:
    /// Appends frames x channels, interleaved; one channel counts as both.
    void add(std::span<const float> samples, int channels);

    std::int64_t frames() const { return frames_; }
    /// Extremes of the frames from `first` up to but not `last`, as finely as they are kept.
    Extremes between(double first, double last) const;
    float peak() const;
    /// Where the last stretch that reaches `level` ends, in frames; 0 if none does.
    std::int64_t lastReaching(float level) const;

  private:
    void halve();

    static constexpr std::size_t kMostStretches = 1 << 15;
    std::vector<Extremes> stretches_;
    std::int64_t framesEach_ = 1;
    std::int64_t frames_ = 0;
};

} // namespace tools::render
