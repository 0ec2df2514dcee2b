// Takes DC out of the wet pair, at the same speed while it sounds and after it has fallen silent.
#pragma once

#include "dsp/mixing.h"
#include "dsp/smoother.h"

#include <cstdint>

namespace dsp {

/// A Smoother for each channel.
///
/// After a sound a smoother's state sinks below the normal numbers and stops there, at some thousand times
/// the smallest subnormal, for as long as the channel is silent. So a row is done in one of three ways, all
/// with the same bits: with one value where the state has stopped; without subnormal arithmetic where
/// something is tiny; and plainly. Audio thread.
class DcRemover {
  public:
    /// `frames` samples of each channel, from `wet` to `removed`. `radiansPerSample` is that of one Hz.
    void process(const StereoRow& wet, StereoRow& removed, float radiansPerSample, std::int32_t frames);

    /// One frame.
    StereoSample process(const StereoSample& wet, float radiansPerSample);

  private:
    Smoother dcBlockLeft, dcBlockRight;
};

} // namespace dsp
