// The programs of the factory bank, read from its file as the effect reads it.
#pragma once

#include "presets/delay_program.h"

#include <string>
#include <vector>

namespace lv2_bundle {

/// All programs of the bank at `path`. Throws std::runtime_error with the reader's words if it cannot be
/// used.
std::vector<presets::DelayProgram> readFactoryBank(const std::string& path);

} // namespace lv2_bundle
