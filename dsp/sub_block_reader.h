// Reads taps from the delay memory over one sub-block, by the fastest way that is right for each.
#pragma once

#include "base/truncation.h"
#include "dsp/control_snapshot.h"
#include "dsp/instruction_set.h"
#include "dsp/module_delay.h"
#include "dsp/tap_reader.h"
#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>

namespace dsp {

/// All members outlive the sub-block. Audio thread.
struct SubBlockReader {
    const TapKernels& kernels;
    const ControlSnapshot& controls;
    const MemorySpan& span;
    const Sweep& sweep;
    const TapPaths& paths;
    const TapPlan& plan;

    /// Samples of each tap for the whole span.
    using TapSamples = std::array<const float*, kMaxTaps>;
    /// Room for taps that are read together, by their numbers modulo kTapsAtOnce.
    using TapRows = std::array<Row, kTapsAtOnce>;

    bool readsWholeSamples() const { return controls.interpMode == parameters::kWholeSamples; }

    /// Reads the taps from `begin` to before `end` between slots. They fit into `rows`. The sub-block must be
    /// written, or all taps be apart.
    void read(std::int32_t begin, std::int32_t end, TapRows& rows, TapSamples& samples) const {
        std::array<std::int32_t, kTapsAtOnce> numbers;
        std::int32_t count = 0;
        for (std::int32_t tap = begin; tap < end; ++tap) {
            const auto index = static_cast<std::size_t>(tap);
            Row& row = rows[index % kTapsAtOnce];
            const TapPlace place = plan.places[index];
            samples[index] = row.data();
            if (place == TapPlace::unclear)
                samples[index] = read(index, row);
            else if (place == TapPlace::unwritten)
                samples[index] = kSilence.data();
            else
                numbers[static_cast<std::size_t>(count++)] = tap;
        }
        interpolation().readTaps(span, sweep, paths, plan, numbers.data(), count, controls.numTaps,
                                 rows.data());
    }

    /// The same in whole samples, which are used in place but for those of unclear taps.
    void readWholeSamples(std::int32_t begin, std::int32_t end, TapRows& rows, TapSamples& samples) const {
        for (std::int32_t tap = begin; tap < end; ++tap) {
            const auto index = static_cast<std::size_t>(tap);
            const TapPlace place = plan.places[index];
            if (place == TapPlace::unclear)
                samples[index] = read(index, rows[index % kTapsAtOnce]);
            else if (place == TapPlace::unwritten)
                samples[index] = kSilence.data();
            else
                samples[index] = span.samples + plan.firstSlots[index];
        }
    }

    /// One tap, whatever its place, in `row` or elsewhere.
    const float* read(std::size_t tap, Row& row) const {
        if (const float* const samples = readAtOnce(tap, row))
            return samples;
        if (readsWholeSamples())
            readByFrame<WholeSampleReader>(tap, row);
        else if (controls.interpMode == parameters::kLinear)
            readByFrame<LinearReader>(tap, row);
        else
            readByFrame<CubicReader>(tap, row);
        return row.data();
    }

    /// The same, or null for a tap that has to be read frame by frame.
    const float* readAtOnce(std::size_t tap, Row& row) const {
        if (readsWholeSamples())
            return readWholeSamples(tap);
        switch (interpolation().readTap(span, sweep, paths, static_cast<std::int32_t>(tap), row.data())) {
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
        const float* const times = paths.times[tap];
        return Reader::read(MemoryAtFrame{span, frame}, times ? times[frame] : paths.firstTimes[tap],
                            sweep.lfoOffset[frame]);
    }

  private:
    static constexpr Row kSilence{};

    const TapKernels::Interpolation& interpolation() const {
        return controls.interpMode == parameters::kLinear ? kernels.linear : kernels.cubic;
    }

    const float* readWholeSamples(std::size_t tap) const {
        std::int32_t first = span.start + 1 - base::trunc(paths.firstTimes[tap]);
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
