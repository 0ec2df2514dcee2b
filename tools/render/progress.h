// Tells the person on standard error how far the rendering is: a bar on a terminal, a few plain lines
// elsewhere.
#pragma once

#include <cstdint>
#include <string>

namespace tools::render {

class Progress {
  public:
    enum class Style { none, bar, lines };
    /// `total` is the input's length in frames; 0 if it is not known.
    Progress(Style style, std::string what, std::int64_t total, int sampleRate);
    /// Clears the bar away.
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `frames` of the output are done.
    void show(std::int64_t frames);

  private:
    void showBar(std::int64_t frames);
    void showLine(std::int64_t frames);
    std::string tailText(std::int64_t frames) const;

    Style style_;
    std::string what_;
    std::int64_t total_;
    int sampleRate_;
    int lastStep_ = -1;
};

} // namespace tools::render
