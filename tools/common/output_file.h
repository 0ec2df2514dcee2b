// A file that appears under its name whole or not at all.
#pragma once

#include "desk/abrupt_end.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tools {

/// Reserves a temporary file beside the target, to be written by whoever asks for temporary(); commit() gives
/// it the target's name in one step, and an object that goes without commit() leaves nothing behind, and
/// nor does an abrupt end of a process that watches for one.
class OutputFile {
  public:
    /// Throws ToolError, naming the target, if no file can be made there.
    explicit OutputFile(const std::filesystem::path& target);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    const std::filesystem::path& temporary() const { return temporary_; }
    /// Puts the file in its place, over an older one if there is one. Throws ToolError.
    void commit();
    const std::filesystem::path& target() const { return target_; }

  private:
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    std::optional<desk::UnfinishedPath> unfinished_;
    bool isCommitted_ = false;
};

/// Puts both in their places, or neither: if the second cannot be, what the first one has replaced is there
/// again. Throws ToolError, which names the first if that could not be done.
void commitBoth(OutputFile& first, OutputFile& second);

/// Whether the file is a temporary one of that process (desk::ownProcessId()), by its name.
bool isPartOf(std::uint32_t process, const std::filesystem::path& file);

} // namespace tools
