// Tells the person on standard error how far a rendering of many files is: one line that stays in its place
// on a terminal, a line per file elsewhere.
#pragma once

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace tools::render {

struct BulkProgress {
    std::size_t files = 0;
    std::size_t finished = 0; ///< rendered, failed or there already
    std::size_t failed = 0;
    std::optional<double> secondsLeft;
    std::string current; ///< what was begun last
};

/// "12 s", "4 min", "1 h 20 min": as precise as such an estimate can be.
std::string roughTime(double seconds);

/// The line for a terminal, at most `width` columns wide.
std::string progressLine(const BulkProgress& progress, std::size_t width);

class BulkDisplay {
  public:
    enum class Style { none, line, log };
    explicit BulkDisplay(Style style) : style_(style) {}
    /// Clears the line away.
    ~BulkDisplay();
    BulkDisplay(const BulkDisplay&) = delete;
    BulkDisplay& operator=(const BulkDisplay&) = delete;

    /// May be called as often as one likes.
    void show(const BulkProgress& progress);
    /// A file is finished: told in a log alone.
    void log(const std::string& text);
    /// Something that a person should see at once, above the line. Not with Style::none.
    void say(const std::string& text);

  private:
    void clear();

    Style style_;
    std::string shown_;
    std::chrono::steady_clock::time_point lastShown_;
};

} // namespace tools::render
