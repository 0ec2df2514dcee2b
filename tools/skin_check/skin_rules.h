// What a skin means, word by word, against the table of the language. Whatever the plug-in would pass over in
// silence, or read differently from how it looks, is told.
#pragma once

#include "tools/skin_check/skin_source.h"

#include <vector>

namespace tools::window {

/// What is to be said about the meaning of a skin, apart from what its building shows: the plug-in's own
/// messages and missing pictures. In no particular order.
std::vector<Finding> judgeSkin(const SourceElement& root);

} // namespace tools::window
