// Two threads in an exact order: a race by design and not by luck. The processor's single-step flag stops a
// thread after a chosen number of its instructions, so that every place where it could lose its turn can be
// tried.
#pragma once

#include <cstdint>
#include <functional>

namespace realtime {

/// More instructions than any work of a test has.
constexpr std::int64_t kToTheEnd = std::int64_t{1} << 40;

/// Runs both works on threads of their own, in this order: `firstSteps` instructions of the first,
/// `secondSteps` of the second, the rest of the first, the rest of the second.
void interleave(const std::function<void()>& first, std::int64_t firstSteps,
                const std::function<void()>& second, std::int64_t secondSteps = kToTheEnd);

/// How many instructions a work takes.
std::int64_t countInstructions(const std::function<void()>& work);

} // namespace realtime
