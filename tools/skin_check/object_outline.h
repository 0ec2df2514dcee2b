// Where an object of a skin stands.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tools::window {

/// What a person does with an object: move it, read it, or neither.
enum class ObjectRole { control, text, other };

struct ObjectOutline {
    std::string kind; ///< as the skin writes it
    ObjectRole role;
    std::optional<std::int32_t> id;  ///< if it has one
    double left, top, right, bottom; ///< in pixels of the window
};

} // namespace tools::window
