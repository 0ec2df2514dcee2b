#include "tools/render/block_player.h"

#include "tools/common/interrupt.h"

#include <algorithm>

namespace tools::render {

BlockPlayer::BlockPlayer(host::Plugin& plugin, const Events& events, std::int32_t blockSize)
    : plugin_(plugin), events_(events), blockSize_(blockSize) {}

void BlockPlayer::preRoll(std::int64_t frames) {
    const auto length = static_cast<std::size_t>(blockSize_);
    std::vector<float> silence(length), unheard[2] = {silence, silence};
    float* inputs[] = {silence.data(), silence.data()};
    float* outputs[] = {unheard[0].data(), unheard[1].data()};
    while (frames > 0) {
        stopIfInterrupted();
        const auto now = static_cast<std::int32_t>(std::min<std::int64_t>(frames, blockSize_));
        plugin_.process(inputs, outputs, now);
        frames -= now;
    }
}

void BlockPlayer::play(std::span<std::vector<float>> in, std::span<std::vector<float>> out,
                       std::int32_t frames) {
    std::int32_t done = 0;
    while (done < frames) {
        changeParameters();
        std::int32_t now = frames - done;
        if (nextParameter_ < events_.parameters.size())
            now = static_cast<std::int32_t>(
                std::min<std::int64_t>(now, events_.parameters[nextParameter_].frame - position_));
        sendMidi(now);
        float* inputs[] = {in.front().data() + done, in.back().data() + done};
        float* outputs[] = {out.front().data() + done, out.back().data() + done};
        plugin_.process(inputs, outputs, now);
        done += now;
        position_ += now;
    }
}

std::size_t BlockPlayer::eventsAhead() const {
    const auto ahead = std::count_if(events_.parameters.begin() + static_cast<std::ptrdiff_t>(nextParameter_),
                                     events_.parameters.end(),
                                     [](const ParameterEvent& event) { return !event.isOnTheWay; });
    return static_cast<std::size_t>(ahead) + events_.midi.size() - nextMidi_;
}

void BlockPlayer::changeParameters() {
    for (; nextParameter_ < events_.parameters.size(); ++nextParameter_) {
        const ParameterEvent& event = events_.parameters[nextParameter_];
        if (event.frame > position_)
            break;
        plugin_.setParameter(event.id, event.value);
    }
}

void BlockPlayer::sendMidi(std::int32_t frames) {
    messages_.clear();
    for (; nextMidi_ < events_.midi.size() && events_.midi[nextMidi_].frame < position_ + frames;
         ++nextMidi_) {
        const MidiEvent& event = events_.midi[nextMidi_];
        host::MidiMessage message;
        message.deltaFrames = static_cast<std::int32_t>(event.frame - position_);
        std::copy(std::begin(event.bytes), std::end(event.bytes), std::begin(message.bytes));
        messages_.push_back(message);
    }
    if (!messages_.empty())
        plugin_.sendMidi(messages_);
}

} // namespace tools::render
