#include "support/echoes.h"

#include "support/program_bank.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace conversation {
namespace {

constexpr std::int32_t kBlock = 512;
constexpr std::int64_t kSecond = 44100;

std::vector<float> render(host::Plugin& plugin, const std::vector<float>& input) {
    std::vector<float> left(input.size()), right(input.size());
    plugin.processStereo(input.data(), input.data(), left.data(), right.data(),
                         static_cast<std::int64_t>(input.size()), kBlock);
    for (std::size_t i = 0; i < left.size(); ++i)
        left[i] = std::max(std::fabs(left[i]), std::fabs(right[i]));
    return left;
}

/// A few full-scale samples and then nothing, until the input filters have rung out; it ends before the first
/// echo.
std::vector<float> click() {
    std::vector<float> samples(8000, 0.0f);
    std::fill_n(samples.begin(), 16, 1.0f);
    return samples;
}

} // namespace

void choosePlainEchoes(host::Plugin& plugin) {
    plugin.setParameter(kBaseLength, 0.5f);
    plugin.setParameter(kTaps, 0.06f);
    plugin.setParameter(kStretch, 0.5f);
    plugin.setParameter(kAmpDecay, 0.5f);
    plugin.setParameter(kFeedback, 0.5f);
    plugin.setParameter(kLfoDepth, 0.0f);
    plugin.setParameter(kSet, 0.0f);
    plugin.setParameter(kPreLowPass, 1.0f);
    plugin.setParameter(kPreHighPass, 0.0f);
    plugin.setParameter(kDryWet, 1.0f);
}

float loudestInTheNextSecond(host::Plugin& plugin) {
    const std::vector<float> heard = render(plugin, std::vector<float>(kSecond));
    return *std::max_element(heard.begin(), heard.end());
}

float loudestEchoAcross(host::Plugin& plugin, const std::function<void()>& operation) {
    // The mix glides to its place and earlier echoes ring out before the click.
    for (int second = 0; second < 3; ++second)
        loudestInTheNextSecond(plugin);
    render(plugin, click());
    operation();
    return loudestInTheNextSecond(plugin);
}

void expectEchoesKept(host::Plugin& plugin, const std::function<void()>& operation) {
    EXPECT_GT(loudestEchoAcross(plugin, operation), kAudible) << "the echoes are gone";
}

void expectEchoesWiped(host::Plugin& plugin, const std::function<void()>& operation) {
    EXPECT_GT(loudestEchoAcross(plugin, [] {}), kAudible) << "there are no echoes to be wiped";
    EXPECT_LT(loudestEchoAcross(plugin, operation), kAudible) << "the echoes are still there";
}

} // namespace conversation
