#include "picture_file.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <string_view>
#include <tuple>

namespace toolkit {

namespace {

using std::size_t;

/// Reads numbers of either byte order at given offsets of a file. Throws std::out_of_range past the end of
/// the file.
class Header {
  public:
    explicit Header(const FileBytes& file) : file_(file) {}

    size_t size() const { return file_.size(); }
    bool stands(size_t at, std::string_view bytes) const {
        return size() >= at + bytes.size() &&
               std::ranges::equal(
                   bytes, std::string_view(reinterpret_cast<const char*>(file_.data()) + at, bytes.size()));
    }
    /// The offset of the next occurrence of `bytes`.
    size_t find(size_t from, std::string_view bytes) const {
        const std::string_view all(reinterpret_cast<const char*>(file_.data()), size());
        const size_t found = all.find(bytes, from);
        return found == all.npos ? throw std::out_of_range("cut off") : found;
    }
    /// Throws unless the file holds `length` bytes from `at` on.
    void expect(size_t at, std::int64_t length) const {
        if (length < 0 || at > size() || static_cast<std::uint64_t>(length) > size() - at)
            throw std::out_of_range("cut off");
    }
    unsigned byte(size_t at) const { return file_.at(at); }
    unsigned fromLow16(size_t at) const { return byte(at) | byte(at + 1) << 8; }
    unsigned fromHigh16(size_t at) const { return byte(at) << 8 | byte(at + 1); }
    std::uint32_t fromLow32(size_t at) const { return fromLow16(at) | fromLow16(at + 2) << 16; }
    std::uint32_t fromHigh32(size_t at) const { return fromHigh16(at) << 16 | fromHigh16(at + 2); }
    std::int64_t signedFromLow32(size_t at) const { return static_cast<std::int32_t>(fromLow32(at)); }

  private:
    const FileBytes& file_;
};

/// Steps through the chunks, up to IEND.
PictureSize pngSize(const Header& header) {
    size_t at = 8;
    for (bool isEnd = false; !isEnd;) {
        constexpr std::int64_t around = 12; // length, type and CRC
        const std::int64_t length = around + header.fromHigh32(at);
        header.expect(at, length);
        isEnd = header.stands(at + 4, "IEND");
        at += static_cast<size_t>(length);
    }
    return {header.fromHigh32(16), header.fromHigh32(20)};
}

PictureSize bmpSize(const Header& header) {
    constexpr std::uint32_t oldest = 12; // size of the core header, which has 16-bit sides
    const size_t pixels = header.fromLow32(10);
    const bool isOldest = header.fromLow32(14) == oldest;
    // A negative height means rows from the top down.
    const PictureSize size =
        isOldest ? PictureSize{header.fromLow16(18), header.fromLow16(20)}
                 : PictureSize{header.signedFromLow32(18), std::abs(header.signedFromLow32(22))};
    const std::int64_t depth = header.fromLow16(isOldest ? 24 : 28);
    const std::uint32_t packing = isOldest ? 0 : header.fromLow32(30);
    const bool isPacked = packing == 1 || packing == 2;
    const std::int64_t row = (std::max<std::int64_t>(size.width, 0) * depth + 31) / 32 * 4;
    header.expect(pixels, isPacked ? std::int64_t{header.fromLow32(34)}
                                   : row * std::min<std::int64_t>(size.height, kLongestPictureSide));
    return size;
}

/// Steps through the segments from behind SOI, then looks for EOI.
PictureSize jpegSize(const Header& header) {
    PictureSize size;
    size_t at = 2;
    for (;;) {
        const unsigned marker = header.byte(at + 1);
        const bool isFrame =
            marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
        if (header.byte(at) != 0xFF)
            return {};
        if (isFrame)
            size = {header.fromHigh16(at + 7), header.fromHigh16(at + 5)};
        if (marker == 0xDA) // SOS: coded pixels, in which 0xFF is never followed by 0xD9
            break;
        if (marker == 0xFF) // a fill byte
            ++at;
        else
            at += 2 + header.fromHigh16(at + 2);
    }
    header.find(at, "\xFF\xD9");
    return size;
}

/// Size of the colour table behind a GIF header whose flags are at `flags`, in bytes.
size_t gifColours(const Header& header, size_t flags) {
    const unsigned value = header.byte(flags);
    return value & 0x80 ? size_t{3} << ((value & 7) + 1) : 0;
}

size_t firstGifBlock(const Header& header) {
    return 13 + gifColours(header, 10);
}

/// The first block from `at` on. Between blocks there may be other bytes, which decoders skip.
size_t nextGifBlock(const Header& header, size_t at) {
    while (std::string_view("!,;").find(static_cast<char>(header.byte(at))) == std::string_view::npos)
        ++at;
    return at;
}

/// The end of a picture or an extension at `at`, with all its data.
size_t endOfGifBlock(const Header& header, size_t at) {
    at += header.byte(at) == ',' ? 11 + gifColours(header, at + 9) : 2;
    while (header.byte(at) != 0)
        at += 1 + header.byte(at);
    return at + 1;
}

/// The size of the first picture, which is the one that is shown, with the logical screen's
/// side where that is larger.
PictureSize gifSize(const Header& header) {
    size_t at = nextGifBlock(header, firstGifBlock(header));
    while (header.byte(at) == '!')
        at = nextGifBlock(header, endOfGifBlock(header, at));
    if (header.byte(at) == ';')
        return {};
    endOfGifBlock(header, at);
    return {std::max(header.fromLow16(6), header.fromLow16(at + 5)),
            std::max(header.fromLow16(8), header.fromLow16(at + 7))};
}

/// The values of a field in a TIFF.
class TiffField {
  public:
    TiffField(const Header& header, bool isLow, size_t entry)
        : header_(header), isLow_(isLow), isShort_(word16(entry + 2) == 3), count_(word32(entry + 4)) {
        const bool isInside = std::uint64_t{count_} * width() <= 4;
        at_ = isInside ? entry + 8 : word32(entry + 8);
        header_.expect(at_, std::int64_t{count_} * static_cast<std::int64_t>(width()));
    }

    size_t count() const { return count_; }
    std::uint32_t operator[](size_t i) const { return isShort_ ? word16(at_ + 2 * i) : word32(at_ + 4 * i); }

  private:
    size_t width() const { return isShort_ ? 2 : 4; }
    unsigned word16(size_t at) const { return isLow_ ? header_.fromLow16(at) : header_.fromHigh16(at); }
    std::uint32_t word32(size_t at) const { return isLow_ ? header_.fromLow32(at) : header_.fromHigh32(at); }

    const Header& header_;
    bool isLow_;
    bool isShort_;
    std::uint32_t count_;
    size_t at_ = 0;
};

/// The fields that matter of a TIFF's first directory.
struct TiffPicture {
    PictureSize size;
    std::int64_t bitsPerSample = 1, samplesPerPixel = 1;
    bool isPacked = false;
    std::optional<TiffField> offsets, lengths; ///< of the strips or tiles

    /// In bytes, with all rows in one strip.
    std::int64_t unpackedLength() const {
        return (std::min(size.width, kLongestPictureSide) * bitsPerSample * samplesPerPixel + 7) / 8 *
               std::min(size.height, kLongestPictureSide);
    }
};

TiffPicture tiffPicture(const Header& header, bool isLow) {
    const size_t directory = isLow ? header.fromLow32(4) : header.fromHigh32(4);
    const size_t entries = isLow ? header.fromLow16(directory) : header.fromHigh16(directory);
    TiffPicture picture;
    for (size_t i = 0; i < entries; ++i) {
        const size_t entry = directory + 2 + 12 * i;
        const unsigned tag = isLow ? header.fromLow16(entry) : header.fromHigh16(entry);
        const auto field = [&] { return TiffField(header, isLow, entry); };
        if (tag == 256)
            picture.size.width = field()[0];
        else if (tag == 257)
            picture.size.height = field()[0];
        else if (tag == 258)
            picture.bitsPerSample = std::min(field()[0], 64u);
        else if (tag == 259)
            picture.isPacked = field()[0] != 1;
        else if (tag == 277)
            picture.samplesPerPixel = std::min(field()[0], 64u);
        else if (tag == 273 || tag == 324)
            picture.offsets.emplace(field());
        else if (tag == 279 || tag == 325)
            picture.lengths.emplace(field());
    }
    return picture;
}

/// Strips or tiles may be anywhere in the file. The length of a single strip may be missing or, if it can be
/// computed from the rows, too large: decoders compute it themselves.
PictureSize tiffSize(const Header& header, bool isLow) {
    const TiffPicture picture = tiffPicture(header, isLow);
    const auto& [offsets, lengths] = std::tie(picture.offsets, picture.lengths);
    const bool isOneStrip = offsets && offsets->count() == 1;
    if (!offsets || (!lengths && !isOneStrip) || (lengths && offsets->count() != lengths->count()))
        return {};
    for (size_t i = 0; i < offsets->count(); ++i) {
        const size_t at = (*offsets)[i];
        std::int64_t length = lengths ? (*lengths)[i] : 1;
        if (isOneStrip && !picture.isPacked && (!lengths || at + static_cast<size_t>(length) > header.size()))
            length = picture.unpackedLength();
        header.expect(at, length);
    }
    return picture.size;
}

constexpr size_t kIcoHeader = 6, kIcoEntry = 16;

PictureSize icoEntrySize(const Header& header, size_t entry) {
    const auto side = [&](size_t at) { return header.byte(at) == 0 ? 256 : header.byte(at); };
    return {side(entry), side(entry + 1)};
}

/// Bits per pixel, from the picture itself; many directories leave it at 0.
unsigned icoEntryDepth(const Header& header, size_t entry) {
    constexpr unsigned deepest = 32;
    constexpr size_t bits = 14;
    const size_t picture = header.fromLow32(entry + 12);
    if (picture + bits + 2 > header.size())
        return 0;
    return header.stands(picture, "\x89PNG") ? deepest : header.fromLow16(picture + bits);
}

/// The entry of the largest picture; among equals the deepest, then the first in the file.
size_t largestIcoEntry(const Header& header) {
    const auto rank = [&](size_t entry) {
        const PictureSize size = icoEntrySize(header, entry);
        return std::pair(size.width * size.height, icoEntryDepth(header, entry));
    };
    size_t largest = kIcoHeader;
    for (size_t i = 1; i < header.fromLow16(4); ++i)
        if (const size_t entry = kIcoHeader + kIcoEntry * i; rank(entry) > rank(largest))
            largest = entry;
    return largest;
}

bool isGif(const Header& header) {
    return header.stands(0, "GIF8");
}

bool isTiff(const Header& header) {
    return header.stands(0, std::string_view("II*\0", 4)) || header.stands(0, std::string_view("MM\0*", 4));
}

bool isIco(const Header& header) {
    return header.stands(0, std::string_view("\0\0\1\0", 4));
}

PictureSize icoSize(const Header& header) {
    const size_t entry = largestIcoEntry(header), picture = header.fromLow32(entry + 12);
    header.expect(picture, header.fromLow32(entry + 8));
    const PictureSize size = icoEntrySize(header, entry);
    // The height counts the rows of the mask too, which follow those of the picture.
    const bool isTrue =
        header.stands(picture, "\x89PNG") || (header.signedFromLow32(picture + 4) == size.width &&
                                              header.signedFromLow32(picture + 8) == 2 * size.height);
    return isTrue ? size : PictureSize{};
}

void writeLow32(FileBytes& file, size_t at, std::uint32_t number) {
    for (size_t i = 0; i < 4; ++i)
        file.at(at + i) = static_cast<unsigned char>(number >> (8 * i));
}

/// An ICO with the largest picture alone; the picture itself if it is kept as a PNG.
FileBytes largestOf(const FileBytes& ico) {
    const Header header(ico);
    const size_t entry = largestIcoEntry(header);
    const auto begin = ico.begin() + static_cast<std::ptrdiff_t>(header.fromLow32(entry + 12));
    const auto end = begin + static_cast<std::ptrdiff_t>(header.fromLow32(entry + 8));
    if (header.stands(header.fromLow32(entry + 12), "\x89PNG"))
        return {begin, end};
    FileBytes alone = {0, 0, 1, 0, 1, 0};
    const auto from = ico.begin() + static_cast<std::ptrdiff_t>(entry);
    alone.insert(alone.end(), from, from + kIcoEntry);
    writeLow32(alone, kIcoHeader + 12, kIcoHeader + kIcoEntry);
    alone.insert(alone.end(), begin, end);
    return alone;
}

/// A GIF with the first picture alone.
FileBytes firstOf(const FileBytes& gif) {
    const Header header(gif);
    const auto place = [&](size_t at) { return gif.begin() + static_cast<std::ptrdiff_t>(at); };
    FileBytes alone(gif.begin(), place(firstGifBlock(header)));
    bool isPicture = false;
    for (size_t end = alone.size(); !isPicture;) {
        const size_t at = nextGifBlock(header, end);
        isPicture = header.byte(at) == ',';
        end = endOfGifBlock(header, at);
        alone.insert(alone.end(), place(at), place(end));
    }
    alone.push_back(';');
    return alone;
}

bool isDrawable(const PictureSize& size) {
    return size.width > 0 && size.height > 0 && size.width <= kLongestPictureSide &&
           size.height <= kLongestPictureSide && size.width * size.height <= kMostPicturePixels;
}

/// Subtracts a picture's pixels from the allowance; false if they exceed it or cannot be drawn.
bool takes(const std::optional<PictureSize>& size, PictureAllowance& allowance) {
    if (!size || !isDrawable(*size) || size->width * size->height > allowance.pixels)
        return false;
    allowance.pixels -= size->width * size->height;
    return true;
}

} // namespace

std::optional<PictureSize> promisedSize(const FileBytes& file) try {
    const Header header(file);
    if (header.stands(0, "\x89PNG"))
        return pngSize(header);
    if (header.stands(0, "BM"))
        return bmpSize(header);
    if (header.stands(0, "\xFF\xD8"))
        return jpegSize(header);
    if (isGif(header))
        return gifSize(header);
    if (isTiff(header))
        return tiffSize(header, header.stands(0, "II"));
    if (isIco(header))
        return icoSize(header);
    return std::nullopt;
} catch (const std::out_of_range&) {
    return std::nullopt;
}

bool isTiff(const FileBytes& file) {
    return isTiff(Header(file));
}

std::optional<FileBytes> readPictureFile(const std::string& path, PictureAllowance& allowance) {
    auto file = readUpTo(path, std::min(kLargestPictureFile, allowance.fileBytes));
    if (!file)
        return std::nullopt;
    allowance.fileBytes -= file->size();
    auto size = promisedSize(*file);
    if (size && isIco(Header(*file))) {
        file = largestOf(*file);
        size = promisedSize(*file);
    } else if (size && isGif(Header(*file)) && size->width > 0) {
        file = firstOf(*file);
    }
    return takes(size, allowance) ? file : std::nullopt;
}

} // namespace toolkit
