// What an LV2 host offers to an instance or a window.
#pragma once

#include <lv2/core/lv2.h>

#include <string_view>

namespace lv2_door {

/// What the host offers under `uri`; null if nothing. `features` as the host has given them; may be null.
template <class Data>
Data* featureOf(const LV2_Feature* const* features, std::string_view uri) {
    for (; features && *features; ++features)
        if ((*features)->URI == uri)
            return static_cast<Data*>((*features)->data);
    return nullptr;
}

} // namespace lv2_door
