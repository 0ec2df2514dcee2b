// Names close to a mistyped one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tools {

/// Those of `names` that look most like `name`, the nearest first, at most three: names that contain it or
/// that it contains, else those a few letters away. Only letters and digits count, in either case. Empty if
/// none is near.
std::vector<std::string> nearNames(const std::vector<std::string>& names, std::string_view name);

/// "; did you mean "Feedback"?" for the end of an error message; `otherwise` if no name is near.
std::string suggestion(const std::vector<std::string>& names, std::string_view name,
                       std::string_view otherwise);

} // namespace tools
