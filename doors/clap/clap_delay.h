// The effect as CLAP hosts know it. A host holds a record of functions, which lead to the operations here
// (plugin_record.h). Values that a person sets live in the current program, as behind the VST 2.4 door, and
// the host keeps all programs in a state.
#pragma once

#include "base/four_character_code.h"
#include "doors/clap/host.h"
#include "doors/clap/parameter_list.h"
#include "doors/clap/untold_changes.h"
#include "doors/clap/window_link.h"
#include "effect/missing_channels.h"
#include "effect/multitap_delay.h"

#include <clap/plugin.h>
#include <clap/stream.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace clap_door {

class ClapDelay final : private interfaces::EffectHost {
  public:
    /// Calls nothing of the host. `host` outlives the instance.
    explicit ClapDelay(const clap_host_t& host) : host_(host) { effect_.setWindow(windowLink_); }

    /// Makes the programs, reads the factory bank and the controller map, and selects the first program. A
    /// bank that cannot be used is told to the host. False if there is no memory for programs. The main
    /// thread. Throws std::bad_alloc.
    bool init();

    /// `rate` in Hz. Forgets every echo, sets every parameter and brings the taps to their places. False for
    /// a rate that cannot be. The main thread.
    bool activate(double rate);
    void deactivate() { isActive_ = false; }
    bool isActive() const { return isActive_; }

    /// Forgets every echo; the parameters stay. The audio thread.
    void reset() { setAllParameters(); }

    /// Plays a block, which may be of any length, also of no frame, and in place. Each event takes effect at
    /// its frame: the block is played in pieces. An event that stands behind a later one takes effect where
    /// the block has got to, one from beyond the end at the end. The first block of an instance and the first
    /// one after activate() begin like that. Allocates nothing, locks nothing. The audio thread.
    void process(const clap_process_t& block);
    /// Sets values without playing and tells of changes. A host may do so in the middle of a block that
    /// another thread plays: nothing is touched that belongs to the audio thread.
    void flush(const clap_input_events_t* in, const clap_output_events_t* out);

    /// By a parameter's place in the list. The value is the one that was set. Any thread.
    double hostValue(std::uint32_t index);
    /// What a new instance has.
    double defaultValue(std::uint32_t index) const { return defaults_[index]; }
    /// The main thread. Throw std::bad_alloc.
    std::string textOf(std::uint32_t index, double hostValue) const;
    /// Nothing if `text` is no value.
    std::optional<double> valueOfText(std::uint32_t index, std::string_view text);

    /// The main thread, whatever the audio thread does. False if it could not be done; then load() has
    /// changed nothing.
    bool save(const clap_ostream_t& stream);
    bool load(const clap_istream_t& stream);

    /// What the hand does in a window: sets a live parameter, and takes hold of it and lets it go in turns.
    /// The host is told in the next block or flush, which it is asked for. The main thread.
    void setByHand(std::int32_t id, float value);
    void noteGesture(std::int32_t id);
    /// The window that is told of every change from now on. It stays until the instance ends.
    void connectWindow(interfaces::EffectWindow& window) { windowLink_.connect(window); }

    const effect::MultitapDelay& effect() const { return effect_; }
    const Host& host() const { return host_; }
    /// The host has ended the instance, of which there may be something left in a call that has not returned.
    void leaveHost() { host_.leave(); }

  private:
    using Values = std::array<float, parameters::kNumLiveParameters>;

    bool updateDisplay() override;
    std::int32_t uniqueID() const override { return base::fourCharacterCode("qlvd"); }
    void reportProblem(const char* text, const char* caption) override { host_.warn(caption, text); }

    Values storedValues() const;
    void setAllParameters();
    void setValue(clap_id id, double hostValue);
    void takeMessage(const clap_event_midi_t& event);
    void playAndTell(const clap_process_t& block, std::uint32_t first, std::uint32_t frames);
    void play(const clap_process_t& block, std::uint32_t first, std::uint32_t frames);
    void tellChanges(const clap_output_events_t* out, std::uint32_t time);
    std::optional<double> programOfText(std::string_view name);
    std::string programName(std::int32_t program) const;

    Host host_;
    effect::MultitapDelay effect_{*this};
    effect::MissingChannels missing_;
    std::array<double, kNumListed> defaults_ = {};
    UntoldChanges untold_;
    WindowLink windowLink_;
    bool isActive_ = false;
    bool isPlaying_ = false; ///< process() has been called since activate()
};

} // namespace clap_door
