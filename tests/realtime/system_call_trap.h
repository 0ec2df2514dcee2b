// Finds out whether a piece of work enters the system's kernel, by forbidding it.
#pragma once

#include <functional>
#include <optional>

namespace realtime {

/// Why a piece of work ended.
struct TrappedWork {
    bool possible = true; ///< false where this system cannot forbid anything
    bool finished = false;
    std::optional<int> systemCall; ///< the number of the first one, where there was one
};

/// Runs `work` in a copy of this process that may do nothing but end. Everything that the work needs must be
/// there before.
TrappedWork runWithoutSystemCalls(const std::function<void()>& work);

} // namespace realtime
