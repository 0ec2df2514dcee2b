// Finds out whether a sound file has lost its end: a download that broke off, a disk that was full.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tools::render {

/// Bytes of sound, as the file's header has it and as they are there.
struct CutSound {
    std::uint64_t promised = 0;
    std::uint64_t present = 0;
};

/// What is left of a WAV or AIFF file that ends before its sound does. Nothing if all is there, for files of
/// other kinds, and for lengths by which programs that write without knowing the end say "up to the end": 0,
/// and 0x7ffff000 or more.
std::optional<CutSound> cutSound(const std::filesystem::path& path);

} // namespace tools::render
