// The delay memory: one mono signal of 4194304 samples that every tap reads. 95 seconds at 44100 Hz.
//
// Clearing takes constant time: slots that have not been written since the last clearing read as zero, so 16
// MiB are never wiped.
//
// The memory is written a sub-block at a time and then read, tap by tap. The samples that a sub-block evicts
// are kept until the next one, so that each tap can be read as the memory was at any frame.
#pragma once

#include "dsp/memory_span.h"
#include "parameters/pattern_laws.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace dsp {

constexpr std::uint32_t kDelayMask = kDelaySize - 1;

/// Audio thread.
struct ModuleDelay {
    std::int32_t writeIndex = 0; ///< next slot to write
    std::int32_t written = 0;    ///< slots below this one hold signal, those above count as zero
    std::array<float, parameters::kMaxTaps> tapOut{};       ///< what each tap read last
    float lfoOffset = 0.0f;                                 ///< read offset in samples, zero or negative
    alignas(64) Row writePositions{};                       ///< of the sub-block
    alignas(64) std::array<float, kEvictedSlots> evicted{}; ///< samples that it overwrites
    /// Slots from `written` on are never read.
    alignas(64) std::array<float, kDelaySize> samples;

    /// Touches each page of the memory, so that the audio thread takes no page fault.
    ModuleDelay() {
        constexpr std::size_t samplesPerPage = 4096 / sizeof(float);
        for (std::size_t i = 0; i < kDelaySize; i += samplesPerPage)
            samples[i] = 0.0f;
        samples.back() = 0.0f;
    }

    /// Forgets every echo and starts at the first slot again.
    void clearDelayMemory() {
        writeIndex = 0;
        written = 0;
        tapOut.fill(0.0f);
        lfoOffset = 0.0f;
    }

    /// Frames until the memory wraps, the limit of a sub-block.
    std::int32_t slotsLeft() const { return kDelaySize - writeIndex; }

    /// Writes one frame.
    void write(float sample) {
        samples[static_cast<std::size_t>(writeIndex)] = sample;
        writeIndex += 1;
        written = std::max(written, writeIndex);
        if (writeIndex > kDelaySize - 1)
            writeIndex = 0;
    }

    /// The span of the next `frames` frames; keeps what they will evict.
    MemorySpan beginSpan(std::int32_t frames) {
        const std::int32_t kept = std::clamp(written - writeIndex, 0, kEvictedSlots);
        const auto next = std::copy_n(samples.begin() + writeIndex, kept, evicted.begin());
        std::fill(next, evicted.end(), 0.0f);
        for (std::int32_t i = 0; i < kSubBlockFrames; ++i)
            writePositions[static_cast<std::size_t>(i)] = static_cast<float>(writeIndex + i + 1);
        if (frames == slotsLeft())
            writePositions[static_cast<std::size_t>(frames - 1)] = 0.0f;
        return {samples.data(), written, writeIndex, frames, writePositions.data(), evicted.data(), true};
    }

    /// Moves past the span, all of whose frames are written now.
    void endSpan(MemorySpan& span) {
        writeIndex += span.frames;
        written = std::max(written, writeIndex);
        if (writeIndex > kDelaySize - 1)
            writeIndex = 0;
        span.written = written;
        span.ahead = false;
    }
};

/// The memory as it is right after one frame of a sub-block has been written.
struct MemoryAtFrame {
    const MemorySpan& span;
    std::int32_t frame;

    /// The slot of the next frame.
    std::int32_t writeIndex() const {
        const std::int32_t next = span.start + frame + 1;
        return next > kDelaySize - 1 ? 0 : next;
    }

    /// The sample of a slot; `slot` is wrapped into the memory.
    float at(std::uint32_t slot) const {
        slot &= kDelayMask;
        const std::uint32_t place = slot - static_cast<std::uint32_t>(span.start);
        if (place < static_cast<std::uint32_t>(span.frames))
            return place <= static_cast<std::uint32_t>(frame) ? span.samples[slot] : span.evicted[place];
        return slot < static_cast<std::uint32_t>(span.written) ? span.samples[slot] : 0.0f;
    }
};

/// The memory as it is now.
struct MemoryNow {
    const ModuleDelay& delay;

    std::int32_t writeIndex() const { return delay.writeIndex; }

    /// The sample of a slot; `slot` is wrapped into the memory.
    float at(std::uint32_t slot) const {
        slot &= kDelayMask;
        return slot < static_cast<std::uint32_t>(delay.written) ? delay.samples[slot] : 0.0f;
    }
};

} // namespace dsp
