// The effect's parameters as CLAP hosts count and number them: the live ones by id, then "Program".
#pragma once

#include "parameters/parameter_table.h"

#include <clap/ext/params.h>

#include <cstdint>
#include <optional>

namespace clap_door {

constexpr std::uint32_t kNumListed = parameters::kNumLiveParameters + 1;
constexpr std::uint32_t kProgramIndex = kNumListed - 1;
/// Far above what the effect's own parameters may get. Projects hold it: must never change.
constexpr clap_id kProgramId = 1000;

constexpr clap_id idAt(std::uint32_t index) {
    return index == kProgramIndex ? kProgramId : index;
}

/// The place in the list; nothing for an id that no parameter has.
constexpr std::optional<std::uint32_t> indexOf(clap_id id) {
    if (id == kProgramId)
        return kProgramIndex;
    return id < kProgramIndex ? std::optional(id) : std::nullopt;
}

/// What a host knows a live parameter's normalised value by: "Set" by the index of its place, any other
/// parameter by the value itself, within 0..1.
double hostValueOf(std::int32_t id, float value);
/// The way back, within the range. A place of "Set" that the value `before` stands in already keeps it.
float valueOfHost(std::int32_t id, double hostValue, float before);
/// The program that a value stands for, within the range.
std::int32_t programOfHost(double hostValue);

/// Everything but the default value.
void describe(std::uint32_t index, clap_param_info_t& info);

} // namespace clap_door
