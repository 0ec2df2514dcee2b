// Takes DC out of the wet pair, at the same speed while it sounds and after it has fallen silent.
#pragma once

#include "dsp/mixing.h"
#include "dsp/smoother.h"
#include "dsp/subnormal_product.h"

#include <algorithm>
#include <bit>
#include <cstddef>
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
    /// `frames` samples of each channel, from `wet` to `removed`. `radiansPerSample` is that of one Hz. Calls
    /// alongside(i) in each frame. Each sample here waits for the one before; in the same loop the processor
    /// overlaps that with other work that waits for itself.
    template <class Alongside>
    void process(const StereoRow& wet, StereoRow& removed, float radiansPerSample, std::int32_t frames,
                 Alongside alongside) {
        const bool leftDone = processSilence(dcBlockLeft, wet.left, removed.left, radiansPerSample, frames);
        const bool rightDone =
            processSilence(dcBlockRight, wet.right, removed.right, radiansPerSample, frames);
        PlainChannel left(wet.left, removed.left, radiansPerSample, dcBlockLeft.state);
        PlainChannel right(wet.right, removed.right, radiansPerSample, dcBlockRight.state);
        if (leftDone && rightDone)
            processTogether(frames, alongside);
        else if (leftDone)
            processTogether(frames, alongside, right);
        else if (rightDone)
            processTogether(frames, alongside, left);
        else
            processTogether(frames, alongside, left, right);
        if (!leftDone)
            finish(dcBlockLeft, left, radiansPerSample, frames);
        if (!rightDone)
            finish(dcBlockRight, right, radiansPerSample, frames);
    }

    /// The same with nothing alongside.
    void process(const StereoRow& wet, StereoRow& removed, float radiansPerSample, std::int32_t frames) {
        process(wet, removed, radiansPerSample, frames, [](std::int32_t) {});
    }

    /// One frame.
    StereoSample process(const StereoSample& wet, float radiansPerSample) {
        return {processExactly(dcBlockLeft, wet.left, radiansPerSample),
                processExactly(dcBlockRight, wet.right, radiansPerSample)};
    }

  private:
    /// A product below 2^-121, which is 2^-126 before the factor 32, may have been rounded as a subnormal.
    static constexpr std::uint32_t kLeastPlainBits = (127u - 121u) << 23;

    static constexpr std::size_t at(std::int32_t index) { return static_cast<std::size_t>(index); }

    /// One channel on the plain way. 32 is a power of two: unless the first product is subnormal, both are
    /// rounded as one, which shortens the way from sample to sample.
    struct PlainChannel {
        PlainChannel(const Row& in, Row& out, float radians, float firstState)
            : wet(in), removed(out), radiansTimes32(radians * 32.0f), state(firstState) {}

        const Row& wet;
        Row& removed;
        float radiansTimes32, state;
        alignas(64) Row moved;

        void process(std::int32_t i) {
            const float step = (wet[at(i)] - state) * radiansTimes32;
            state = step + state;
            moved[at(i)] = step;
            removed[at(i)] = wet[at(i)] - state;
        }

        bool isExact(std::int32_t frames) const {
            std::uint32_t inexact = 0;
            for (std::int32_t i = 0; i < frames; ++i)
                inexact |= magnitudeBits(moved[at(i)]) - 1 < kLeastPlainBits - 1 ? 1u : 0u;
            return inexact == 0;
        }
    };

    template <class Alongside, class... Channels>
    static void processTogether(std::int32_t frames, Alongside& alongside, Channels&... channels) {
        for (std::int32_t i = 0; i < frames; ++i) {
            alongside(i);
            (channels.process(i), ...);
        }
    }

    /// Keeps what was done plainly if it is exact, and does it again otherwise.
    static void finish(Smoother& smoother, const PlainChannel& channel, float radiansPerSample,
                       std::int32_t frames) {
        if (channel.isExact(frames))
            smoother.state = channel.state;
        else
            processExactly(smoother, channel.wet, channel.removed, radiansPerSample, frames);
    }

    /// A silent row while the state sinks and after it has stopped. False elsewhere, with nothing done.
    static bool processSilence(Smoother& smoother, const Row& wet, Row& removed, float radiansPerSample,
                               std::int32_t frames) {
        if (magnitudeBits(smoother.state) >= kTinyBits || !isSilent(wet, frames))
            return false;
        Smoother next = smoother;
        const float first = processExactly(next, 0.0f, radiansPerSample);
        if (next.state == smoother.state)
            std::fill_n(removed.begin(), frames, first);
        else
            processExactly(smoother, wet, removed, radiansPerSample, frames);
        return true;
    }

    static bool isSilent(const Row& row, std::int32_t frames) {
        std::uint32_t bits = 0;
        for (std::int32_t i = 0; i < frames; ++i)
            bits |= std::bit_cast<std::uint32_t>(row[at(i)]);
        return bits == 0;
    }

    static void processExactly(Smoother& smoother, const Row& wet, Row& removed, float radiansPerSample,
                               std::int32_t frames) {
        for (std::int32_t i = 0; i < frames; ++i)
            removed[at(i)] = processExactly(smoother, wet[at(i)], radiansPerSample);
    }

    /// Smoother::process without subnormal arithmetic. A difference that is not tiny leads to none.
    static float processExactly(Smoother& smoother, float w, float radiansPerSample) {
        const float difference = w - smoother.state;
        if (!isTiny(difference))
            return smoother.process(w, radiansPerSample);
        const float moved = subnormalProduct(subnormalProduct(difference, radiansPerSample), 32.0f);
        smoother.state = moved + smoother.state;
        return w - smoother.state;
    }

    Smoother dcBlockLeft, dcBlockRight;
};

} // namespace dsp
