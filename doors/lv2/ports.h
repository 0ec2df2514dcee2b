// The effect's ports as LV2 hosts know them: four of audio, then a control for each live parameter by id. A
// control's value is the normalised one that programs store.
#pragma once

#include "parameters/parameter_table.h"

#include <cstdint>

namespace lv2_door {

/// By this hosts and saved projects know the effect. Must never change.
inline constexpr char kPluginUri[] = "urn:quillon:multitap-delay";
/// And by this its window, which has a module of its own.
inline constexpr char kWindowUri[] = "urn:quillon:multitap-delay#window";

/// Indexes. Projects may hold them: must never change.
enum Port : std::uint32_t {
    kInputLeft = 0,
    kInputRight = 1,
    kOutputLeft = 2,
    kOutputRight = 3,
    kFirstControl = 4,
};

constexpr std::uint32_t kNumAudioPorts = kFirstControl;
constexpr std::uint32_t kNumPorts = kNumAudioPorts + parameters::kNumLiveParameters;

/// The index of the control of a live parameter.
constexpr std::uint32_t controlPort(std::int32_t id) {
    return kFirstControl + static_cast<std::uint32_t>(id);
}

} // namespace lv2_door
