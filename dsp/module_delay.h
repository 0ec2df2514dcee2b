// The delay memory: one mono signal of 4194304 samples that every tap reads. 95 seconds at 44100 Hz.
//
// Clearing is a request that the audio thread carries out before its next sample. It costs the same whether
// the memory is full or empty: slots that have not been written since the last clearing read as zero, so
// nothing has to be wiped, and a change of program in the middle of a concert never stalls a thread for 16
// MiB.
//
// The memory is written a sub-block at a time and read afterwards, tap by tap. What a sub-block overwrites is
// kept until the next one, so that each tap can be read as the memory stood at any of its samples.
#pragma once

#include "base/shared.h"
#include "dsp/tap_kernels.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace dsp {

constexpr std::int32_t kDelaySize = kMemorySlots;
constexpr std::uint32_t kDelayMask = kDelaySize - 1;
constexpr std::int32_t kMaxTaps = 128;

/// The signals of one sub-block, a sample each.
using Row = std::array<float, kSubBlockFrames>;

struct ModuleDelay {
    std::int32_t writeIndex = 0; ///< next slot to write; audio thread
    std::int32_t written = 0; ///< slots below this one hold signal, those above count as zero; audio thread
    std::array<float, kMaxTaps> tapOut{};      ///< what each tap read last; audio thread
    float lfoOffset = 0.0f;                    ///< read offset in samples, zero or negative; audio thread
    base::Shared<std::int32_t> interpMode = 1; ///< 0 cubic, 1 linear, 2 none
    base::Shared<bool> clearRequested;
    alignas(64) Row writePositions{};                           ///< of the sub-block; audio thread
    alignas(64) std::array<float, kOvertakenSlots> overtaken{}; ///< what it overwrites; audio thread
    /// Holds anything until it is written, since nothing is read before.
    alignas(64) std::array<float, kDelaySize> samples;

    /// Touches each page of the memory once, so that the audio thread never waits for one.
    ModuleDelay() {
        constexpr std::size_t samplesPerPage = 4096 / sizeof(float);
        for (std::size_t i = 0; i < kDelaySize; i += samplesPerPage)
            samples[i] = 0.0f;
        samples.back() = 0.0f;
    }

    /// Forgets every echo and starts at the first slot again, from the next sample on. Any thread.
    void clearDelayMemory() { clearRequested.store(true); }

    /// Carries out what clearDelayMemory asked for. Audio thread.
    void serveClearRequest() {
        if (!clearRequested.load())
            return;
        clearRequested.store(false);
        writeIndex = 0;
        written = 0;
        tapOut.fill(0.0f);
        lfoOffset = 0.0f;
    }

    /// How many samples fit until the memory starts over: a sub-block is no longer than that. Audio thread.
    std::int32_t slotsLeft() const { return kDelaySize - writeIndex; }

    /// Makes ready for `frames` more samples. Audio thread.
    MemoryStretch beginStretch(std::int32_t frames) {
        const std::int32_t kept = std::clamp(written - writeIndex, 0, kOvertakenSlots);
        const auto next = std::copy_n(samples.begin() + writeIndex, kept, overtaken.begin());
        std::fill(next, overtaken.end(), 0.0f);
        for (std::int32_t i = 0; i < kSubBlockFrames; ++i)
            writePositions[static_cast<std::size_t>(i)] = static_cast<float>(writeIndex + i + 1);
        if (frames == slotsLeft())
            writePositions[static_cast<std::size_t>(frames - 1)] = 0.0f;
        return {samples.data(), written, writeIndex, frames, writePositions.data(), overtaken.data(), true};
    }

    /// Moves on behind the samples of the stretch, all of which stand in their slots now. Audio thread.
    void endStretch(MemoryStretch& stretch) {
        writeIndex += stretch.frames;
        written = std::max(written, writeIndex);
        if (writeIndex > kDelaySize - 1)
            writeIndex = 0;
        stretch.written = written;
        stretch.ahead = false;
    }
};

/// The memory as it stands right after one sample of a sub-block has been written.
struct MemoryMoment {
    const MemoryStretch& stretch;
    std::int32_t frame;

    /// Where the next sample will be written.
    std::int32_t writeIndex() const {
        const std::int32_t next = stretch.start + frame + 1;
        return next > kDelaySize - 1 ? 0 : next;
    }

    /// The sample of a slot; any number is brought into the memory.
    float at(std::uint32_t slot) const {
        slot &= kDelayMask;
        const std::uint32_t place = slot - static_cast<std::uint32_t>(stretch.start);
        if (place < static_cast<std::uint32_t>(stretch.frames))
            return place <= static_cast<std::uint32_t>(frame) ? stretch.samples[slot]
                                                              : stretch.overtaken[place];
        return slot < static_cast<std::uint32_t>(stretch.written) ? stretch.samples[slot] : 0.0f;
    }
};

} // namespace dsp
