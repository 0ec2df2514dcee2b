#include "bench/cold_caches.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bench {

namespace {

constexpr std::size_t kMoreThanAnyCache = 96u << 20;
constexpr std::size_t kLine = 64;

} // namespace

void evictCaches() {
    static std::vector<std::uint8_t> otherData(kMoreThanAnyCache, 1);
    for (std::size_t i = 0; i < otherData.size(); i += kLine)
        otherData[i] = static_cast<std::uint8_t>(otherData[i] + 1);
}

} // namespace bench
