#include "dsp/dc_remover.h"

#include "dsp/subnormal_product.h"

#include <algorithm>
#include <bit>
#include <cstddef>

namespace dsp {

namespace {

/// A product below 2^-121, which is 2^-126 before the factor 32, may have been rounded as a subnormal.
constexpr std::uint32_t kLeastPlainBits = (127u - 121u) << 23;

std::size_t at(std::int32_t index) {
    return static_cast<std::size_t>(index);
}

/// Smoother::process without subnormal arithmetic. A difference that is not tiny leads to none.
float processExactly(Smoother& smoother, float w, float radiansPerSample) {
    const float difference = w - smoother.state;
    if (!isTiny(difference))
        return smoother.process(w, radiansPerSample);
    smoother.state = subnormalProduct(subnormalProduct(difference, radiansPerSample), 32.0f) + smoother.state;
    return w - smoother.state;
}

void processExactly(Smoother& smoother, const Row& wet, Row& removed, float radiansPerSample,
                    std::int32_t frames) {
    for (std::int32_t i = 0; i < frames; ++i)
        removed[at(i)] = processExactly(smoother, wet[at(i)], radiansPerSample);
}

bool isSilent(const Row& row, std::int32_t frames) {
    std::uint32_t bits = 0;
    for (std::int32_t i = 0; i < frames; ++i)
        bits |= std::bit_cast<std::uint32_t>(row[at(i)]);
    return bits == 0;
}

/// A silent row while the state sinks and after it has stopped. False elsewhere, with nothing done.
bool processSilence(Smoother& smoother, const Row& wet, Row& removed, float radiansPerSample,
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

/// Channels side by side: each sample waits for the one before, and the processor overlaps them.
template <class... Channels>
void processPlainly(std::int32_t frames, Channels&... channels) {
    for (std::int32_t i = 0; i < frames; ++i)
        (channels.process(i), ...);
}

} // namespace

void DcRemover::process(const StereoRow& wet, StereoRow& removed, float radiansPerSample,
                        std::int32_t frames) {
    const bool leftDone = processSilence(dcBlockLeft, wet.left, removed.left, radiansPerSample, frames);
    const bool rightDone = processSilence(dcBlockRight, wet.right, removed.right, radiansPerSample, frames);
    PlainChannel left(wet.left, removed.left, radiansPerSample, dcBlockLeft.state);
    PlainChannel right(wet.right, removed.right, radiansPerSample, dcBlockRight.state);
    const auto end = [&](Smoother& smoother, const PlainChannel& channel) {
        if (channel.isExact(frames))
            smoother.state = channel.state;
        else
            processExactly(smoother, channel.wet, channel.removed, radiansPerSample, frames);
    };
    if (!leftDone && !rightDone)
        processPlainly(frames, left, right);
    else if (!leftDone)
        processPlainly(frames, left);
    else if (!rightDone)
        processPlainly(frames, right);
    if (!leftDone)
        end(dcBlockLeft, left);
    if (!rightDone)
        end(dcBlockRight, right);
}

StereoSample DcRemover::process(const StereoSample& wet, float radiansPerSample) {
    return {processExactly(dcBlockLeft, wet.left, radiansPerSample),
            processExactly(dcBlockRight, wet.right, radiansPerSample)};
}

} // namespace dsp
