// Shared fields that follow from other shared fields, such as the sweep's rate from "LFO Rt". Several threads
// may compute one at once, and without a lock the last to store its result may have computed it from a
// parameter that has changed since. So each looks at the parameters again after its store, and computes again
// if they differ.
//
// Memory order: every result is stored by a read-modify-write that acquires and releases (exchangeShared,
// SharedCoefficients::publish, PatternRecord::begin and end). Those of one field have one order, and each
// sees what was stored before the ones in front of it. So the thread whose store is the last sees, when it
// looks again, every parameter that was stored before any of the results. A parameter stored later belongs to
// a thread whose own result is still to come.
#pragma once

#include <cstring>
#include <type_traits>

namespace parameters {

/// A thread computes a result so many times at most. Each time but the first, another thread has changed a
/// parameter during the time before, which takes it longer than the computation.
constexpr int kMostComputations = 8;

/// Whether two plain values are the same, bit by bit. No padding.
template <class T>
bool sameBits(const T& a, const T& b) {
    static_assert(std::is_trivially_copyable_v<T>);
    return std::memcmp(&a, &b, sizeof(T)) == 0;
}

/// Calls `compute` with what `look` gives, and again while `look` then gives something else. `compute` ends
/// in a store as said above. Any thread.
template <class Look, class Compute>
void computeFrom(Look look, Compute compute) {
    auto seen = look();
    for (int computations = 0; computations < kMostComputations; ++computations) {
        compute(seen);
        const auto now = look();
        if (sameBits(now, seen))
            return;
        seen = now;
    }
}

} // namespace parameters
