// A buffer as a host lends it, which remembers what it held, so that a test sees every byte that was written.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <string>

namespace conversation {

/// Room for any answer, with more behind it than a plug-in has any business with, and a guard in front of it.
class HostBuffer {
  public:
    HostBuffer() {
        guard_.fill(kUntouched);
        bytes_.fill(kUntouched);
        remember();
    }

    char* data() { return bytes_.data(); }
    /// Puts a text with its NUL at the start.
    void write(const std::string& text) {
        std::memcpy(bytes_.data(), text.c_str(), text.size() + 1);
        remember();
    }
    /// Puts zeros into all of it.
    void clear() {
        bytes_.fill(0);
        remember();
    }
    /// How far into the buffer anything differs from before: one more than the last changed byte's place. All
    /// of it if a byte in front of the buffer differs.
    std::size_t changedUpTo() const {
        std::size_t end = bytes_.size();
        if (!std::all_of(guard_.begin(), guard_.end(), [](char byte) { return byte == kUntouched; }))
            return end;
        while (end > 0 && bytes_[end - 1] == before_[end - 1])
            --end;
        return end;
    }
    /// Whether the bytes from `begin` to before `end` are as they were.
    bool untouched(std::size_t begin, std::size_t end) const {
        return std::equal(bytes_.begin() + static_cast<std::ptrdiff_t>(begin),
                          bytes_.begin() + static_cast<std::ptrdiff_t>(end),
                          before_.begin() + static_cast<std::ptrdiff_t>(begin));
    }
    /// The first `size` bytes, NULs and all.
    std::string bytes(std::size_t size) const { return {bytes_.data(), size}; }
    std::string text() const { return {bytes_.begin(), std::find(bytes_.begin(), bytes_.end(), '\0')}; }

  private:
    static constexpr char kUntouched = '\xA5';

    void remember() { before_ = bytes_; }

    // In this order in memory.
    alignas(16) std::array<char, 64> guard_;
    std::array<char, 1024> bytes_;
    std::array<char, 1024> before_;
};

/// `text` as strncpy and a closing NUL leave it: cut to `limit`, filled up with NULs, `limit` + 1 bytes.
inline std::string paddedText(std::string text, std::size_t limit) {
    text.resize(std::min(text.size(), limit));
    text.resize(limit + 1, '\0');
    return text;
}

} // namespace conversation
