// Memory in larger pages. A processor remembers only so many pages at a time; what reads all over 16 MiB does
// so much faster where these are 8 pages of 2 MiB and not 4096 small ones.
#pragma once

#include <cstddef>

namespace platform {

/// What memory has to begin at to consist of large pages from its first byte on, in bytes.
constexpr std::size_t kLargePage = std::size_t{2} * 1024 * 1024;

/// Asks the system for large pages in place of the small ones of this memory. It may grant some, all or none
/// and the memory serves as well. Call before the memory is touched for the first time. Any thread.
void preferLargePages(void* memory, std::size_t size);

} // namespace platform
