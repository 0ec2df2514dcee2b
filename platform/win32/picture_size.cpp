#include "picture_size.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

namespace platform {

namespace {

using std::size_t;

/// Numbers at their places in a file. Asked for one past its end, throws std::out_of_range.
class Header {
  public:
    explicit Header(const std::vector<unsigned char>& file) : file_(file) {}

    bool stands(size_t at, std::string_view bytes) const {
        return file_.size() >= at + bytes.size() &&
               std::ranges::equal(
                   bytes, std::string_view(reinterpret_cast<const char*>(file_.data()) + at, bytes.size()));
    }
    unsigned byte(size_t at) const { return file_.at(at); }
    unsigned fromLow16(size_t at) const { return byte(at) | byte(at + 1) << 8; }
    unsigned fromHigh16(size_t at) const { return byte(at) << 8 | byte(at + 1); }
    std::int64_t fromLow32(size_t at) const {
        return static_cast<std::int32_t>(fromLow16(at) | fromLow16(at + 2) << 16);
    }
    std::int64_t fromHigh32(size_t at) const {
        return std::int64_t{fromHigh16(at)} << 16 | fromHigh16(at + 2);
    }

  private:
    const std::vector<unsigned char>& file_;
};

PictureSize bmpSize(const Header& header) {
    constexpr std::int64_t oldest = 12; // the kind that counts in 16 bits
    if (header.fromLow32(14) == oldest)
        return {header.fromLow16(18), header.fromLow16(20)};
    // A height below zero means that the rows come from the top.
    return {header.fromLow32(18), std::abs(header.fromLow32(22))};
}

/// From one marker to the next, up to the one that opens the picture.
PictureSize jpegSize(const Header& header) {
    size_t at = 2;
    for (;;) {
        const unsigned marker = header.byte(at + 1);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (header.byte(at) != 0xFF)
            return {};
        if (isFrame)
            return {header.fromHigh16(at + 7), header.fromHigh16(at + 5)};
        if (marker == 0xFF) // a filling
            ++at;
        else
            at += 2 + header.fromHigh16(at + 2);
    }
}

/// Past the colours and what else there is, up to the first picture. It may be larger than the screen that
/// the file speaks of, and the other way round.
PictureSize gifSize(const Header& header) {
    const auto colours = [&](size_t flags) {
        const unsigned value = header.byte(flags);
        return value & 0x80 ? size_t{3} << ((value & 7) + 1) : 0;
    };
    size_t at = 13 + colours(10);
    while (header.byte(at) == '!') {
        at += 2;
        while (header.byte(at) != 0)
            at += 1 + header.byte(at);
        ++at;
    }
    if (header.byte(at) != ',')
        return {};
    return {std::max(header.fromLow16(6), header.fromLow16(at + 5)),
            std::max(header.fromLow16(8), header.fromLow16(at + 7))};
}

} // namespace

std::optional<PictureSize> promisedSize(const std::vector<unsigned char>& file) try {
    const Header header(file);
    if (header.stands(0, "\x89PNG"))
        return PictureSize{header.fromHigh32(16), header.fromHigh32(20)};
    if (header.stands(0, "BM"))
        return bmpSize(header);
    if (header.stands(0, "\xFF\xD8"))
        return jpegSize(header);
    if (header.stands(0, "GIF8"))
        return gifSize(header);
    return std::nullopt;
} catch (const std::out_of_range&) {
    return std::nullopt;
}

} // namespace platform
