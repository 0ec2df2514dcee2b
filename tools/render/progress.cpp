#include "tools/render/progress.h"

#include "tools/common/text.h"

#include <algorithm>
#include <cstdio>

namespace tools::render {

namespace {

constexpr int kBarWidth = 40;
constexpr const char* kClearLine = "\r\033[K";

} // namespace

Progress::Progress(Style style, std::string what, std::int64_t total, int sampleRate)
    : style_(style), what_(std::move(what)), total_(std::max<std::int64_t>(total, 1)),
      sampleRate_(sampleRate) {}

Progress::~Progress() {
    if (style_ == Style::bar)
        std::fputs(kClearLine, stderr);
}

void Progress::show(std::int64_t frames) {
    if (style_ == Style::bar)
        showBar(frames);
    else if (style_ == Style::lines)
        showLine(frames);
}

void Progress::showBar(std::int64_t frames) {
    // Redraw when there is something new to see: a hundredth of the input, or a second of tail.
    const std::int64_t hundredths = std::min<std::int64_t>(frames * 100 / total_, 100);
    const std::int64_t step = frames < total_ ? hundredths : 100 + (frames - total_) / sampleRate_;
    if (step == lastStep_)
        return;
    lastStep_ = static_cast<int>(step);
    const auto filled = static_cast<std::size_t>(hundredths * kBarWidth / 100);
    std::string bar;
    for (std::size_t i = 0; i < kBarWidth; ++i)
        bar += i < filled ? "\u2588" : "\u2591";
    const std::string percent = std::to_string(hundredths) + " %";
    const std::string tail = frames > total_ ? ", tail " + tailText(frames) : "";
    std::fprintf(stderr, "%s%s  %s  %s%s", kClearLine, what_.c_str(), bar.c_str(), percent.c_str(),
                 tail.c_str());
    std::fflush(stderr);
}

void Progress::showLine(std::int64_t frames) {
    const int quarters = static_cast<int>(std::min<std::int64_t>(frames * 4 / total_, 4));
    if (quarters == lastStep_ || (quarters == 0 && lastStep_ < 0))
        return;
    lastStep_ = quarters;
    std::fprintf(stderr, "%s: %d %%\n", what_.c_str(), quarters * 25);
}

std::string Progress::tailText(std::int64_t frames) const {
    return fixedText(static_cast<double>(frames - total_) / sampleRate_, 0) + " s";
}

} // namespace tools::render
