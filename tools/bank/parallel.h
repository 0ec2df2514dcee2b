// Work on every core.
#pragma once

#include <cstddef>
#include <functional>

namespace bank {

/// Calls `work` with 0 to `count` - 1, on as many threads as there are cores, in no certain order. Rethrows
/// the first exception when all threads have ended.
void forEachInParallel(std::size_t count, const std::function<void(std::size_t)>& work);

} // namespace bank
