// A filter's coefficients, from the threads that design filters to the audio loop. A mixture of two sets can
// be an unstable filter, so the loop gets one whole set or keeps its old one.
//
// There are a few slots. A writer takes a free one, fills it and makes it current with one exchange, which
// frees the slot that was current. No thread waits: two writers fill different slots, and the last exchange
// wins.
//
// Memory order: every read-modify-write here is sequentially consistent, and the five values are stored with
// release and loaded with acquire. A slot is refilled only after it was freed, which is after another one
// became current. So a reader that loads a value of a later filling also sees that change of `current_` when
// it loads it again, and drops its copy: each filling has a new number.
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
    /// Makes `set` the current one. If all slots are taken by other writers, nothing is stored: each of those
    /// looks at the parameters again after its own publish (base/recompute.h) and sees what this thread set.
    /// Any thread; never waits.
    void publish(const BiquadCoefficients& set) {
        const std::uint32_t first = current_.load(std::memory_order_relaxed) + 1;
        for (std::uint32_t tried = 0; tried < kSlots; ++tried)
            if (const std::uint32_t slot = first + tried; take(slot)) {
                free(current_.exchange(fill(slot, set)));
                return;
            }
    }

    /// Copies the current set, or leaves `set` as it is if another became current meanwhile. Any thread;
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
        std::uint32_t fillings = 0; ///< belongs to the writer that has taken the slot
    };
    static constexpr std::uint32_t kSlots = 4;

    static constexpr std::uint32_t bitOf(std::uint32_t slot) { return 1u << slot % kSlots; }

    bool take(std::uint32_t slot) { return (taken_.fetch_or(bitOf(slot)) & bitOf(slot)) == 0; }
    void free(std::uint32_t slot) { taken_.fetch_and(~bitOf(slot)); }

    /// Gives the number of this filling; modulo kSlots it is the slot.
    std::uint32_t fill(std::uint32_t index, const BiquadCoefficients& set) {
        Slot& slot = slots_[index % kSlots];
        const std::array<float, 5> values = {set.b0, set.b1, set.b2, set.a1, set.a2};
        for (std::size_t i = 0; i < values.size(); ++i)
            slot.values[i].store(values[i], std::memory_order_release);
        return ++slot.fillings * kSlots + index % kSlots;
    }

    std::array<Slot, kSlots> slots_;
    std::atomic<std::uint32_t> current_ = 0; ///< number of the current filling
    std::atomic<std::uint32_t> taken_ = 1;   ///< a bit per slot: the current one and those being filled
};

} // namespace dsp
