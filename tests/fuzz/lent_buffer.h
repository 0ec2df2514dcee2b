// Memory as a host lends it to a plug-in, with guards on both sides, so that a byte too far is noticed also
// where no sanitizer watches.
#pragma once

#include "promise.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

class LentBuffer {
  public:
    explicit LentBuffer(std::size_t size) : bytes_(kGuard + size + kGuard, kUntouched), before_(bytes_) {}
    /// With this content.
    explicit LentBuffer(std::span<const std::uint8_t> content) : LentBuffer(content.size()) {
        std::copy(content.begin(), content.end(), bytes_.begin() + kGuard);
        before_ = bytes_;
    }

    std::size_t size() const { return bytes_.size() - 2 * kGuard; }
    void* data() { return bytes_.data() + kGuard; }
    char* text() { return static_cast<char*>(data()); }
    float* samples() { return static_cast<float*>(data()); }

    /// Promises that no byte differs from what was lent but the first `writable` ones.
    void promiseUntouchedBehind(std::size_t writable, const char* what) const {
        const auto sameBetween = [this](std::size_t begin, std::size_t end) {
            return std::equal(bytes_.begin() + static_cast<std::ptrdiff_t>(begin),
                              bytes_.begin() + static_cast<std::ptrdiff_t>(end),
                              before_.begin() + static_cast<std::ptrdiff_t>(begin));
        };
        promise(sameBetween(0, kGuard), what);
        promise(sameBetween(kGuard + writable, bytes_.size()), what);
    }

  private:
    static constexpr std::size_t kGuard = 64;
    static constexpr std::uint8_t kUntouched = 0xA5;

    std::vector<std::uint8_t> bytes_;
    std::vector<std::uint8_t> before_;
};
