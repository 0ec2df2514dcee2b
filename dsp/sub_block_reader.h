// Reads taps from the delay memory over one sub-block, by the fastest way that is right for each.
#pragma once

#include "base/truncation.h"
#include "dsp/control_snapshot.h"
#include "dsp/module_delay.h"
#include "dsp/tap_glides.h"
#include "dsp/tap_kernels.h"
#include "dsp/tap_reader.h"
#include "parameters/parameter_table.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace dsp {

/// All members outlive the sub-block. Audio thread.
struct SubBlockReader {
    const TapKernels& kernels;
    const ControlSnapshot& controls;
    const MemorySpan& span;
    const Sweep& sweep;
    const TapPaths& paths;

    /// A tap's samples for the whole span, in `row` or elsewhere.
    const float* read(std::size_t tap, Row& row) const {
        if (const float* const samples = readAtOnce(tap, row))
            return samples;
        if (controls.interpMode == parameters::kWholeSamples)
            readByFrame<WholeSampleReader>(tap, row);
        else if (controls.interpMode == parameters::kLinear)
            readByFrame<LinearReader>(tap, row);
        else
            readByFrame<CubicReader>(tap, row);
        return row.data();
    }

    /// The same, or null for a tap that has to be read frame by frame.
    const float* readAtOnce(std::size_t tap, Row& row) const {
        if (controls.interpMode == parameters::kWholeSamples)
            return readWholeSamples(tap);
        const bool linear = controls.interpMode == parameters::kLinear;
        switch ((linear ? kernels.readLinear : kernels.readCubic)(span, sweep, paths[tap], row.data())) {
        case TapRead::done:
            return row.data();
        case TapRead::silence:
            return kSilence.data();
        default:
            return nullptr;
        }
    }

    /// Reads a tap in one frame with one of the readers of dsp/tap_reader.h.
    template <class Reader>
    float readFrame(std::size_t tap, std::int32_t frame) const {
        return Reader::read(MemoryAtFrame{span, frame}, timeAt(paths[tap], frame), sweep.lfoOffset[frame]);
    }

    /// Prefetches what a tap will read: a hundred taps are more streams than processors detect. Always
    /// inlined, since compilers see no effect in a function that only prefetches, and drop its calls.
    [[gnu::always_inline]] void prefetch(std::size_t tap) const {
        const TapPath& path = paths[tap];
        const float swept = controls.interpMode == parameters::kWholeSamples ? 0.0f : sweep.lfoOffset[0];
        // Unsigned: a garbage time only mis-prefetches.
        const auto slotAt = [&](std::int32_t frame) {
            return static_cast<std::uint32_t>(span.start + frame) -
                   static_cast<std::uint32_t>(base::trunc(timeAt(path, frame) - swept));
        };
        std::uint32_t slot = slotAt(0);
        std::uint32_t step = kSamplesPerCacheLine;
        std::int32_t lines = span.frames / kSamplesPerCacheLine + 1;
        if (path.times) {
            // Within a sub-block a glide is close to a straight line.
            const auto distance = static_cast<std::int32_t>(slotAt(span.frames - 1) - slot);
            lines = std::min(span.frames, std::abs(distance / kSamplesPerCacheLine) + 2);
            step = static_cast<std::uint32_t>(distance / lines);
        } else {
            slot += step; // The first line came with the sub-block before.
        }
        for (std::int32_t line = 0; line < lines; ++line, slot += step)
            __builtin_prefetch(span.samples + (slot & kDelayMask), 0, kSecondCacheLocality);
    }

  private:
    static constexpr std::int32_t kSamplesPerCacheLine = 16;
    static constexpr int kSecondCacheLocality = 2; ///< the second cache has room for all taps
    static constexpr Row kSilence{};

    static float timeAt(const TapPath& path, std::int32_t frame) {
        return path.times ? path.times[frame] : path.time;
    }

    /// Without interpolation the samples are used in place.
    const float* readWholeSamples(std::size_t tap) const {
        std::int32_t first = span.start + 1 - base::trunc(paths[tap].time);
        if (first < 0)
            first += kDelaySize;
        const std::int32_t last = first + span.frames - 1;
        return isUnwritten(span, first, last) ? kSilence.data() : contiguousSlots(span, first, last, first);
    }

    template <class Reader>
    void readByFrame(std::size_t tap, Row& row) const {
        for (std::int32_t i = 0; i < span.frames; ++i)
            row[static_cast<std::size_t>(i)] = readFrame<Reader>(tap, i);
    }
};

} // namespace dsp
