// What of a host's features the window uses. All but the parent may be missing.
#pragma once

#include <lv2/core/lv2.h>
#include <lv2/ui/ui.h>

namespace lv2_window {

struct WindowFeatures {
    WindowFeatures() = default;
    /// `features` as the host has given them for a window; may be null.
    explicit WindowFeatures(const LV2_Feature* const* features);

    void* parent = nullptr;               ///< the host's window
    const LV2UI_Resize* resize = nullptr; ///< asks the host for room
    const LV2UI_Touch* touch = nullptr;   ///< tells the host of gestures
    float sampleRate = 44100.0f;          ///< Hz
};

} // namespace lv2_window
