// The scenarios that the engine is compared with the reference by, played through this door: what a host
// says in other words becomes events and states, and the reference is told what the door should make of it.
// Events stand at the start of a block or anywhere in it, sorted or not; then the reference plays the same
// pieces.
#include "clap_module.h"

#include "block_buffers.h"
#include "desk/private_folder.h"
#include "reference/reference_engine.h"
#include "scenario.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace scenario;
using clap_test::Bytes;
using clap_test::Events;
using clap_test::Host;
using clap_test::Instance;
using clap_test::Module;
using reference::kLiveParameters;
using reference::ReferenceEngine;

/// Of each family; more in the tests of the engine itself.
constexpr std::uint64_t kScenarios = QUILLON_CLAP_SCENARIOS;
/// Of those that fill the memory.
constexpr std::uint64_t kLongScenarios = 1;

constexpr clap_id kProgramId = 1000;
constexpr float kControllerStep = 0.007874015718698502f;

/// The module of the build; stays loaded.
const Module& module() {
    static const Module loaded;
    return loaded;
}

Bytes factoryChunk() {
    std::ifstream file(QUILLON_CLAP "/default.fxb", std::ios::binary);
    const Bytes bytes(std::istreambuf_iterator<char>(file), {});
    constexpr std::size_t header = 160;
    if (bytes.size() != header + reference::kBankChunkSize)
        throw std::runtime_error("no factory bank beside the module");
    return {bytes.begin() + header, bytes.end()};
}

/// Where in their block events stand.
enum class Places { kStart, kAnywhere, kUnsorted };

void PrintTo(Places places, std::ostream* out) {
    constexpr const char* names[] = {"at the start", "anywhere", "unsorted"};
    *out << names[static_cast<int>(places)];
}

class Duel {
  public:
    Duel(const Scenario& scenario, Places places, std::int32_t readOfForeignMode)
        : scenario_(scenario), places_(places), random_(scenario.seed),
          reference_(ReferenceEngine::create(factoryChunk())) {
        reference_->delay.readOfForeignMode = readOfForeignMode;
        activate();
    }

    /// Nothing if every sample came out the same, bit for bit.
    std::optional<std::string> play() {
        for (std::size_t action = 0; action < scenario_.actions.size(); ++action) {
            std::visit(*this, scenario_.actions[action]);
            if (difference_.empty())
                continue;
            std::ostringstream text;
            text << "Scenario " << scenario_.seed << " (" << scenario_.title << ")\n  " << difference_
                 << "\n  in the last of these actions:\n";
            for (std::size_t i = 0; i <= action; ++i)
                text << "    " << i << "  " << describe(scenario_.actions[i]) << "\n";
            return text.str();
        }
        return std::nullopt;
    }

    void operator()(const Blocks& blocks) {
        if (blocks.frames < 0)
            return; // this format has no such block
        Random random(blocks.seed);
        Buffers before(blocks), theirs(blocks), ours(blocks);
        std::int64_t position = 0;
        for (std::int32_t block = 0; block < blocks.times && difference_.empty(); ++block) {
            fill(blocks, position, random, before.input(0), before.input(1));
            theirs.copySamplesFrom(before);
            ours.copySamplesFrom(before);
            playBlock(theirs, ours, static_cast<std::uint32_t>(blocks.frames));
            compare(theirs, ours, before, block);
            position += blocks.frames;
        }
    }

    void operator()(const SetParameter& set) {
        const auto id = static_cast<clap_id>(set.id);
        if (set.id < 0 || set.id >= kLiveParameters || std::isnan(set.value)) {
            changes_.push_back({[=](Events& events, std::uint32_t time) {
                                    events.value(id, static_cast<double>(set.value), time);
                                },
                                nullptr});
            return;
        }
        const float value = std::min(std::max(set.value, 0.0f), 1.0f);
        const std::int32_t step = value > 0.5f ? 2 : value > 0.0f ? 1 : 0;
        const double told = set.id == reference::kSet ? step : static_cast<double>(set.value);
        changes_.push_back({[=](Events& events, std::uint32_t time) { events.value(id, told, time); },
                            [=, this] {
                                // A repeated value is none.
                                const float sets = set.id == reference::kSet ? setOf(step) : value;
                                if (!same(sets, storedValue(set.id)))
                                    setInReference(set.id, sets);
                            }});
    }

    void operator()(const SetProgram& set) {
        const std::int32_t program = std::clamp(set.program, 0, reference::kPrograms - 1);
        changes_.push_back({[=](Events& events, std::uint32_t time) {
                                events.value(kProgramId, static_cast<double>(set.program), time);
                            },
                            [=, this] {
                                if (program != reference_->getProgram())
                                    reference_->setProgram(program);
                            }});
    }

    void operator()(const MidiProgramChange& change) {
        changes_.push_back(
            {[=](Events& events, std::uint32_t time) { events.midi(0xC0, change.program, 0, time); },
             [=, this] { reference_->setProgram(static_cast<std::int8_t>(change.program)); }});
    }

    void operator()(const MidiControllerOfAll& controller) {
        changes_.push_back(
            {[=](Events& events, std::uint32_t time) { events.midi(0xB0, 0xFF, controller.value, time); },
             [=, this] {
                 for (std::int32_t id = 0; id < reference::kStoredParameters; ++id)
                     reference_->setParameter(id,
                                              static_cast<float>(controller.value & 0x7F) * kControllerStep);
             }});
    }

    void operator()(const Resume& resume) {
        flushChanges();
        if (resume.suspendFirst) {
            activate();
        } else {
            instance_->reset();
            setAllInReference();
        }
    }

    void operator()(const SetSampleRate& set) {
        flushChanges();
        const bool isRate = std::isfinite(set.rate) && set.rate > 0.0f;
        if (!isRate && instance_->activate(static_cast<double>(set.rate)))
            difference_ = "a rate that cannot be was taken";
        if (isRate)
            rate_ = set.rate;
        activate();
    }

    void operator()(const SetBlockSize&) {}

    void operator()(const SetChunk& set) {
        flushChanges();
        const auto chunk = reference_->getChunk(false);
        Bytes bank(chunk.begin(), chunk.end());
        const auto program = static_cast<std::size_t>(reference_->getProgram());
        const std::size_t place = program * reference::kPresetChunkSize;
        if (!set.isPreset && set.bytes.size() == bank.size())
            bank = set.bytes;
        else if (set.isPreset && set.bytes.size() <= reference::kPresetChunkSize)
            std::copy(set.bytes.begin(), set.bytes.end(), bank.begin() + static_cast<std::ptrdiff_t>(place));
        else if (instance_->load(set.bytes))
            difference_ = "a state of another kind was taken";
        const std::array<std::uint8_t, 12> head = {
            'Q', 'l', 'v', 'd', 1, 0, 0, 0, static_cast<std::uint8_t>(program)};
        constexpr std::size_t live = 4 * kLiveParameters;
        Bytes state(head.size() + live + bank.size());
        std::memcpy(state.data(), head.data(), head.size());
        std::memcpy(state.data() + head.size(), &bank[place], live);
        std::memcpy(state.data() + head.size() + live, bank.data(), bank.size());
        if (!instance_->load(state))
            difference_ = "a state was refused";
        reference_->setChunk(bank.data(), static_cast<std::int32_t>(bank.size()), false);
        reference_->setProgram(static_cast<std::int32_t>(program));
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            setInReference(id, storedValue(id));
    }

  private:
    /// Something that a host says with an event, and what it means to the reference; null for nothing.
    struct Change {
        std::function<void(Events&, std::uint32_t time)> say;
        std::function<void()> mean;
    };

    float storedValue(std::int32_t id) const {
        return reference_->programs[static_cast<std::size_t>(reference_->getProgram())].values[id];
    }

    /// A value keeps its step's place where it stands there already.
    float setOf(std::int32_t step) const {
        const float before = storedValue(reference::kSet);
        const std::int32_t mode = reference::truncate(static_cast<double>(2.0f - (before + before)));
        return 2 - std::clamp(mode, 0, 2) == step ? before : static_cast<float>(step) * 0.5f;
    }

    void setInReference(std::int32_t id, float value) { reference_->setParameter(id, value); }

    void setAllInReference() {
        reference_->resume();
        for (std::int32_t id = 0; id < kLiveParameters; ++id)
            setInReference(id, storedValue(id));
    }

    void activate() {
        if (!instance_->activate(static_cast<double>(rate_)))
            difference_ = "a rate was refused";
        reference_->setSampleRate(rate_);
        setAllInReference();
        isFirstBlock_ = true;
    }

    /// In a block of no frame: a flush takes no MIDI.
    void flushChanges() {
        if (changes_.empty())
            return;
        float nothing[2] = {};
        float* const channels[] = {&nothing[0], &nothing[1]};
        Events events;
        for (const Change& change : changes_)
            change.say(events, 0);
        instance_->process(channels, channels, 0, &events);
        beginBlockInReference();
        for (const Change& change : changes_)
            if (change.mean)
                change.mean();
        float* theirs[] = {&nothing[0], &nothing[1]};
        reference_->processReplacing(theirs, theirs, 0);
        changes_.clear();
    }

    void beginBlockInReference() {
        if (isFirstBlock_)
            setAllInReference();
        isFirstBlock_ = false;
    }

    /// A change of a value somewhere in the block, whatever the scenario does.
    void addOneMore() {
        const std::int32_t id = random_.below(kLiveParameters);
        (*this)(SetParameter{id, random_.oneIn(4) ? 0.0f : random_.unit()});
    }

    std::uint32_t someTime(std::uint32_t frames) {
        if (random_.oneIn(50))
            return std::numeric_limits<std::uint32_t>::max();
        return static_cast<std::uint32_t>(random_.below(static_cast<std::int32_t>(frames) + 1));
    }

    std::vector<std::uint32_t> times(std::uint32_t frames) {
        std::vector<std::uint32_t> all(changes_.size(), 0);
        if (places_ == Places::kStart)
            return all;
        for (std::uint32_t& time : all)
            time = someTime(frames);
        if (places_ == Places::kAnywhere)
            std::sort(all.begin(), all.end());
        return all;
    }

    void playBlock(Buffers& theirs, Buffers& ours, std::uint32_t frames) {
        if (places_ != Places::kStart && random_.oneIn(3))
            addOneMore();
        const std::vector<std::uint32_t> at = times(frames);
        Events events;
        for (std::size_t i = 0; i < changes_.size(); ++i)
            changes_[i].say(events, at[i]);
        instance_->process(theirs.inputs(), theirs.outputs(), frames, &events);

        beginBlockInReference();
        std::uint32_t position = 0;
        const auto playUpTo = [&](std::uint32_t end) {
            float *inputs[2], *outputs[2];
            for (std::size_t channel = 0; channel < 2; ++channel) {
                inputs[channel] = ours.inputs()[channel] + position;
                outputs[channel] = ours.outputs()[channel] + position;
            }
            reference_->processReplacing(inputs, outputs, static_cast<std::int32_t>(end - position));
            position = end;
        };
        for (std::size_t i = 0; i < changes_.size(); ++i) {
            if (!changes_[i].mean)
                continue;
            if (const std::uint32_t time = std::min(at[i], frames); time > position)
                playUpTo(time);
            changes_[i].mean();
        }
        if (position < frames || frames == 0)
            playUpTo(frames);
        changes_.clear();
    }

    void compare(const Buffers& theirs, const Buffers& ours, const Buffers& before, std::int32_t block) {
        for (std::size_t i = 0; i < ours.output(0).size(); ++i)
            for (std::size_t channel = 0; channel < 2; ++channel) {
                const float got = theirs.output(channel)[i], wanted = ours.output(channel)[i];
                if (same(got, wanted))
                    continue;
                difference_ = "sample " + std::to_string(i) + " of block " + std::to_string(block) +
                              (channel ? ", right: " : ", left: ") + bitsAndValue(got) + ", the reference " +
                              bitsAndValue(wanted);
                return;
            }
        if (!theirs.onlyOutputsDifferFrom(before))
            difference_ = "something was written beside the outputs in block " + std::to_string(block);
    }

    const Scenario& scenario_;
    const Places places_;
    Random random_;
    Host host_;
    std::unique_ptr<Instance> instance_ = std::make_unique<Instance>(module().entry(), host_);
    std::unique_ptr<ReferenceEngine> reference_;
    std::vector<Change> changes_;
    float rate_ = 44100.0f;
    bool isFirstBlock_ = true;
    std::string difference_;
};

/// Where "Set" leaves its range any of the three ways to read taps will do, as long as it is always the same.
std::optional<std::string> differenceIn(const Scenario& scenario, Places places) {
    std::optional<std::string> difference;
    for (std::int32_t read = 0; read < (scenario.hasForeignModes ? 3 : 1); ++read) {
        difference = Duel(scenario, places, read).play();
        if (!difference)
            break;
    }
    return difference;
}

class ThroughEvents : public testing::TestWithParam<std::tuple<std::uint64_t, Places>> {
  protected:
    desk::PrivateFolder folder; // without a controller map
};

TEST_P(ThroughEvents, SoundsLikeTheReference) {
    const auto [number, places] = GetParam();
    const auto family = static_cast<Family>(number);
    const bool isLong = family == Family::kFullMemory || family == Family::kWholeSamplesPastTheWrap ||
                        family == Family::kLinearPastTheWrap || family == Family::kCubicPastTheWrap;
    for (std::uint64_t index = 0; index < (isLong ? kLongScenarios : kScenarios) && !HasFailure(); ++index) {
        const Scenario scenario = make(seedOf(family, index));
        const std::optional<std::string> difference = differenceIn(scenario, places);
        EXPECT_FALSE(difference) << *difference;
    }
}

/// Builds that play one scenario of a family play it in the way that takes the most code.
std::vector<Places> placesToPlay() {
    if (kScenarios == 1)
        return {Places::kUnsorted};
    return {Places::kStart, Places::kAnywhere, Places::kUnsorted};
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ThroughEvents,
                         testing::Combine(testing::Range<std::uint64_t>(0, kFamilies),
                                          testing::ValuesIn(placesToPlay())));

} // namespace
