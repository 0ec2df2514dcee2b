// The line under the title of a picture: the settings that it was made with, as the effect shows them.
#pragma once

#include "tools/render/report.h"

#include <string>

namespace tools::render {

/// The settings that matter, in UTF-8: of the delay in plain words, of any other effect the first few. Those
/// that show nothing are left out.
std::string settingsLine(const EffectState& state);

} // namespace tools::render
