#include "dsp/sub_block_reader.h"

namespace dsp {

namespace {

constexpr Row kSilence{};

} // namespace

const float* SubBlockReader::read(std::size_t tap, Row& row) const {
    if (const float* const samples = readAtOnce(tap, row))
        return samples;
    if (controls.interpMode == parameters::kWholeSamples)
        readByFrame<WholeSampleReader>(tap, row);
    else if (controls.interpMode == parameters::kLinear)
        readByFrame<LinearReader>(tap, row);
    else
        readByFrame<CubicReader>(tap, row);
    return row.data();
}

const float* SubBlockReader::readAtOnce(std::size_t tap, Row& row) const {
    if (controls.interpMode == parameters::kWholeSamples)
        return readWholeSamples(tap);
    const auto readTap = controls.interpMode == parameters::kLinear ? kernels.readLinear : kernels.readCubic;
    switch (readTap(span, sweep, paths[tap], row.data())) {
    case TapRead::done:
        return row.data();
    case TapRead::silence:
        return kSilence.data();
    default:
        return nullptr;
    }
}

/// Without interpolation the samples are used in place.
const float* SubBlockReader::readWholeSamples(std::size_t tap) const {
    std::int32_t first = span.start + 1 - base::trunc(paths[tap].time);
    if (first < 0)
        first += kDelaySize;
    const std::int32_t last = first + span.frames - 1;
    return isUnwritten(span, first, last) ? kSilence.data() : contiguousSlots(span, first, last, first);
}

template <class Reader>
void SubBlockReader::readByFrame(std::size_t tap, Row& row) const {
    for (std::int32_t i = 0; i < span.frames; ++i)
        row[static_cast<std::size_t>(i)] = readFrame<Reader>(tap, i);
}

} // namespace dsp
