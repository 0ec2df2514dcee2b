// The delay memory: one mono signal of 4194304 samples that every tap reads. 95 seconds at 44100 Hz.
//
// Clearing is a request that the audio thread carries out before its next sample. It costs the same whether
// the memory is full or empty: slots that have not been written since the last clearing read as zero, so
// nothing has to be wiped, and a change of program in the middle of a concert never stalls a thread for 16
// MiB.
#pragma once

#include "parameters/pattern_laws.h"
#include "parameters/shared_field.h"

#include <array>
#include <cstdint>

namespace dsp {

constexpr std::int32_t kDelaySize = 4194304;
constexpr std::uint32_t kDelayMask = kDelaySize - 1;
using parameters::kMaxTaps;

struct ModuleDelay {
    std::int32_t writeIndex = 0; ///< next slot to write; audio thread
    std::int32_t written = 0; ///< slots below this one hold signal, those above count as zero; audio thread
    std::array<float, kMaxTaps> tapOut{}; ///< what each tap read last; audio thread
    float lfoOffset = 0.0f;               ///< read offset in samples, zero or negative; audio thread
    std::int32_t interpMode = 1;          ///< 0 cubic, 1 linear, 2 none; shared
    std::uint32_t clearRequested = 0;     ///< shared
    /// Touched whole by construction, so that the audio thread never waits for a page of it.
    std::array<float, kDelaySize> samples{};

    /// Forgets every echo and starts at the first slot again, from the next sample on. Any thread.
    void clearDelayMemory() { parameters::storeShared(clearRequested, std::uint32_t{1}); }

    /// Carries out what clearDelayMemory asked for. Audio thread.
    void serveClearRequest() {
        if (parameters::loadShared(clearRequested) == 0)
            return;
        parameters::storeShared(clearRequested, std::uint32_t{0});
        writeIndex = 0;
        written = 0;
        tapOut.fill(0.0f);
        lfoOffset = 0.0f;
    }

    /// Stores one sample and moves on. Audio thread.
    void write(float sample) {
        samples[static_cast<std::size_t>(writeIndex)] = sample;
        ++writeIndex;
        if (writeIndex > written)
            written = writeIndex;
        if (writeIndex > kDelaySize - 1)
            writeIndex = 0;
    }

    /// The sample of a slot; any number is brought into the memory. Audio thread.
    float at(std::uint32_t slot) const {
        slot &= kDelayMask;
        return slot < static_cast<std::uint32_t>(written) ? samples[slot] : 0.0f;
    }
};

} // namespace dsp
