// Shared fields that follow from other shared fields, such as the sweep's rate from "LFO Rt". Several threads
// may compute one at once, and without a lock the last to store its result may have computed it from a
// parameter that has changed since. So each looks at the parameters again after its store, and computes again
// if they differ.
//
// Memory order: parameters are stored, results stored and both looked at by sequentially consistent accesses,
// which have one order for all threads. Say that the last result to be stored is not the one of the last
// parameter: then whoever stored that result looked at the parameters before the last was stored, or would
// have computed again. So the thread that stored the last parameter looked at the result still later, and
// would have replaced it.
#pragma once

#include "base/shared.h"

namespace base {

/// A thread computes a result so many times at most. Each time but the first, another thread has changed a
/// parameter during the time before, which takes it longer than the computation.
constexpr int kMostComputations = 8;

/// Calls `compute` with what `look` gives, and again while `look` then gives something else. `look` and
/// `compute` use accesses as said above. Any thread.
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
