// Memory in large pages. A processor's TLB holds few pages; scattered reads of 16 MiB are much faster with
// 8 pages of 2 MiB than with 4096 small ones.
#pragma once

#include <cstddef>

namespace platform {

/// Size and alignment of a large page, in bytes.
constexpr std::size_t kLargePage = std::size_t{2} * 1024 * 1024;

/// Asks the system for large pages in place of the small ones of this memory. It may grant some, all or none
/// and the memory serves as well. Call before the memory is touched for the first time. Any thread.
void preferLargePages(void* memory, std::size_t size);

} // namespace platform
