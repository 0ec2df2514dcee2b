// The three ways to read a tap from the delay memory, for one sample and any position. The loops of
// dsp/tap_kernels.cpp do the same for many samples where nothing can go wrong.
//
// Each reader is a small function object, so that the loop over the taps is compiled once for each way and
// asks nothing inside. The wraps of the linear and the whole-sample reader skip slot 0 at the end of the
// memory; that is how this echo sounds, and projects rely on it.
#pragma once

#include "base/truncation.h"
#include "dsp/module_delay.h"

namespace dsp {

/// A read position in samples: single precision, so that long delays move on a coarser grid.
inline float readPosition(const MemoryMoment& memory, float time, float lfoOffset) {
    const float p = static_cast<float>(memory.writeIndex()) - time + lfoOffset;
    return p < 0.0f ? p + 4194304.0f : p;
}

/// Four points, Catmull-Rom.
struct CubicReader {
    static float read(const MemoryMoment& memory, float time, float lfoOffset) {
        const float p = readPosition(memory, time, lfoOffset);
        const std::int32_t whole = base::trunc(p);
        const float f = p - static_cast<float>(whole);
        const auto i = static_cast<std::uint32_t>(whole);
        const float s0 = memory.at(i - 1);
        const float s1 = memory.at(i);
        const float s2 = memory.at(i + 1);
        const float h = memory.at(i + 2) * 0.5f;
        return (((s2 + s2 + s0 - (s1 * 2.5f + h)) + (((s1 - s2) * 3.0f - s0) * 0.5f + h) * f) * f +
                (s2 - s0) * 0.5f) *
                   f +
               s1;
    }
};

/// Two points. A position that is still negative after one turn of the memory is turned once more in whole
/// samples only, which leaves a huge fraction: the tap roars for as long as that lasts.
struct LinearReader {
    static float read(const MemoryMoment& memory, float time, float lfoOffset) {
        const float p = readPosition(memory, time, lfoOffset);
        std::int32_t i = base::trunc(p);
        if (i < 0)
            i += kDelaySize;
        const float f = p - static_cast<float>(i);
        const std::int32_t first = i <= kDelaySize - 1 ? i : i - (kDelaySize - 1);
        const std::int32_t second = i + 1 <= kDelaySize - 1 ? i + 1 : i - (kDelaySize - 2);
        const float s1 = memory.at(static_cast<std::uint32_t>(first));
        const float s2 = memory.at(static_cast<std::uint32_t>(second));
        return (s2 - s1) * f + s1;
    }
};

/// The nearest whole sample, untouched by the sweep.
struct WholeSampleReader {
    static float read(const MemoryMoment& memory, float time, float) {
        std::int32_t i = memory.writeIndex() - base::trunc(time);
        if (i < 0)
            i += kDelaySize;
        if (i > kDelaySize - 1)
            i -= kDelaySize - 1;
        return memory.at(static_cast<std::uint32_t>(i));
    }
};

} // namespace dsp
