// A VST 2.4 host in a few calls: load a library, make an instance, hold the whole conversation with it.
//
//     host::Library library("/path/to/Plugin.so");
//     host::Plugin plugin(library);
//     plugin.start(48000.0f, 512);
//     plugin.process(inputs, outputs, 512);
//
// The tools and the tests use nothing else to reach a plug-in. What the plug-in says to its host is answered
// the way a plain sequencer would and recorded, call by call, for inspection.
#pragma once

#include "desk/shared_library.h"
#include "host/library_call.h"
#include "vst2/vst2.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace host {

/// The library or the instance cannot be used; what() is one line for a person.
class HostError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// A loaded plug-in library and its entry point. Outlives every instance made from it.
class Library {
  public:
    /// Loads `path` and looks for `entryPoint`; with an empty name, for "VSTPluginMain" and then "main".
    /// Throws HostError naming the file if it cannot be loaded or exports no such function.
    explicit Library(const std::string& path, const std::string& entryPoint = "");
    vst2::VstEntryPoint entryPoint() const { return entryPoint_; }
    const std::string& path() const { return path_; }
    /// Any exported symbol, or null.
    void* symbol(const char* name) const { return library_.symbol(name); }

  private:
    std::string path_;
    desk::SharedLibrary library_;
    vst2::VstEntryPoint entryPoint_ = nullptr;
};

/// One call from the plug-in to its host, with the state of the plug-in's record at that time.
struct HostCall {
    std::int32_t opcode = 0;
    std::int32_t index = 0;
    std::intptr_t value = 0;
    float opt = 0;
    bool hadRecord = false;     ///< false for a call with a null record
    std::int32_t uniqueID = 0;  ///< of the record, where there was one
    std::int32_t numInputs = 0; ///< of the record, where there was one
    std::string text;           ///< what `ptr` pointed at, for audioMasterCanDo
    std::intptr_t answer = 0;   ///< what the host said
};

/// How the host behaves; change it before the instance is made, or between calls.
struct HostBehaviour {
    /// Answer to audioMasterVersion; 0 makes a well-behaved plug-in refuse to load.
    std::int32_t version = vst2::kVstVersion;
    float sampleRate = 44100.0f;  ///< Hz; follows setSampleRate
    std::int32_t blockSize = 512; ///< frames; follows setBlockSize
    double tempo = 120.0;         ///< beats per minute
    std::string vendor = "Quillon Software";
    std::string product = "Quillon Test Host";
    /// Called first for each call: a value is the answer, none leaves it to the host's default.
    std::function<std::optional<std::intptr_t>(const HostCall& call, void* ptr)> answer;
    /// Whether calls are recorded. Recording allocates: turn it off where the audio thread is watched.
    bool record = true;
};

/// A MIDI message of up to three bytes, `deltaFrames` samples into the next block.
struct MidiMessage {
    std::int32_t deltaFrames = 0;
    unsigned char bytes[3] = {};
};

/// One instance of a plug-in. Not thread safe by itself: each operation runs on the calling thread and
/// reaches the plug-in there, exactly as if the host's thread of that kind had called. The plug-in may call
/// back on any thread.
class Plugin {
  public:
    /// Calls the entry point. Throws HostError if the library gives no instance, or a record that is not one
    /// or tells of more programs, parameters or channels than any effect has.
    explicit Plugin(const Library& library, HostBehaviour behaviour = {});
    /// Sends effClose if close() has not been called.
    ~Plugin();
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    /// The record itself, for what has no operation here. Null after close().
    vst2::AEffect* effect() { return effect_; }
    const vst2::AEffect* effect() const { return effect_; }
    /// One opcode as it is. Throws HostError after close().
    std::intptr_t dispatch(std::int32_t opcode, std::int32_t index = 0, std::intptr_t value = 0,
                           void* ptr = nullptr, float opt = 0.0f);

    /// effOpen, sample rate (Hz), block size (frames), then resume.
    void start(float sampleRate, std::int32_t blockSize);
    /// effOpen. Throws HostError as the constructor does, since some fill their record only now.
    void open();
    /// effClose. The record is gone afterwards. Gives the plug-in's answer.
    std::intptr_t close();
    void setSampleRate(float sampleRate);
    void setBlockSize(std::int32_t blockSize);
    void resume();
    void suspend();

    std::int32_t numPrograms() const { return effect_->numPrograms; }
    std::int32_t numParams() const { return effect_->numParams; }
    void setParameter(std::int32_t id, float value) {
        const LibraryCall call(path_, "setParameter");
        effect_->setParameter(effect_, id, value);
    }
    float getParameter(std::int32_t id) {
        const LibraryCall call(path_, "getParameter");
        return effect_->getParameter(effect_, id);
    }
    std::string parameterName(std::int32_t id);
    std::string parameterDisplay(std::int32_t id);
    std::string parameterLabel(std::int32_t id);

    void setProgram(std::int32_t program);
    std::int32_t getProgram();
    void setProgramName(const std::string& name);
    std::string programName();
    /// Name by number without selecting it; nothing if the plug-in does not say.
    std::optional<std::string> programName(std::int32_t program);

    std::string effectName();
    std::string vendor();
    std::string product();
    std::int32_t canDo(const std::string& what);

    /// A copy of the chunk: the current program alone, or the whole bank. Throws HostError for one of more
    /// than 256 MiB.
    std::vector<std::uint8_t> getChunk(bool isPreset);
    std::intptr_t setChunk(std::span<const std::uint8_t> data, bool isPreset);

    /// Sends the messages as one event list, ahead of the block they belong to. Gives the plug-in's answer.
    /// The list stays where it is until the next one, for plug-ins that read it only when they process.
    std::intptr_t sendMidi(std::span<const MidiMessage> messages);

    /// Plain pass-through to processReplacing: channels x frames, buffers may be shared between in and out.
    void process(float** inputs, float** outputs, std::int32_t frames) {
        const LibraryCall call(path_, "processReplacing");
        effect_->processReplacing(effect_, inputs, outputs, frames);
        position_ += frames;
    }
    /// Renders any length in blocks of `blockSize` frames into separate buffers, whatever channels the
    /// plug-in has: an input that is not given is silent, an output that is not asked for is dropped, and one
    /// that the plug-in does not have is filled with silence. Throws HostError for a block size below 1.
    void processChannels(std::span<const float* const> inputs, std::span<float* const> outputs,
                         std::int64_t frames, std::int32_t blockSize);
    /// Renders stereo of any length in blocks of `blockSize` frames into separate buffers.
    void processStereo(const float* inLeft, const float* inRight, float* outLeft, float* outRight,
                       std::int64_t frames, std::int32_t blockSize);

    /// The plug-in's calls to its host, in order, since the entry point was called. Read it while no other
    /// thread is in the plug-in.
    const std::vector<HostCall>& calls() const { return calls_; }
    std::int64_t callsOf(std::int32_t opcode) const;
    void clearCalls() { calls_.clear(); }
    HostBehaviour& behaviour() { return behaviour_; }

  private:
    static std::intptr_t callback(vst2::AEffect* effect, std::int32_t opcode, std::int32_t index,
                                  std::intptr_t value, void* ptr, float opt);
    std::intptr_t handle(HostCall call, void* ptr);
    std::intptr_t defaultAnswer(const HostCall& call, void* ptr);
    vst2::VstTimeInfo* timeInfo();
    std::string text(std::int32_t opcode, std::int32_t index = 0);

    std::string path_; ///< of the library
    HostBehaviour behaviour_;
    vst2::AEffect* effect_ = nullptr;
    std::mutex callsGuard_;
    std::vector<HostCall> calls_;
    std::int64_t position_ = 0; ///< frames processed
    vst2::VstTimeInfo time_ = {};
    std::vector<vst2::VstMidiEvent> midiEvents_;
    std::vector<std::byte> eventList_;
};

} // namespace host
