// The system's side of the settings. Only the platform room sees it.
#pragma once

#include "platform/settings.h"

namespace platform {

/// The settings of the person who runs this process.
SettingsStore& ownSettings();

} // namespace platform
