// Sound that comes from standard input or goes to standard output. Both pass through temporary files: a sound
// file's length stands in its header, which a pipe cannot be rewound to.
#pragma once

#include "desk/private_folder.h"
#include "tools/render/options.h"

#include <cstdio>
#include <filesystem>
#include <optional>

namespace tools::render {

class PassedSound {
  public:
    /// Copies standard input to a temporary file, if it is the input of `options`. The current directory may
    /// be another as long as the object lives. `output` is the tool's own standard output. Throws ToolError
    /// or Interrupted.
    PassedSound(const Options& options, std::FILE* output);

    /// The files that stand for the input and the output: those of the options, or temporary ones.
    const std::filesystem::path& input() const { return input_; }
    const std::filesystem::path& output() const { return outputFile_; }

    /// Copies `sound` to standard output. Throws ToolError or Interrupted.
    void deliver(const std::filesystem::path& sound) const;

  private:
    std::FILE* stream_;
    std::optional<desk::PrivateFolder> folder_;
    std::filesystem::path input_;
    std::filesystem::path outputFile_;
};

} // namespace tools::render
