#include "bench/player.h"

#include "bench/cold_caches.h"
#include "reference/reference_engine.h"

#include <map>

namespace bench {

namespace {

constexpr std::int32_t kColdBlocks = 1;
constexpr double kSecondsOfRound = 0.02;
constexpr double kSecondsOfColdRound = 0.0005;

class BuiltEffect final : public ClearableSubject {
  public:
    explicit BuiltEffect(const std::string& library) : plugin_(loadedLibrary(library), quietHost()) {
        plugin_.open();
    }
    void setSampleRate(float rate) override {
        plugin_.setSampleRate(rate);
        plugin_.resume();
    }
    void setParameter(std::int32_t id, float value) override { plugin_.setParameter(id, value); }
    void setProgram(std::int32_t program) override { plugin_.setProgram(program); }
    void resume() override { plugin_.resume(); }
    void process(float** inputs, float** outputs, std::int32_t frames) override {
        plugin_.process(inputs, outputs, frames);
    }

  private:
    host::Plugin plugin_;
};

class LiteralReference final : public ClearableSubject {
  public:
    void setSampleRate(float rate) override {
        engine_->setSampleRate(rate);
        engine_->resume();
    }
    void setParameter(std::int32_t id, float value) override { engine_->setParameter(id, value); }
    void setProgram(std::int32_t program) override { engine_->setProgram(program); }
    void resume() override { engine_->resume(); }
    void process(float** inputs, float** outputs, std::int32_t frames) override {
        engine_->processReplacing(inputs, outputs, frames);
    }

  private:
    std::unique_ptr<reference::ReferenceEngine> engine_ = reference::ReferenceEngine::create();
};

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

std::unique_ptr<ClearableSubject> builtEffect(const std::string& library) {
    return std::make_unique<BuiltEffect>(library);
}

std::unique_ptr<ClearableSubject> literalReference() {
    return std::make_unique<LiteralReference>();
}

Player::Player(std::unique_ptr<Subject> subject, const SoundCase& situation)
    : subject_(std::move(subject)), situation_(situation),
      batchBlocks_(situation.caches == Caches::cold ? kColdBlocks : kBatchFrames / situation.blockFrames) {
    subject_->setSampleRate(kSampleRate);
    setCommonValues(*subject_);
    if (situation.input == Input::nothing)
        buffers_.holdSilence();
    if (subject_->wantsFullMemory())
        fillMemory(*subject_, buffers_);
    setTaps(*subject_, situation);
    if (situation.motion == Motion::rest)
        settle(*subject_, buffers_, glides(situation));
    if (situation.input != Input::noise) {
        buffers_.holdSilence();
        buffers_.play(*subject_, kBatchFrames, situation.silentFrames / kBatchFrames);
    }
}

double Player::playBatch() {
    if (situation_.motion == Motion::gliding) {
        moved_ = !moved_;
        setPattern(*subject_, situation_, moved_);
    }
    if (situation_.caches == Caches::cold)
        evictCaches();
    const double start = processorSeconds();
    buffers_.play(*subject_, situation_.blockFrames, batchBlocks_);
    return processorSeconds() - start;
}

Contestant Player::contestant() {
    return {[this] { return playBatch(); }, static_cast<double>(batchBlocks_ * situation_.blockFrames),
            situation_.caches == Caches::cold ? kSecondsOfColdRound : kSecondsOfRound};
}

} // namespace bench
