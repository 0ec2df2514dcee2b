// A filter's coefficients on their way from the threads that design filters to the audio loop. A mixture of
// two sets can be an unstable filter, so the loop gets one whole set or none.
//
// There are a few slots. A writer takes a free one, fills it and makes it the current one by a single
// exchange; the slot that was current is free again. Nobody waits for anybody: of two writers each fills a
// slot of its own, and the last exchange decides.
//
// Memory order: every read-modify-write here is sequentially consistent, and the five values are stored with
// release and loaded with acquire. A slot is filled again only after it was freed, which is after another one
// became current. So a reader that meets a value of a later filling has also met that change of `current_`:
// it finds another number there when it looks again, and drops what it copied: a slot has a new number with
// each filling.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

namespace dsp {

/// Five coefficients of a second-order filter, as the loop uses them.
struct BiquadCoefficients {
    float b0 = 0.0f, b1 = 0.0f, b2 = 0.0f, a1 = 0.0f, a2 = 0.0f;
};

class SharedCoefficients {
  public:
    /// Makes `set` the current one. If all slots are taken, others are publishing at this moment and nothing
    /// is stored: each of them sees what this thread stored before, when it looks at the parameters again
    /// after its own publish (base/recompute.h). Any thread; never waits.
    void publish(const BiquadCoefficients& set) {
        const std::uint32_t first = current_.load(std::memory_order_relaxed) + 1;
        for (std::uint32_t tried = 0; tried < kSlots; ++tried)
            if (const std::uint32_t slot = first + tried; take(slot)) {
                free(current_.exchange(fill(slot, set)));
                return;
            }
    }

    /// Copies the current set, or leaves `set` as it is if another one became current meanwhile. Any thread;
    /// never waits.
    void load(BiquadCoefficients& set) const {
        const std::uint32_t current = current_.load(std::memory_order_acquire);
        const Slot& slot = slots_[current % kSlots];
        const auto value = [&](std::size_t i) { return slot.values[i].load(std::memory_order_acquire); };
        const BiquadCoefficients copy = {value(0), value(1), value(2), value(3), value(4)};
        if (current_.load(std::memory_order_relaxed) == current)
            set = copy;
    }

  private:
    struct Slot {
        std::array<std::atomic<float>, 5> values{};
        std::uint32_t fillings = 0; ///< of whoever has taken the slot
    };
    static constexpr std::uint32_t kSlots = 4;

    static constexpr std::uint32_t bitOf(std::uint32_t slot) { return 1u << slot % kSlots; }

    bool take(std::uint32_t slot) { return (taken_.fetch_or(bitOf(slot)) & bitOf(slot)) == 0; }
    void free(std::uint32_t slot) { taken_.fetch_and(~bitOf(slot)); }

    /// Gives the number of this filling, whose remainder is the slot.
    std::uint32_t fill(std::uint32_t index, const BiquadCoefficients& set) {
        Slot& slot = slots_[index % kSlots];
        const std::array<float, 5> values = {set.b0, set.b1, set.b2, set.a1, set.a2};
        for (std::size_t i = 0; i < values.size(); ++i)
            slot.values[i].store(values[i], std::memory_order_release);
        return ++slot.fillings * kSlots + index % kSlots;
    }

    std::array<Slot, kSlots> slots_;
    std::atomic<std::uint32_t> current_ = 0; ///< number of the filling that the loop reads
    std::atomic<std::uint32_t> taken_ = 1;   ///< a bit for each slot: the current one, and those being filled
};

} // namespace dsp
