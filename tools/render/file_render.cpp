#include "tools/render/file_render.h"

#include "tools/common/interrupt.h"
#include "tools/common/text.h"
#include "tools/common/tool_error.h"

#include <algorithm>
#include <cmath>

namespace tools::render {

namespace {

using Channels = std::vector<std::vector<float>>;

Channels silentChannels(std::int32_t channels, std::int32_t frames) {
    return Channels(static_cast<std::size_t>(channels), std::vector<float>(static_cast<std::size_t>(frames)));
}

/// Spreads a file's block over the effect's inputs: one channel goes to all, two are mixed for a single
/// input.
void distribute(const std::vector<float>& block, std::size_t fileChannels, Channels& inputs) {
    const std::size_t frames = block.size() / fileChannels;
    for (std::size_t i = 0; i < frames; ++i) {
        const float left = block[i * fileChannels];
        const float right = block[(i + 1) * fileChannels - 1];
        if (inputs.size() == 1) {
            inputs[0][i] = fileChannels == 1 ? left : 0.5f * (left + right);
        } else {
            inputs[0][i] = left;
            inputs[1][i] = right;
        }
    }
}

void interleave(const Channels& channels, std::vector<float>& block) {
    for (std::size_t c = 0; c < channels.size(); ++c)
        for (std::size_t i = 0; i < channels[c].size(); ++i)
            block[i * channels.size() + c] = channels[c][i];
}

Loudness loudnessIn(const LoudnessMeter& meter) {
    return {meter.integrated(), meter.range(), meter.truePeak()};
}

} // namespace

FileRender::FileRender(host::Plugin& plugin, AudioReader& reader, AudioWriter& writer, BlockPlayer& player,
                       const TailRule& tail, std::int32_t blockSize, Outlines* outlines)
    : reader_(reader), writer_(writer), player_(player), watch_(tail, reader.sampleRate()),
      blockSize_(blockSize), outlines_(outlines),
      inputLoudness_(reader.channels(), reader.sampleRate(), LoudnessMeter::Extent::loudness),
      loudness_(plugin.effect()->numOutputs, reader.sampleRate()),
      fileBlock_(static_cast<std::size_t>(blockSize * reader.channels())),
      in_(silentChannels(plugin.effect()->numInputs, blockSize)),
      out_(silentChannels(plugin.effect()->numOutputs, blockSize)),
      outBlock_(out_.size() * static_cast<std::size_t>(blockSize)) {}

RenderResult FileRender::run(Progress& progress) {
    for (;;) {
        stopIfInterrupted();
        readInput();
        if (watch_.hasEnded())
            break;
        playBlock();
        progress.show(player_.position());
    }
    writeCertain();
    RenderResult result;
    result.inputFrames = inputFrames_;
    result.frames = written_;
    result.peak = meter_.peak();
    result.samplesOver = meter_.samplesOver();
    result.inputLoudness = loudnessIn(inputLoudness_);
    result.loudness = loudnessIn(loudness_);
    result.tailCutShort = watch_.wasCutShort();
    result.eventsMissed = player_.eventsAhead();
    return result;
}

void FileRender::readInput() {
    std::fill(fileBlock_.begin(), fileBlock_.end(), 0.0f);
    if (!inputHasEnded_) {
        const std::int64_t frames = reader_.read(fileBlock_);
        inputFrames_ += frames;
        inputHasEnded_ = frames < blockSize_;
        if (inputHasEnded_)
            watch_.inputEndedAt(inputFrames_);
        const auto samples =
            std::span(fileBlock_).first(static_cast<std::size_t>(frames * reader_.channels()));
        inputLoudness_.add(samples);
        if (outlines_)
            outlines_->dry.add(samples, reader_.channels());
    }
    distribute(fileBlock_, static_cast<std::size_t>(reader_.channels()), in_);
}

void FileRender::playBlock() {
    player_.play(in_, out_, blockSize_);
    interleave(out_, outBlock_);
    checkOutput();
    const auto looked = watch_.look(outBlock_, static_cast<int>(out_.size()));
    waiting_.insert(waiting_.end(), outBlock_.begin(),
                    outBlock_.begin() + looked * static_cast<int>(out_.size()));
    writeCertain();
}

void FileRender::checkOutput() const {
    const auto bad =
        std::find_if_not(outBlock_.begin(), outBlock_.end(), [](float s) { return std::isfinite(s); });
    if (bad == outBlock_.end())
        return;
    const std::int64_t inBlock = (bad - outBlock_.begin()) / static_cast<std::int64_t>(out_.size());
    const double seconds =
        static_cast<double>(player_.position() - blockSize_ + inBlock) / reader_.sampleRate();
    throw ToolError("the output is not a number from " + fixedText(seconds, 3) +
                    " s on: the effect is unstable with these settings at this sample rate");
}

void FileRender::writeCertain() {
    const auto samples = static_cast<std::size_t>(watch_.certainFrames() - written_) * out_.size();
    const auto certain = std::span<const float>(waiting_).first(std::min(samples, waiting_.size()));
    if (certain.empty())
        return;
    writer_.write(certain);
    meter_.add(certain);
    loudness_.add(certain);
    if (outlines_)
        outlines_->wet.add(certain, static_cast<int>(out_.size()));
    written_ += static_cast<std::int64_t>(certain.size() / out_.size());
    waiting_.erase(waiting_.begin(), waiting_.begin() + static_cast<std::ptrdiff_t>(certain.size()));
}

} // namespace tools::render
