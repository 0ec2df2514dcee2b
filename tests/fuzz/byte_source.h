// The bytes of one fuzzed input, taken one value after the other. Where they end, zeros follow.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

class ByteSource {
  public:
    ByteSource(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    bool isEmpty() const { return rest_.empty(); }
    std::uint8_t byte() {
        const std::span<const std::uint8_t> one = bytes(1);
        return one.empty() ? std::uint8_t{0} : one[0];
    }
    std::uint32_t word() {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value |= static_cast<std::uint32_t>(byte()) << (8 * i);
        return value;
    }
    std::int32_t number() { return static_cast<std::int32_t>(word()); }
    /// Any pattern of bits, so also none of a number.
    float anyFloat() { return std::bit_cast<float>(word()); }
    /// As many as there are, `most` at most.
    std::span<const std::uint8_t> bytes(std::size_t most) {
        const std::span<const std::uint8_t> taken = rest_.first(std::min(most, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }
    std::span<const std::uint8_t> rest() { return bytes(rest_.size()); }

  private:
    std::span<const std::uint8_t> rest_;
};
