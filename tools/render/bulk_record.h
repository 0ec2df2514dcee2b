// What quillon-render has written into a folder, so that the same command, given again, goes on where it
// stopped, and nobody else's file is overwritten. One line of JSON per event; the last one about a file
// counts.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>

namespace tools::render {

constexpr const char* kRecordName = "quillon-render.jsonl";

/// The last that is known about one output file.
struct RecordEntry {
    bool isDone = false;     ///< else it was begun, and the tool may not have lived to see the end
    std::string fingerprint; ///< of all that the file was made from
    std::uintmax_t size = 0;
    std::int64_t modified = 0; ///< as the system counts
    std::string content;       ///< contentHash()
    std::string report;        ///< JSON
};

class BulkRecord {
  public:
    /// Reads what is there. A line that is torn or not understood is skipped. Throws ToolError if the file is
    /// there and cannot be read.
    explicit BulkRecord(const std::filesystem::path& folder);

    /// The last that is known about `output`, a path in the folder; null if nothing is.
    const RecordEntry* find(const std::filesystem::path& output) const;
    /// Makes sure that the record can be written. Throws ToolError if not.
    void open();
    /// Each of these writes one line at once. Throws ToolError.
    void begin(const std::filesystem::path& output);
    void finish(const std::filesystem::path& output, const RecordEntry& entry);
    /// What was begun has come to nothing, and the file is as it was before.
    void abandon(const std::filesystem::path& output);
    /// Takes the record away again if it says nothing about any file.
    void removeIfEmpty();

  private:
    std::string keyOf(const std::filesystem::path& output) const;
    void read();
    void write(const std::string& key, const RecordEntry* entry);
    void check() const;

    std::filesystem::path folder_;
    std::filesystem::path file_;
    std::ofstream stream_;
    std::map<std::string, RecordEntry> entries_;
    std::map<std::string, RecordEntry> before_; ///< of files that are begun
};

/// Whether the file is just as the record has it.
bool isUnchanged(const std::filesystem::path& file, const RecordEntry& entry);

/// Size, time and content of a file that has been written. Throws ToolError.
RecordEntry entryFor(const std::filesystem::path& file);

} // namespace tools::render
