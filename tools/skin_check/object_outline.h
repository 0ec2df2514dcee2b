// The position of an object of a skin.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tools::window {

/// Whether the user moves an object, reads it, or neither.
enum class ObjectRole { control, text, other };

struct ObjectOutline {
    std::string kind; ///< as written in the skin
    ObjectRole role;
    std::optional<std::int32_t> id;  ///< if it has one
    double left, top, right, bottom; ///< in pixels of the window
};

} // namespace tools::window
