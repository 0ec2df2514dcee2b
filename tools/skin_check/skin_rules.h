// Checks a skin's objects and tags against the table of the language: finds what the plug-in would ignore
// without a message, or read differently from how it looks.
#pragma once

#include "tools/skin_check/skin_source.h"

#include <vector>

namespace tools::window {

/// What is to be said about the meaning of a skin, apart from what its building shows: the plug-in's own
/// messages and missing pictures. In no particular order.
std::vector<Finding> judgeSkin(const SourceElement& root);

} // namespace tools::window
