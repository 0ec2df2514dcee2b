// What a host's own panel shows of the parameters: longer names than VST 2.4 has room for, grouped as in the
// effect's window.
#pragma once

#include "parameters/parameter_table.h"

#include <array>
#include <cstdint>

namespace parameters {

/// A field of the window with the controls in it.
struct Group {
    const char* name;
    const char* symbol; ///< the name in lower case
};

inline constexpr std::array<Group, 4> kGroups = {
    {{"Pattern", "pattern"}, {"Motion", "motion"}, {"Input", "input"}, {"Output", "output"}}};

struct PanelEntry {
    const char* name; ///< hosts keep values by it: must stay
    const Group& group;
};

/// Of a live parameter.
const PanelEntry& panelEntry(std::int32_t id);

/// A value of "Set" that stands for one way of reading taps.
struct SetPlace {
    float value; ///< normalised
    const char* name;
};

/// One for each way, from the lowest value.
inline constexpr std::array<SetPlace, 3> kSetPlaces = {{{0.0f, "Jump"}, {0.5f, "Glide"}, {1.0f, "Fine"}}};

/// The index of the place whose way of reading taps any value of "Set" stands for.
std::size_t setPlaceOf(float set);

} // namespace parameters
