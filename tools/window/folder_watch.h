// Notices when a person has saved something in a folder.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>

namespace tools::window {

class FolderWatch {
  public:
    /// Takes note of what is in the folder now, its subfolders included. A folder that cannot be read counts
    /// as empty.
    explicit FolderWatch(std::filesystem::path folder);

    /// Looks again. True once after a change, and not before two looks in a row have found the same: programs
    /// write a file in more than one go. Leave some time between looks.
    bool hasChanged();

  private:
    struct Trace {
        std::filesystem::file_time_type written;
        std::uintmax_t size = 0;

        bool operator==(const Trace&) const = default;
    };
    using Traces = std::map<std::filesystem::path, Trace>;

    Traces look() const;

    std::filesystem::path folder_;
    Traces told_;
    Traces last_;
};

} // namespace tools::window
