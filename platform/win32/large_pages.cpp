#include "platform/large_pages.h"

namespace platform {

/// Windows hands large pages only to accounts with a right of their own, which a host does not have.
void preferLargePages(void*, std::size_t) {}

} // namespace platform
