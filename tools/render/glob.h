// Patterns of names, as shells have them.
#pragma once

#include <string_view>

namespace tools::render {

/// Whether the text has one of the characters * ? [.
bool isPattern(std::string_view text);

/// Whether the whole name matches: * stands for any letters, ? for one, [a-z] for one of several, [!a-z] for
/// any other. Upper and lower case are the same.
bool matchesPattern(std::string_view name, std::string_view pattern);

} // namespace tools::render
