// Which files are to be rendered to which: every input with every program.
#pragma once

#include "tools/render/sound_files.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace tools::render {

struct ProgramName {
    std::int32_t number = 0;
    std::string name; ///< UTF-8
};

struct BulkJob {
    std::filesystem::path input;
    std::filesystem::path output;
    std::filesystem::path plot;         ///< empty for none
    std::optional<ProgramName> program; ///< none: as the other options say
};

/// A name that every system takes as part of a file's: without the characters and the words that Windows
/// keeps for itself.
std::string portableName(std::string_view name);

/// "007 Slow Dawn", ready to be part of a file's name; `digits` for the number.
std::string programLabel(const ProgramName& program, std::size_t digits);

/// One job per input and program, or per input if `programs` is empty, in the folder. `ending` is that of the
/// outputs, with its point; if empty, each is of its input's kind, or WAV where the tool cannot write that.
/// Throws ToolError if two would have the same name on some system.
std::vector<BulkJob> planJobs(const std::vector<SoundFile>& inputs, const std::vector<ProgramName>& programs,
                              const std::filesystem::path& folder, const std::string& ending);

} // namespace tools::render
