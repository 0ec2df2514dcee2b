#include "bench/calls.h"

#include "bench/contest.h"
#include "bench/player.h"
#include "dsp/delay_engine.h"
#include "platform/large_pages.h"
#include "reference/reference_engine.h"

#include <array>
#include <cstdint>
#include <deque>
#include <memory>
#include <new>

namespace bench {

namespace {

constexpr std::int32_t kBlock = 64;
constexpr std::int32_t kFillFrames = 4096;
constexpr std::int32_t kCallsInARow = 256;

std::vector<std::uint8_t> factoryBank(const std::string& library) {
    return host::Plugin(loadedLibrary(library), quietHost()).getChunk(false);
}

template <class Engine>
void play(Engine&& process, std::int32_t blockFrames, std::int32_t frames) {
    std::vector<float> samples(static_cast<std::size_t>(4 * blockFrames));
    fillWithNoise(samples);
    float* const first = samples.data();
    float* inputs[] = {first, first + blockFrames};
    float* outputs[] = {first + 2 * blockFrames, first + 3 * blockFrames};
    for (std::int32_t done = 0; done < frames; done += blockFrames)
        process(inputs, outputs, blockFrames);
}

/// The built effect and the reference under one set of names, with all that a host can call.
class BuiltInstance {
  public:
    BuiltInstance(const std::string& library, const std::vector<std::uint8_t>&)
        : plugin_(loadedLibrary(library), quietHost()) {}
    void start() { plugin_.start(48000.0f, kBlock); }
    void setParameter(std::int32_t id, float value) { plugin_.setParameter(id, value); }
    void setProgram(std::int32_t program) { plugin_.setProgram(program); }
    void resume() { plugin_.resume(); }
    void process(float** inputs, float** outputs, std::int32_t frames) {
        plugin_.process(inputs, outputs, frames);
    }

  private:
    host::Plugin plugin_;
};

/// The effect's engine without what surrounds it, neither skin nor bank, in the memory that it has there.
class BuiltEngine {
  public:
    BuiltEngine(const std::string&, const std::vector<std::uint8_t>&)
        : memory_(::operator new(sizeof(dsp::DelayEngine), kAlignment)) {
        platform::preferLargePages(memory_, sizeof(dsp::DelayEngine));
        engine_ = new (memory_) dsp::DelayEngine;
        engine_->startUp();
        engine_->computeTapPattern(44100.0f);
    }
    ~BuiltEngine() {
        engine_->~DelayEngine();
        ::operator delete(memory_, kAlignment);
    }
    BuiltEngine(const BuiltEngine&) = delete;
    BuiltEngine& operator=(const BuiltEngine&) = delete;

  private:
    static constexpr std::align_val_t kAlignment{platform::kLargePage};
    void* memory_;
    dsp::DelayEngine* engine_;
};

class ReferenceInstance {
  public:
    ReferenceInstance(const std::string&, const std::vector<std::uint8_t>& bank)
        : engine_(reference::ReferenceEngine::create(bank)) {}
    void start() {
        engine_->setSampleRate(48000.0f);
        engine_->resume();
    }
    void setParameter(std::int32_t id, float value) { engine_->setParameter(id, value); }
    void setProgram(std::int32_t program) { engine_->setProgram(program); }
    void resume() { engine_->resume(); }
    void process(float** inputs, float** outputs, std::int32_t frames) {
        engine_->processReplacing(inputs, outputs, frames);
    }

  private:
    std::unique_ptr<reference::ReferenceEngine> engine_;
};

/// Makes the measured thing for the built effect and for the reference, and lets the two compete.
template <template <class> class Work, class Built = BuiltInstance>
Result compete(const CallCase& call, const std::string& library) {
    const std::vector<std::uint8_t> bank = factoryBank(library);
    Work<Built> built(library, bank, call.argument);
    Work<ReferenceInstance> other(library, bank, call.argument);
    const std::vector<double> medians = medianNanoseconds({built.contestant(), other.contestant()});
    return {section::kCalls, call.name, kReference, medians[0], medians[1]};
}

/// New instances, all of them alive at the end; what it costs to take them away again is not counted.
template <class Instance>
class Construction {
  public:
    Construction(std::string library, std::vector<std::uint8_t> bank, std::int32_t count)
        : library_(std::move(library)), bank_(std::move(bank)), count_(count) {}
    Contestant contestant() {
        return {[this] { return run(); }, static_cast<double>(count_), 0.0, 1};
    }

  private:
    double run() {
        std::deque<Instance> instances;
        const double start = processorSeconds();
        for (std::int32_t i = 0; i < count_; ++i)
            instances.emplace_back(library_, bank_);
        return processorSeconds() - start;
    }
    std::string library_;
    std::vector<std::uint8_t> bank_;
    std::int32_t count_;
};

/// A call that clears the delay memory, timed with the next block, since clearing may be deferred to it.
template <class Instance>
class Clearing {
  public:
    Clearing(const std::string& library, const std::vector<std::uint8_t>& bank, std::int32_t written)
        : instance(library, bank), written_(written) {
        instance.start();
        instance.setParameter(reference::kTaps, 0.0f);
        instance.setParameter(reference::kSet, 0.0f);
    }
    virtual ~Clearing() = default;
    Contestant contestant() {
        return {[this] { return run(); }, 1.0, 0.0, 1};
    }

  protected:
    virtual void clear() = 0;
    Instance instance;

  private:
    double run() {
        playFrames(written_ < kFillFrames ? kBlock : kFillFrames, written_);
        const double start = processorSeconds();
        clear();
        playFrames(kBlock, kBlock);
        return processorSeconds() - start;
    }
    void playFrames(std::int32_t blockFrames, std::int32_t frames) {
        play([this](float** in, float** out, std::int32_t count) { instance.process(in, out, count); },
             blockFrames, frames);
    }
    std::int32_t written_;
};

template <class Instance>
class ProgramChange final : public Clearing<Instance> {
    using Clearing<Instance>::Clearing;
    void clear() override { this->instance.setProgram(0); }
};

template <class Instance>
class Resume final : public Clearing<Instance> {
    using Clearing<Instance>::Clearing;
    void clear() override { this->instance.resume(); }
};

/// One parameter set to two values in turn, with 128 taps.
template <class Instance>
class Setting {
  public:
    Setting(const std::string& library, const std::vector<std::uint8_t>& bank, std::int32_t id)
        : instance_(library, bank), id_(id) {
        instance_.start();
        instance_.setParameter(reference::kTaps, 1.0f);
    }
    Contestant contestant() {
        return {[this] { return run(); }, static_cast<double>(kCallsInARow)};
    }

  private:
    double run() {
        const double start = processorSeconds();
        for (std::int32_t i = 0; i < kCallsInARow; ++i)
            instance_.setParameter(id_, i % 2 == 0 ? 0.25f : 0.75f);
        return processorSeconds() - start;
    }
    Instance instance_;
    std::int32_t id_;
};

} // namespace

std::vector<CallCase> callCases() {
    return {{"one new instance", compete<Construction>, 1},
            {"one of fifty new instances", compete<Construction>, 50},
            {"one new engine, without skin and bank", compete<Construction, BuiltEngine>, 1},
            {"one of fifty new engines, without skin and bank", compete<Construction, BuiltEngine>, 50},
            {"change of program and a block of 64, little written", compete<ProgramChange>, kBlock},
            {"change of program and a block of 64, all written", compete<ProgramChange>, kMemoryFrames},
            {"resume and a block of 64, little written", compete<Resume>, kBlock},
            {"resume and a block of 64, all written", compete<Resume>, kMemoryFrames},
            {"setParameter of Feedback, which has no part in the pattern", compete<Setting>,
             reference::kFeedback},
            {"setParameter of Pre LP, which redesigns a filter", compete<Setting>, reference::kPreLowPass},
            {"setParameter of Stretch dly, which bends the pattern", compete<Setting>, reference::kStretch}};
}

} // namespace bench
