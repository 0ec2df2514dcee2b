// How large a picture says it is, before anybody makes room for it: some decoders take the memory for a whole
// picture when they first look at it. Only the platform room sees it.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace platform {

/// In pixels.
struct PictureSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
};

/// What the header of a PNG, BMP, JPEG or GIF promises, for the first picture in the file; nothing if this is
/// none of them or ends too early.
std::optional<PictureSize> promisedSize(const std::vector<unsigned char>& file);

} // namespace platform
