// Decides where the output ends.
//
// With a fixed tail that is known beforehand. In automatic mode playing goes on behind the input until the
// output has been quiet for longer than any echo can take to come back; the output then ends with its last
// sample that was not quiet.
#pragma once

#include "tools/render/options.h"

#include <cstdint>
#include <span>

namespace tools::render {

/// What counts as quiet: below -80 dBFS, linear.
constexpr float kQuietLevel = 1e-4f;

/// How long it must be quiet, in frames: the length of the delay memory. Echoes that swell can be inaudible
/// for nearly as long as that before they come; nothing that was put in earlier can come at all.
constexpr std::int64_t kQuietFrames = 4194304;

/// The longest automatic tail, in seconds.
constexpr double kLongestTail = 120.0;

class TailWatch {
  public:
    TailWatch(const TailRule& rule, int sampleRate);

    /// The input's end, in frames, once it is known.
    void inputEndedAt(std::int64_t frame);

    /// Looks at the next block, `frames` x `channels` interleaved, and gives the number of frames from its
    /// beginning that are the last to be looked at: fewer than `frames` if the end came within it.
    std::int64_t look(std::span<const float> block, int channels);

    /// Whether nothing more is to be played.
    bool hasEnded() const { return ended_; }
    /// Frames of all those looked at that certainly belong to the output.
    std::int64_t certainFrames() const { return certain_; }
    /// Whether the longest tail was over while there was still something to be heard, within its last two
    /// seconds.
    bool wasCutShort() const;

  private:
    bool isPastTail() const { return inputEnd_ >= 0 && position_ >= inputEnd_ + tailFrames_; }
    void lookAtFrame(std::span<const float> frame);

    bool automatic_;
    int sampleRate_;
    std::int64_t tailFrames_; ///< at the most
    std::int64_t inputEnd_ = -1;
    std::int64_t position_ = 0;
    std::int64_t certain_ = 0;
    bool ended_ = false;
};

} // namespace tools::render
