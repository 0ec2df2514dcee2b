// Shared fields that follow from other shared fields, such as the sweep's rate from "LFO Rt". Several threads
// may compute one at once, and without a lock the last to store its result may have computed it from a
// parameter that has changed since. So each looks at the parameters again after its store, and computes again
// if they differ.
//
// Memory order: all loads and stores of parameters and results are sequentially consistent, so all threads
// see them in one order. Suppose that thread A stores the last result, from outdated parameters. A then read
// the parameters again before thread B stored the last of them, or A would have computed again. B computes
// after its own store, so it finds A's result in the field and replaces it: A's was not the last. Only a
// thread that has reached kMostComputations may leave an outdated result.
#pragma once

#include "base/shared.h"

namespace base {

/// The most times that one call computes a result. Each repetition needs another thread that has changed a
/// parameter during the previous computation, and such a change takes longer than a computation.
constexpr int kMostComputations = 8;

/// Calls `compute` with the result of `look`, and again while a second `look` gives a different result. Both
/// use sequentially consistent accesses, as described above. Any thread.
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

} // namespace base
