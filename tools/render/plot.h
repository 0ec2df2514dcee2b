// The picture of a rendering: the sound that went in, the sound that came out, and below them the pattern of
// the taps that made the one from the other.
#pragma once

#include "tools/render/file_render.h"
#include "tools/render/tap_pattern.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tools::render {

constexpr int kPictureWidth = 1400; ///< pixels
constexpr int kPictureHeight = 900;

struct Picture {
    std::string title;    ///< the program's name
    std::string settings; ///< the ones that matter, on one line
    std::string footnote; ///< files and rate
    const Outlines* outlines = nullptr;
    int sampleRate = 44100;
    bool isStereo = true;  ///< of the output
    bool hasTaps = false;  ///< whether there is a pattern to show
    std::vector<Tap> taps; ///< in order of time
    int tapsAsked = 0;     ///< as many as the settings ask for; 0 if that is not known
};

/// Draws it and writes it to `path` as a PNG. Throws ToolError, naming `target`.
void drawPicture(const Picture& picture, const std::filesystem::path& path,
                 const std::filesystem::path& target);

} // namespace tools::render
