// What no way of building the effect gets around, done alone: the sample-by-sample work that waits for its
// own last result, and the fetching of what the taps read.
#pragma once

#include "bench/contest.h"

#include <array>
#include <cstdint>
#include <vector>

namespace bench {

/// The filters, the feedback's low-pass, the sweep's phase and the removal of DC, all in one loop, so that
/// the processor can do what waits in one while it waits in another.
class SerialWork {
  public:
    SerialWork();
    Contestant contestant();

  private:
    struct Filter {
        float b0, b1, b2, a1, a2;
        float y1 = 0, y2 = 0, x1 = 0, x2 = 0;
        float process(float x);
    };

    double playBatch();
    float step(float input);

    Filter lowPass_, highPass_;
    double feedbackLow_ = 0.0;
    float phase_ = 0.0f, dcLeft_ = 0.0f, dcRight_ = 0.0f;
    std::vector<float> samples_;
};

/// Touches each cache line that 128 taps over 16 MiB read, once, and does nothing with it. The memory is kept
/// as the effect keeps its own.
class LineFetching {
  public:
    LineFetching();
    ~LineFetching();
    LineFetching(const LineFetching&) = delete;
    LineFetching& operator=(const LineFetching&) = delete;
    Contestant contestant();

  private:
    double playBatch();

    float* memory_;
    std::uint32_t writeIndex_ = 0;
    std::array<float, 4> sums_{};
};

} // namespace bench
