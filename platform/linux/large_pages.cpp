#include "platform/large_pages.h"

#include <cstdint>
#include <sys/mman.h>

namespace platform {

void preferLargePages(void* memory, std::size_t size) {
    // Whole pages only: those at the ends hold other memory too.
    const auto begin = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (begin + kLargePage - 1) / kLargePage * kLargePage;
    const std::uintptr_t last = (begin + size) / kLargePage * kLargePage;
    if (first < last)
        madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}

} // namespace platform
