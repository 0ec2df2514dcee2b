// The channels that a block of a scenario is played in, and what of them may differ afterwards.
#pragma once

#include "scenario.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <iomanip>
#include <sstream>

namespace scenario {

/// Stands before and behind every channel and must still stand there after a block.
inline constexpr std::uint32_t kGuard = 0xC0FFEE11u;
inline constexpr std::size_t kGuardLength = 8;

/// Whether both have the same bits or are both no numbers.
inline bool same(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b) ||
           (std::isnan(a) && std::isnan(b));
}

inline std::string bitsAndValue(float value) {
    std::ostringstream text;
    text << "0x" << std::hex << std::setfill('0') << std::setw(8) << std::bit_cast<std::uint32_t>(value)
         << " (" << std::setprecision(9) << value << ")";
    return text.str();
}

/// Up to four channels of one block, some of them the same, with guards around each.
class Buffers {
  public:
    explicit Buffers(const Blocks& blocks) : frames_(static_cast<std::size_t>(std::max(blocks.frames, 0))) {
        constexpr std::size_t rounding = 16;
        stride_ = (frames_ + 2 * kGuardLength + rounding) / rounding * rounding + rounding;
        samples_.assign(4 * stride_ + rounding, std::bit_cast<float>(kGuard));
        offset_ = kGuardLength + static_cast<std::size_t>(blocks.misalignment);
        constexpr int slots[8][4] = {{0, 1, 2, 3}, {0, 1, 0, 1}, {0, 1, 1, 0}, {0, 1, 0, 2},
                                     {0, 1, 2, 1}, {0, 1, 2, 0}, {0, 0, 1, 2}, {0, 0, 0, 1}};
        const auto& row = slots[static_cast<std::size_t>(blocks.layout)];
        for (std::size_t channel = 0; channel < 2; ++channel) {
            inputs_[channel] = slot(row[channel]);
            outputs_[channel] = slot(row[channel + 2]);
        }
    }

    float** inputs() { return inputs_.data(); }
    float** outputs() { return outputs_.data(); }
    std::span<float> input(std::size_t channel) { return {inputs_[channel], frames_}; }
    std::span<const float> output(std::size_t channel) const { return {outputs_[channel], frames_}; }

    /// Nothing was written but the outputs: guards and plain inputs are as `before` has them.
    bool onlyOutputsDifferFrom(const Buffers& before) const {
        for (std::size_t i = 0; i < samples_.size(); ++i) {
            if (std::memcmp(&samples_[i], &before.samples_[i], sizeof(float)) != 0 && !isOutput(&samples_[i]))
                return false;
        }
        return true;
    }

    void copySamplesFrom(const Buffers& other) { samples_ = other.samples_; }

  private:
    float* slot(int number) { return samples_.data() + static_cast<std::size_t>(number) * stride_ + offset_; }
    bool isOutput(const float* sample) const {
        return std::any_of(outputs_.begin(), outputs_.end(),
                           [&](const float* out) { return sample >= out && sample < out + frames_; });
    }

    std::size_t frames_;
    std::size_t stride_ = 0;
    std::size_t offset_ = 0;
    std::vector<float> samples_;
    std::array<float*, 2> inputs_ = {};
    std::array<float*, 2> outputs_ = {};
};

} // namespace scenario
