// The three ways to read one tap for one frame, at any position. The kernels (dsp/tap_kernels.h) do the same
// for whole sub-blocks where no slot needs care.
//
// `Memory` is MemoryAtFrame or MemoryNow. The linear and the whole-sample reader skip slot 0 where they wrap;
// existing projects sound that way.
#pragma once

#include "base/truncation.h"
#include "dsp/interpolation.h"
#include "dsp/module_delay.h"

namespace dsp {

/// A read position in slots. Single precision, so long delays move on a coarser grid.
template <class Memory>
float readPosition(const Memory& memory, float time, float lfoOffset) {
    const float p = static_cast<float>(memory.writeIndex()) - time + lfoOffset;
    return p < 0.0f ? p + static_cast<float>(kDelaySize) : p;
}

/// Four points, Catmull-Rom.
struct CubicReader {
    template <class Memory>
    static float read(const Memory& memory, float time, float lfoOffset) {
        const float p = readPosition(memory, time, lfoOffset);
        const std::int32_t whole = base::trunc(p);
        const float f = p - static_cast<float>(whole);
        const auto i = static_cast<std::uint32_t>(whole);
        return cubic({memory.at(i - 1), memory.at(i), memory.at(i + 1), memory.at(i + 2)}, f);
    }
};

/// Two points. A position that is still negative after wrapping is wrapped again in whole slots only, which
/// leaves a fraction of about minus the memory's length: the tap is very loud for as long as that lasts.
struct LinearReader {
    template <class Memory>
    static float read(const Memory& memory, float time, float lfoOffset) {
        const float p = readPosition(memory, time, lfoOffset);
        std::int32_t i = base::trunc(p);
        if (i < 0)
            i += kDelaySize;
        const float f = p - static_cast<float>(i);
        const std::int32_t first = i <= kDelaySize - 1 ? i : i - (kDelaySize - 1);
        const std::int32_t second = i + 1 <= kDelaySize - 1 ? i + 1 : i - (kDelaySize - 2);
        const float s1 = memory.at(static_cast<std::uint32_t>(first));
        const float s2 = memory.at(static_cast<std::uint32_t>(second));
        return linear({0.0f, s1, s2, 0.0f}, f);
    }
};

/// A whole slot; the sweep has no effect.
struct WholeSampleReader {
    template <class Memory>
    static float read(const Memory& memory, float time, float) {
        std::int32_t i = memory.writeIndex() - base::trunc(time);
        if (i < 0)
            i += kDelaySize;
        if (i > kDelaySize - 1)
            i -= kDelaySize - 1;
        return memory.at(static_cast<std::uint32_t>(i));
    }
};

} // namespace dsp
