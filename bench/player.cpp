#include "bench/player.h"

#include "bench/cold_caches.h"
#include "dsp/memory_span.h"
#include "reference/reference_engine.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>

namespace bench {

namespace {

constexpr float kRate = 48000.0f;
/// As many frames as fit in a batch are timed in one go, so that reading the clock costs nothing.
constexpr std::int32_t kBatchFrames = 4096;
constexpr std::int32_t kColdBlocks = 1;
constexpr double kSecondsOfRound = 0.02;
constexpr double kSecondsOfColdRound = 0.0005;
constexpr std::int32_t kMemoryFrames = dsp::kDelaySize;
/// After so many frames every glide has arrived.
constexpr std::int32_t kSettlingFrames = 250000;
/// So many blocks hide the jump of a pattern that does not glide.
constexpr std::int32_t kFadingBlocks = 5;
constexpr std::int32_t kFirstCountWithoutGlide = 102;
/// After so many samples of silence the filters are as near to zero as they come.
constexpr std::int32_t kSilentFrames = 131072;

bool glides(const SoundCase& situation) {
    return situation.read != Read::whole && situation.taps < kFirstCountWithoutGlide;
}

class BuiltEffect final : public Subject {
  public:
    explicit BuiltEffect(const std::string& library) : plugin_(loadedLibrary(library), quietHost()) {
        plugin_.open();
    }
    void setSampleRate(float rate) override {
        plugin_.setSampleRate(rate);
        plugin_.resume();
    }
    void setParameter(std::int32_t id, float value) override { plugin_.setParameter(id, value); }
    void process(float** inputs, float** outputs, std::int32_t frames) override {
        plugin_.process(inputs, outputs, frames);
    }

  private:
    host::Plugin plugin_;
};

class LiteralReference final : public Subject {
  public:
    void setSampleRate(float rate) override {
        engine_->setSampleRate(rate);
        engine_->resume();
    }
    void setParameter(std::int32_t id, float value) override { engine_->setParameter(id, value); }
    void process(float** inputs, float** outputs, std::int32_t frames) override {
        engine_->processReplacing(inputs, outputs, frames);
    }

  private:
    std::unique_ptr<reference::ReferenceEngine> engine_ = reference::ReferenceEngine::create();
};

/// "Taps #" for so many taps.
float tapsValue(std::int32_t taps) {
    return taps == 128 ? 1.0f : (static_cast<float>(taps) - 0.5f) / 127.0f;
}

/// "Bs Lgh 1" for an even pattern with so many samples from tap to tap.
float lengthValue(double gap) {
    return static_cast<float>(std::sqrt(gap / static_cast<double>(kRate)));
}

float setValue(Read read) {
    return read == Read::cubic ? 1.0f : read == Read::linear ? 0.5f : 0.0f;
}

} // namespace

const host::Library& loadedLibrary(const std::string& path) {
    static std::map<std::string, host::Library> loaded;
    const auto known = loaded.find(path);
    return known != loaded.end() ? known->second : loaded.emplace(path, host::Library(path)).first->second;
}

host::HostBehaviour quietHost() {
    host::HostBehaviour behaviour;
    behaviour.record = false;
    return behaviour;
}

std::unique_ptr<Subject> builtEffect(const std::string& library) {
    return std::make_unique<BuiltEffect>(library);
}

std::unique_ptr<Subject> literalReference() {
    return std::make_unique<LiteralReference>();
}

Player::Player(std::unique_ptr<Subject> subject, const SoundCase& situation)
    : subject_(std::move(subject)), situation_(situation),
      batchBlocks_(situation.caches == Caches::cold ? kColdBlocks : kBatchFrames / situation.blockFrames),
      samples_(4 * kBatchFrames) {
    std::uint32_t noise = 1;
    for (float& sample : samples_) {
        noise = noise * 1664525u + 1013904223u;
        sample = static_cast<float>(static_cast<std::int32_t>(noise)) * 0x1p-32f;
    }
    using namespace reference;
    subject_->setSampleRate(kRate);
    constexpr std::array<std::array<float, 2>, 12> values = {{{kLfoRate, 0.5f},
                                                              {kStretch, 0.5f},
                                                              {kAmpDecay, 0.3f},
                                                              {kCurve, 0.5f},
                                                              {kFeedback, 0.7f},
                                                              {kLfoDepth, 0.5f},
                                                              {kPreLowPass, 0.8f},
                                                              {kPreHighPass, 0.2f},
                                                              {kPrePan, 0.5f},
                                                              {kStereo, 0.3f},
                                                              {kDryWet, 0.5f},
                                                              {kOutPan, 0.5f}}};
    for (const auto& [id, value] : values)
        subject_->setParameter(static_cast<std::int32_t>(id), value);
    subject_->setParameter(kTaps, tapsValue(1));
    subject_->setParameter(kSet, setValue(Read::whole));
    if (subject_->wantsFullMemory())
        play(kBatchFrames, kMemoryFrames / kBatchFrames);
    subject_->setParameter(kTaps, tapsValue(situation.taps));
    subject_->setParameter(kSet, setValue(situation.read));
    setPattern();
    if (situation.motion == Motion::rest)
        play(kBatchFrames, glides(situation) ? kSettlingFrames / kBatchFrames : kFadingBlocks);
    if (situation.input == Input::silence) {
        std::fill(samples_.begin(), samples_.end(), 0.0f);
        play(kBatchFrames, kSilentFrames / kBatchFrames);
    }
}

void Player::setPattern() {
    double gap = 100.0;
    if (situation_.place == Place::spread)
        gap = std::min(47900.0, 4190000.0 / situation_.taps);
    if (situation_.place == Place::minimum)
        gap = 0.0;
    subject_->setParameter(reference::kBaseLength, lengthValue(moved_ ? gap * 0.9 + 1.0 : gap));
}

void Player::play(std::int32_t frames, std::int64_t times) {
    float* inputs[] = {samples_.data(), samples_.data() + kBatchFrames};
    float* outputs[] = {samples_.data() + 2 * kBatchFrames, samples_.data() + 3 * kBatchFrames};
    for (std::int64_t block = 0; block < times; ++block)
        subject_->process(inputs, outputs, frames);
}

double Player::playBatch() {
    if (situation_.motion == Motion::gliding) {
        moved_ = !moved_;
        setPattern();
    }
    if (situation_.caches == Caches::cold)
        evictCaches();
    const double start = processorSeconds();
    play(situation_.blockFrames, batchBlocks_);
    return processorSeconds() - start;
}

Contestant Player::contestant() {
    return {[this] { return playBatch(); }, static_cast<double>(batchBlocks_ * situation_.blockFrames),
            situation_.caches == Caches::cold ? kSecondsOfColdRound : kSecondsOfRound};
}

} // namespace bench
