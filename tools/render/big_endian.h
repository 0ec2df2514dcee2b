// Numbers in files whose highest byte comes first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tools::render {

/// The number of `size` bytes, 1 to 4, that starts at `offset`; the bytes must be there.
inline std::uint32_t bigEndian(std::span<const std::uint8_t> bytes, std::size_t offset, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number = (number << 8) | bytes[offset + i];
    return number;
}

} // namespace tools::render
