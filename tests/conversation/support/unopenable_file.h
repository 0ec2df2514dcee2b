// Something in the place of a file that is there and that nobody can open, not even an administrator.
#pragma once

#include <string>

namespace conversation {

/// Puts one there. `name` is short and in the current directory; it must not exist yet.
void makeUnopenable(const std::string& name);

/// Whether it is still there, as it was made.
bool isUnopenable(const std::string& name);

} // namespace conversation
