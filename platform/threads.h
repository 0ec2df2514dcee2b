// Which of a host's threads is asking.
#pragma once

#include <cstdint>

namespace platform {

/// The number of the calling thread among those that run. Costs next to nothing, on a thread of the host's
/// too. Any thread.
std::uint64_t currentThread();

} // namespace platform
