// The scenarios that the engine is compared with the reference by, played through this door: what a host
// says in other words becomes what its ports hold, and the reference is told what the door should make of it.
#include "instance.h"

#include "block_buffers.h"
#include "reference/reference_engine.h"
#include "scenario.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace scenario;
using lv2_test::Instance;
using lv2_test::Module;
using reference::DelayProgram;
using reference::kLiveParameters;
using reference::ReferenceEngine;

/// Of each family; more in the tests of the engine itself.
constexpr std::uint64_t kScenarios = QUILLON_LV2_SCENARIOS;
/// Of those that fill the memory.
constexpr std::uint64_t kLongScenarios = 1;

/// The module of the bundle; stays loaded.
const LV2_Descriptor& delay() {
    static const Module loaded;
    return *loaded.descriptor();
}

std::vector<std::uint8_t> factoryChunk() {
    std::ifstream file(QUILLON_LV2_BUNDLE "/default.fxb", std::ios::binary);
    const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(file), {});
    constexpr std::size_t header = 160;
    if (bytes.size() != header + reference::kBankChunkSize)
        throw std::runtime_error("no factory bank in the bundle");
    return {bytes.begin() + header, bytes.end()};
}

class Duel {
  public:
    explicit Duel(const Scenario& scenario) : scenario_(scenario) {
        setBank(factoryChunk());
        const DelayProgram defaults;
        std::copy_n(defaults.values, kLiveParameters, ports_.begin());
        std::copy_n(defaults.values, kLiveParameters, told_.begin());
        start(44100.0f);
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
            instance_->controls = ports_;
            instance_->process(theirs.inputs(), theirs.outputs(), static_cast<std::uint32_t>(blocks.frames));
            tellReference();
            reference_->processReplacing(ours.inputs(), ours.outputs(), blocks.frames);
            compare(theirs, ours, before, block);
            position += blocks.frames;
        }
    }

    void operator()(const SetParameter& set) {
        if (set.id >= 0 && set.id < kLiveParameters)
            ports_[static_cast<std::size_t>(set.id)] = set.value;
    }

    void operator()(const SetProgram& set) {
        if (set.program < 0 || set.program >= reference::kPrograms)
            return;
        program_ = static_cast<std::size_t>(set.program);
        takeProgram();
    }

    void operator()(const MidiProgramChange& change) { (*this)(SetProgram{change.program}); }

    void operator()(const MidiControllerOfAll& controller) {
        ports_.fill(static_cast<float>(controller.value & 0x7F) * 0.007874015718698502f);
    }

    void operator()(const Resume&) {
        instance_->deactivate();
        activate();
    }

    void operator()(const SetSampleRate& set) {
        if (std::isfinite(set.rate) && set.rate > 0.0f)
            start(set.rate);
    }

    void operator()(const SetBlockSize&) {}

    void operator()(const SetChunk& set) {
        if (!set.isPreset && set.bytes.size() == reference::kBankChunkSize)
            setBank(set.bytes);
        else if (set.isPreset && set.bytes.size() <= reference::kPresetChunkSize && !set.bytes.empty())
            std::memcpy(static_cast<void*>(&bank_[program_]), set.bytes.data(), set.bytes.size());
        takeProgram();
    }

  private:
    using Controls = std::array<float, kLiveParameters>;

    void setBank(const std::vector<std::uint8_t>& chunk) {
        bank_.resize(reference::kPrograms);
        std::memcpy(static_cast<void*>(bank_.data()), chunk.data(), chunk.size());
    }

    void takeProgram() { std::copy_n(bank_[program_].values, kLiveParameters, ports_.begin()); }

    /// Another rate is another instance.
    void start(float rate) {
        instance_ = std::make_unique<Instance>(delay(), static_cast<double>(rate));
        reference_ = ReferenceEngine::create();
        reference_->setSampleRate(rate);
        const DelayProgram defaults;
        std::copy_n(defaults.values, kLiveParameters, told_.begin());
        activate();
    }

    void activate() {
        instance_->controls = ports_;
        instance_->activate();
        resumeReference();
        isFirstBlock_ = true;
    }

    /// What the door should take for the value of a control.
    float valueOf(std::size_t id) const {
        return std::isnan(ports_[id]) ? told_[id] : std::min(std::max(ports_[id], 0.0f), 1.0f);
    }

    void resumeReference() {
        reference_->resume();
        for (std::size_t id = 0; id < kLiveParameters; ++id)
            setInReference(id);
    }

    void tellReference() {
        if (isFirstBlock_)
            resumeReference();
        for (std::size_t id = 0; id < kLiveParameters; ++id)
            if (std::bit_cast<std::uint32_t>(valueOf(id)) != std::bit_cast<std::uint32_t>(told_[id]))
                setInReference(id);
        isFirstBlock_ = false;
    }

    void setInReference(std::size_t id) {
        told_[id] = valueOf(id);
        reference_->setParameter(static_cast<std::int32_t>(id), told_[id]);
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
    std::unique_ptr<Instance> instance_;
    std::unique_ptr<ReferenceEngine> reference_;
    std::vector<DelayProgram> bank_;
    std::size_t program_ = 0;
    Controls ports_ = {};
    Controls told_ = {};
    bool isFirstBlock_ = false;
    std::string difference_;
};

class ThroughThePorts : public testing::TestWithParam<std::uint64_t> {};

TEST_P(ThroughThePorts, SoundsLikeTheReference) {
    const auto family = static_cast<Family>(GetParam());
    const bool isLong = family == Family::kFullMemory || family == Family::kWholeSamplesPastTheWrap ||
                        family == Family::kLinearPastTheWrap || family == Family::kCubicPastTheWrap;
    for (std::uint64_t index = 0; index < (isLong ? kLongScenarios : kScenarios) && !HasFailure(); ++index) {
        const Scenario scenario = make(seedOf(family, index));
        const std::optional<std::string> difference = Duel(scenario).play();
        EXPECT_FALSE(difference) << *difference;
    }
}

INSTANTIATE_TEST_SUITE_P(Scenarios, ThroughThePorts, testing::Range<std::uint64_t>(0, kFamilies));

} // namespace
