// What a timing needs of the system: a processor of its own, memory that nobody has touched, the page faults
// of a thread, and the time that another program took.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace desk {

/// The processor's name as its maker gives it; "unknown" where the system does not say.
std::string processorName();

/// Keeps this thread, and all that it starts from now on, on the processor that it is running on. False where
/// the system does not allow it.
bool stayOnThisProcessor();

/// From now on a large block of memory comes from the system each time and goes back to it, as the first one
/// of a process does. Call before other threads run.
void takeLargeBlocksFresh();

/// The page faults of the calling thread since it began, with and without input from a disk.
std::int64_t pageFaultsOfThisThread();

/// Runs a program, found as a shell finds it, without input and output, and waits for its end. Gives the
/// processor's time that it took, in seconds. Throws std::runtime_error if it cannot be started or fails.
double processorSecondsOf(const std::vector<std::string>& arguments);

} // namespace desk
