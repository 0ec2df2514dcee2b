// A picture as plain data, as it goes from the screen to a file.
#pragma once

#include <cstdint>
#include <vector>

namespace desk {

/// Red, green and blue from 0 to 255, pixel by pixel, row after row from the top, with nothing between rows.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> rgb; ///< width x height x 3

    bool operator==(const Picture&) const = default;
};

} // namespace desk
