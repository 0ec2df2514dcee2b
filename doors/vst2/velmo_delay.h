// The plug-in object: the one place where all rooms meet. A host holds one AEffect record per instance and
// reaches everything through it.
//
// What crosses from one thread to another, and how. No lock guards any of it; every such field is a plain
// 32-bit value (or a byte), written and read by relaxed atomic accesses. What follows from other fields is
// computed again if they have changed meanwhile (base/recompute.h), so that no race of two writers
// outlives them.
//
//   field                        written by                              read by
//   live parameters              setParameter, setProgram (any thread),  the audio loop, once a sub-block
//                                from the stored value; "Pre Gain" by
//                                the audio loop too
//   stored program values        setParameter, setChunk (any thread)     setProgram, getChunk
//   curProgram, sampleRate       setProgram, setSampleRate               setParameter, getChunk, resume
//   tap times, gains, count,     computeTapPattern (any thread), entry   the audio loop, once a sub-block
//   read mode, sweep's rate      by entry, in place
//   filter coefficients          setParameter, setProgram, resume,       the audio loop, once a sub-block
//                                setSampleRate; as one whole set
//   fadeArmed, fadeBlockCount    setParameter, resume; the audio loop    the audio loop, once a block
//   the request to clear         setProgram, resume, setSampleRate       the audio loop, which carries it out
//   the controller map           the constructor, an editor's menu       processEvents
//   the control that learns      the editor; processEvents               processEvents
//
// The delay memory, the filters' and smoothers' states and the sweep's phase belong to the audio thread
// alone. Program names belong to the host's own thread.
#pragma once

#include "dsp/delay_engine.h"
#include "midi/event_reader.h"
#include "plugin/audio_effect_x.h"
#include "presets/default_bank.h"
#include "presets/program_store.h"

namespace editor {
class myEditor;
}

namespace plugin {

class velmo_delay final : public AudioEffectX, private presets::BankReceiver, private midi::EventReceiver {
  public:
    /// A complete effect at 44100 Hz, on program 0 of the factory bank or, without one, on the default
    /// program. A bank that cannot be used is reported in a message box. `host` may be null.
    explicit velmo_delay(vst2::audioMasterCallback host);
    /// Writes the controller map to the current directory.
    ~velmo_delay() override;

    /// In large pages, where the system grants them: the taps read all over the delay memory.
    static void* operator new(std::size_t size);
    static void operator delete(void* memory);

    void resume() override;
    void setSampleRate(float rate) override;
    void setBlockSize(std::int32_t frames) override { blockSize = frames; }
    void processReplacing(float** inputs, float** outputs, std::int32_t sampleFrames) override;

    /// Id -1 stores nothing and renews all that follows from the parameters. Any thread.
    void setParameter(std::int32_t id, float value) override;
    float getParameter(std::int32_t id) override;
    /// Forgets every echo, whatever the number; then selects the program if there is one. Any thread.
    void setProgram(std::int32_t program) override;
    std::int32_t getProgram() override { return curProgram.load(); }
    void setProgramName(char* name) override;
    void getProgramName(char* text) override;
    /// Writes an empty text: there are no unit labels.
    void getParameterLabel(std::int32_t id, char* text) override;
    void getParameterDisplay(std::int32_t id, char* text) override;
    void getParameterName(std::int32_t id, char* text) override;
    std::int32_t getChunk(void** data, bool isPreset) override;
    /// Always 1. Ends in a change of program, also where the chunk was refused.
    std::int32_t setChunk(void* data, std::int32_t byteSize, bool isPreset) override;
    bool getProgramNameIndexed(std::int32_t category, std::int32_t index, char* text) override;
    bool getOutputProperties(std::int32_t index, vst2::VstPinProperties* properties) override;
    std::int32_t processEvents(vst2::VstEvents* events) override;
    bool getEffectName(char* name) override;
    bool getVendorString(char* text) override;
    bool getProductString(char* text) override;
    std::int32_t getVendorVersion() override { return 1000; }
    std::int32_t canDo(const char* what) override;

  private:
    void startUp();
    void loadDefaultBank();
    void tellWindow(std::int32_t id, float value);
    void drawPattern();
    void storeParameter(std::int32_t id, float value);
    void loadParameter(std::int32_t id);
    float rate() const { return sampleRate.load(); }

    std::int32_t uniqueID() override { return cEffect.uniqueID; }
    void programChange(std::int32_t program) override { setProgram(program); }
    void controlChange(std::int32_t controller, float value) override;

    dsp::DelayEngine engine;
    presets::ProgramStore programs;
    midi::NoteState notes;
    editor::myEditor* window = nullptr; ///< the editor, which the frame owns
};

} // namespace plugin
