// What is read of a picture's file before a decoder sees it: whether it is one that we take, how large it
// says it is, and whether all of it is there. Decoders of different systems take different formats, make room
// for a whole picture when they first look at it, and show what there is of a file that is cut off. Only the
// toolkit room sees it.
#pragma once

#include "toolkit/toolkit.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace toolkit {

using FileBytes = std::vector<unsigned char>;

/// In pixels.
struct PictureSize {
    std::int64_t width = 0;
    std::int64_t height = 0;
};

/// What the header of a PNG, BMP, JPEG, GIF, TIFF or ICO promises, for the first picture in the file (of an
/// ICO, for the largest); nothing if this is none of them or that picture is cut off.
std::optional<PictureSize> promisedSize(const FileBytes& file);

bool isTiff(const FileBytes& file);

/// The file at `path`, which is as findPicture() gives it, for the system's decoder; of an ICO, the largest
/// picture alone, and of a GIF the first. Nothing if it is no file, is none of the formats, is cut off, or is
/// larger than may be drawn or than `allowance` has left. Takes from `allowance` what it costs.
std::optional<FileBytes> readPictureFile(const std::string& path, PictureAllowance& allowance);

/// The content of a file; nothing if it is none or has more than `limit` bytes, of which none is read then.
std::optional<FileBytes> readUpTo(const std::string& path, std::uint64_t limit);

} // namespace toolkit
