// The effect: everything that it is apart from how hosts speak to it. A door for a plug-in format owns one,
// turns the calls of its hosts into operations of it, and tells it where its host and its window are.
//
// The fields that threads share. No lock guards any of them; each is a plain 32-bit value (or a byte),
// written and read by relaxed atomic accesses. A field that is computed from others is computed again if
// they have changed meanwhile (base/recompute.h), so that a race of two writers leaves no outdated
// value.
//
//   field                        written by                              read by
//   live parameters              setParameter, setStoredParameter,       the audio loop, once a sub-block
//                                setProgram (any thread), from the
//                                stored value; "Pre Gain" by the audio
//                                loop too
//   stored program values        setParameter, setChunk (any thread)     setProgram, getChunk,
//                                                                        getStoredParameter
//   curProgram, sampleRate        setProgram, setSampleRate               setParameter, getChunk, resume
//   tap times, gains, count,     computeTapPattern (any thread), entry   the audio loop, once a sub-block;
//   read mode, sweep's rate      by entry, in place                      the gains by drawPattern too
//   filter coefficients          setParameter, setProgram, resume,       the audio loop, once a sub-block
//                                setSampleRate; as one whole set
//   fadeArmed, fadeBlockCount    setParameter, resume; the audio loop    the audio loop, once a block
//   the request to clear         setProgram, resume, setSampleRate       the audio loop, which carries it out
//   the controller map           the door, an editor's menu              processMidi, an editor's menu,
//                                                                        the door
//   the control that learns      the editor; processMidi                 processMidi
//
// The delay memory, the filters' and smoothers' states and the sweep's phase belong to the audio thread
// alone. Program names belong to the host's own thread.
#pragma once

#include "base/shared.h"
#include "dsp/delay_engine.h"
#include "interfaces/effect_host.h"
#include "interfaces/effect_window.h"
#include "midi/event_reader.h"
#include "presets/default_bank.h"
#include "presets/program_store.h"

#include <cstdint>

namespace effect {

class MultitapDelay final : private presets::BankReceiver, private midi::EventReceiver {
  public:
    /// Silent, with no programs yet. `host` outlives the effect.
    explicit MultitapDelay(interfaces::EffectHost& host) : host_(host) {}
    MultitapDelay(const MultitapDelay&) = delete;
    MultitapDelay& operator=(const MultitapDelay&) = delete;

    /// The first step to a complete effect: makes 128 default programs and selects the first one.
    void makePrograms();
    /// The window that is told of every change from now on; not owned. Before the effect is shared by
    /// threads.
    void setWindow(interfaces::EffectWindow& window) { window_ = &window; }
    /// The last step: 44100 Hz, and the programs of the factory bank. A bank that cannot be used is reported
    /// to the host.
    void startUp();

    /// Prepares for playing: clears all echoes and recomputes all that depends on the parameters.
    void resume();
    /// In Hz. Clears all echoes. The tap times are zero until the next change of a parameter or resume().
    void setSampleRate(float rate);
    /// In Hz. Any thread.
    float getSampleRate() const { return sampleRate_.load(); }

    /// Audio: channels x frames. The audio thread. Allocates nothing, locks nothing.
    void processReplacing(const float* const* inputs, float* const* outputs, std::int32_t sampleFrames) {
        engine_.processReplacing(inputs, outputs, sampleFrames);
    }

    /// Normalised. Id -1 stores nothing: tap pattern, read mode and sweep rate are computed anew from the
    /// parameters, the filters are not, and the window is told. Any thread.
    void setParameter(std::int32_t id, float value) override;
    /// Sets a live parameter to what the current program holds for it, which stays as it is. Any thread.
    void setStoredParameter(std::int32_t id);
    /// Any thread. 0 for an id that does nothing.
    float getParameter(std::int32_t id) const;
    /// What the current program holds for a live parameter: the value that was set, also where the sound goes
    /// by another one ("Amp Decay" has a limit, "Pre Gain" is always 1). Any thread.
    float getStoredParameter(std::int32_t id) const;
    /// The value as the window shows it. Writes at most parameters::kDisplayTextSize bytes.
    void getParameterDisplay(std::int32_t id, char* text) const;

    /// Clears all echoes, whatever the number; then selects the program if there is one. Any thread.
    void setProgram(std::int32_t program) override;
    std::int32_t getProgram() override { return curProgram_.load(); }
    /// Keeps the first 24 bytes.
    void setProgramName(const char* name);
    /// Writes 25 bytes; false and nothing if there is no such program.
    bool getProgramName(std::int32_t program, char* text) const;

    /// The current program, or all of them. Gives the size in bytes and points `data` at the bytes, which
    /// stay as they are until the next getChunk or setChunk.
    std::int32_t getChunk(void** data, bool isPreset);
    /// Always 1. Ends in a change of program, also where the chunk was refused, of which the host is told.
    std::int32_t setChunk(void* data, std::int32_t byteSize, bool isPreset) override;

    /// Acts on a MIDI message at once. Allocates nothing. On whichever thread the host chooses.
    void processMidi(const midi::Message& message) { midi::readMessage(message, notes_, *this); }

    /// The levels of all taps, for a window.
    interfaces::TapGains tapGains() const { return engine_.tapPattern().tapGain; }

  private:
    void loadDefaultBank();
    void tellWindow(std::int32_t id, float value);
    void drawPattern();
    void storeParameter(std::int32_t id, float value);
    void loadParameter(std::int32_t id);
    void applyChange(std::int32_t id);

    std::int32_t uniqueID() override { return host_.uniqueID(); }
    void reportProblem(const char* text, const char* caption) override { host_.reportProblem(text, caption); }
    void programChange(std::int32_t program) override { setProgram(program); }
    void controlChange(std::int32_t controller, float value) override;

    interfaces::EffectHost& host_;
    interfaces::EffectWindow* window_ = nullptr; ///< not owned
    dsp::DelayEngine engine_;
    presets::ProgramStore programs_;
    midi::NoteState notes_;
    base::Shared<float> sampleRate_ = 44100.0f; ///< Hz
    base::Shared<std::int32_t> curProgram_;
};

} // namespace effect
