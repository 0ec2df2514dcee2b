// Automation files: a text of one parameter change a line, "time parameter value", with blanks or commas
// between. In place of the value there may be a ramp, "value -> value over duration".
#pragma once

#include "tools/common/wanted_value.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tools::render {

/// A place in the file, counted from its beginning.
struct AutomationTime {
    double amount = 0.0;
    bool isInSamples = false; ///< else in seconds

    /// The sample it falls on, to the nearest.
    std::int64_t frameAt(double sampleRate) const;
};

/// Where a ramp ends, and how long it takes.
struct Ramp {
    WantedValue target;
    AutomationTime duration; ///< above 0
};

struct AutomationLine {
    int line = 0; ///< counted from 1
    AutomationTime time;
    Setting setting;
    std::optional<Ramp> ramp; ///< from the setting's value
};

/// All changes, in the order of the text, with notes at the tempo `bpm`. Throws ToolError beginning with
/// "line N: ".
std::vector<AutomationLine> parseAutomation(std::string_view text, std::optional<double> bpm = std::nullopt);

/// parseAutomation() of a file; its errors name the file.
std::vector<AutomationLine> readAutomation(const std::filesystem::path& path,
                                           std::optional<double> bpm = std::nullopt);

} // namespace tools::render
