// One scenario, played side by side to the reference, to the built library and to the forms of it that are
// held to one instruction set each.
#pragma once

#include "scenario.h"

#include <optional>
#include <string>

/// Nothing if every output sample and every parameter came out the same, bit for bit; else the first
/// difference and the scenario up to it, in words. Numbers that are not numbers count as the same.
std::optional<std::string> firstDifference(const scenario::Scenario& scenario);
