// Reads standard MIDI files of format 0 and 1: all tracks become one list of channel messages, each at its
// time in seconds. Tempo changes count for all tracks, wherever they stand; what is not a channel message is
// passed over.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace tools::render {

/// One channel message: a status byte and one or two data bytes, the unused one zero.
struct TimedMidi {
    double seconds = 0.0;
    std::array<std::uint8_t, 3> bytes = {};
};

/// The messages in order of time; at the same time, in order of tracks. Throws ToolError with one line that
/// says what is wrong, without the file's name.
std::vector<TimedMidi> parseMidiFile(std::span<const std::uint8_t> bytes);

/// parseMidiFile() of a file; its errors name the file.
std::vector<TimedMidi> readMidiFile(const std::filesystem::path& path);

} // namespace tools::render
