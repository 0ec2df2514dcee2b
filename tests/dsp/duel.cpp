#include "duel.h"

#include "block_buffers.h"
#include "library_under_test.h"
#include "reference/reference_engine.h"

#include <algorithm>
#include <iomanip>
#include <memory>
#include <sstream>

namespace {

using namespace scenario;
using reference::ReferenceEngine;

class Duel {
  public:
    Duel(const Scenario& scenario, std::int32_t readOfForeignMode) : scenario_(scenario) {
        for (const NamedLibrary& library : librariesUnderTest()) {
            challengers_.push_back(
                {library.name, std::make_unique<host::Plugin>(library.library, quietHost())});
            challengers_.back().plugin->open();
        }
        const std::vector<std::uint8_t> bank = challengers_.front().plugin->getChunk(false);
        reference_ = ReferenceEngine::create(bank);
        reference_->delay.readOfForeignMode = readOfForeignMode;
    }

    std::optional<std::string> play() {
        compareParameters();
        for (action_ = 0; action_ < scenario_.actions.size() && difference_.empty(); ++action_) {
            std::visit(*this, scenario_.actions[action_]);
            if (difference_.empty())
                compareParameters();
            if (!difference_.empty())
                return report();
        }
        if (!difference_.empty())
            return report();
        return std::nullopt;
    }

    void operator()(const Blocks& blocks) {
        Random random(blocks.seed);
        Buffers before(blocks), theirs(blocks), ours(blocks);
        std::int64_t position = 0;
        for (std::int32_t block = 0; block < blocks.times && difference_.empty(); ++block) {
            fill(blocks, position, random, before.input(0), before.input(1));
            ours.copySamplesFrom(before);
            reference_->processReplacing(ours.inputs(), ours.outputs(), blocks.frames);
            for (const Challenger& challenger : challengers_) {
                theirs.copySamplesFrom(before);
                challenger.plugin->process(theirs.inputs(), theirs.outputs(), blocks.frames);
                compareOutputs(challenger, theirs, ours, block);
                if (difference_.empty() && !theirs.onlyOutputsDifferFrom(before))
                    difference_ = challenger.name + " wrote beside the output buffers in block " +
                                  std::to_string(block);
            }
            position += blocks.frames;
        }
    }

    void operator()(const SetParameter& set) {
        tell([&](host::Plugin& plugin) { plugin.setParameter(set.id, set.value); });
        reference_->setParameter(set.id, set.value);
    }

    void operator()(const SetProgram& set) {
        tell([&](host::Plugin& plugin) { plugin.setProgram(set.program); });
        reference_->setProgram(set.program);
    }

    void operator()(const MidiProgramChange& change) {
        const host::MidiMessage message[] = {{0, {0xC3, change.program, 0}}};
        tell([&](host::Plugin& plugin) { plugin.sendMidi(message); });
        reference_->setProgram(static_cast<std::int8_t>(change.program));
    }

    void operator()(const MidiControllerOfAll& controller) {
        const host::MidiMessage message[] = {{0, {0xB5, 0xFF, controller.value}}};
        tell([&](host::Plugin& plugin) { plugin.sendMidi(message); });
        for (std::int32_t id = 0; id < reference::kStoredParameters; ++id)
            reference_->setParameter(id, static_cast<float>(controller.value & 0x7F) * 0.007874015718698502f);
    }

    void operator()(const Resume& resume) {
        if (resume.suspendFirst) {
            tell([&](host::Plugin& plugin) { plugin.suspend(); });
            reference_->suspend();
        }
        tell([&](host::Plugin& plugin) { plugin.resume(); });
        reference_->resume();
    }

    void operator()(const SetSampleRate& set) {
        tell([&](host::Plugin& plugin) { plugin.setSampleRate(set.rate); });
        reference_->setSampleRate(set.rate);
    }

    void operator()(const SetBlockSize& set) {
        tell([&](host::Plugin& plugin) { plugin.setBlockSize(set.frames); });
        reference_->setBlockSize(set.frames);
    }

    void operator()(const SetChunk& set) {
        tell([&](host::Plugin& plugin) { plugin.setChunk(set.bytes, set.isPreset); });
        reference_->setChunk(set.bytes.data(), static_cast<std::int32_t>(set.bytes.size()), set.isPreset);
    }

  private:
    struct Challenger {
        std::string name;
        std::unique_ptr<host::Plugin> plugin;
    };

    template <typename Call>
    void tell(Call call) {
        for (const Challenger& challenger : challengers_)
            call(*challenger.plugin);
    }

    void compareOutputs(const Challenger& challenger, const Buffers& theirs, const Buffers& ours,
                        std::int32_t block) {
        if (!difference_.empty())
            return;
        const std::size_t frames = ours.output(0).size();
        for (std::size_t i = 0; i < frames; ++i)
            for (std::size_t channel = 0; channel < 2; ++channel) {
                const float got = theirs.output(channel)[i], wanted = ours.output(channel)[i];
                if (same(got, wanted))
                    continue;
                std::ostringstream text;
                text << "sample " << i << " of block " << block << ", " << (channel ? "right" : "left")
                     << ": " << challenger.name << " gives " << bitsAndValue(got) << ", the reference "
                     << bitsAndValue(wanted);
                difference_ = text.str();
                return;
            }
    }

    void compareParameters() {
        for (const Challenger& challenger : challengers_)
            compareParameters(challenger);
    }

    void compareParameters(const Challenger& challenger) {
        for (std::int32_t id = -2; id < 23; ++id) {
            const float got = challenger.plugin->getParameter(id), wanted = reference_->getParameter(id);
            if (same(got, wanted))
                continue;
            difference_ = "getParameter(" + std::to_string(id) + "): " + challenger.name + " gives " +
                          bitsAndValue(got) + ", the reference " + bitsAndValue(wanted);
            return;
        }
        const std::int32_t got = challenger.plugin->getProgram();
        if (got != reference_->getProgram())
            difference_ = "getProgram: " + challenger.name + " gives " + std::to_string(got) +
                          ", the reference " + std::to_string(reference_->getProgram());
    }

    std::string report() const {
        std::ostringstream text;
        text << "Scenario " << scenario_.seed << " (" << scenario_.title
             << "), repeat with SEED=" << scenario_.seed << "\n  " << difference_
             << "\n  in the last of these actions:\n";
        const std::size_t last = std::min(action_, scenario_.actions.size() - 1);
        for (std::size_t i = 0; i <= last; ++i)
            text << "    " << std::setw(3) << i << "  " << describe(scenario_.actions[i]) << "\n";
        text << "  with " << reference_->numTaps << " taps at " << reference_->sampleRate
             << " Hz, read in mode " << reference_->delay.interpMode << ", write position "
             << reference_->delay.writeIndex << ", fade "
             << (reference_->fadeArmed ? "armed, " : "not armed, ") << reference_->fadeBlockCount
             << " blocks, first and last tap at " << std::setprecision(9) << reference_->tapTimeTarget[0]
             << " and " << reference_->tapTimeTarget[reference_->numTaps - 1] << "\n  and the parameters";
        for (std::int32_t id = 0; id < reference::kLiveParameters; ++id)
            text << "\n    " << std::setw(2) << id << "  " << bitsAndValue(reference_->getParameter(id));
        return text.str();
    }

    const Scenario& scenario_;
    std::vector<Challenger> challengers_;
    std::unique_ptr<ReferenceEngine> reference_;
    std::size_t action_ = 0;
    std::string difference_;
};

} // namespace

std::optional<std::string> firstDifference(const Scenario& scenario) {
    std::optional<std::string> difference = Duel(scenario, 1).play();
    for (std::int32_t read : {0, 2}) {
        if (!difference || !scenario.hasForeignModes)
            return difference;
        if (!Duel(scenario, read).play())
            return std::nullopt;
    }
    return difference;
}
