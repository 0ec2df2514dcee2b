// Evicts the processor's caches.
#pragma once

namespace bench {

/// Sends more data through the processor's caches than they hold.
void evictCaches();

} // namespace bench
