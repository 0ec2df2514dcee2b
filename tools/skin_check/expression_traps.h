// The arithmetic of skins reads an expression as far as it understands it and leaves the rest, and it has a
// rule about parentheses that nobody expects. This finds where an expression is not what it looks like.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace tools::window {

struct ExpressionTrap {
    std::size_t offset = 0; ///< in bytes from the beginning of the expression
    std::string text;
    bool endsTheHost = false;
};

/// The first trap of a numeric tag's value or of a constant's definition. Faults that the plug-in reports by
/// itself are none.
std::optional<ExpressionTrap> findExpressionTrap(std::string_view expression);

} // namespace tools::window
