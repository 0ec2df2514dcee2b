#include "tools/render/tail_watch.h"

#include <algorithm>
#include <cmath>

namespace tools::render {

TailWatch::TailWatch(const TailRule& rule, int sampleRate)
    : automatic_(rule.automatic), sampleRate_(sampleRate),
      tailFrames_(std::llround((rule.automatic ? kLongestTail : rule.seconds) * sampleRate)) {}

void TailWatch::inputEndedAt(std::int64_t frame) {
    inputEnd_ = frame;
    ended_ = isPastTail();
}

std::int64_t TailWatch::look(std::span<const float> block, int channels) {
    const auto width = static_cast<std::size_t>(channels);
    const auto frames = static_cast<std::int64_t>(block.size() / width);
    std::int64_t looked = 0;
    for (; looked < frames && !ended_; ++looked)
        lookAtFrame(block.subspan(static_cast<std::size_t>(looked) * width, width));
    return looked;
}

bool TailWatch::wasCutShort() const {
    return automatic_ && isPastTail() && position_ - certain_ < 2 * sampleRate_;
}

void TailWatch::lookAtFrame(std::span<const float> frame) {
    ++position_;
    const bool isInput = inputEnd_ < 0 || position_ <= inputEnd_;
    const bool isLoud =
        std::any_of(frame.begin(), frame.end(), [](float s) { return std::abs(s) >= kQuietLevel; });
    if (isInput || isLoud || !automatic_)
        certain_ = position_;
    ended_ = isPastTail() || position_ - certain_ >= kQuietFrames;
}

} // namespace tools::render
