// A file that appears under its name whole or not at all.
#pragma once

#include "platform/abrupt_end.h"

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

  private:
    std::filesystem::path target_;
    std::filesystem::path temporary_;
    std::optional<platform::UnfinishedPath> unfinished_;
    bool isCommitted_ = false;
};

} // namespace tools
