// The VST 2.4 binary interface: the record a plug-in hands to its host, the numbers they speak in, and the
// structures that pass between them. Nothing but data and constants, so that both sides of the conversation
// (our plug-in and our test hosts) read the same page.
//
// The names are those of the published interface. They sit in a namespace because other libraries of the
// process bring names of their own (the drawing toolkit has a global VstKeyCode).
#pragma once

#include <cstddef>
#include <cstdint>

namespace vst2 {

/// A four-character code: the first character stands in the top byte.
constexpr std::int32_t fourCharacterCode(const char (&text)[5]) {
    std::uint32_t code = 0;
    for (int i = 0; i < 4; ++i)
        code = (code << 8) | static_cast<unsigned char>(text[i]);
    return static_cast<std::int32_t>(code);
}

struct AEffect;

/// The host's one function. The plug-in calls it on whatever thread it is on.
using audioMasterCallback = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                              std::intptr_t value, void* ptr, float opt);

using AEffectDispatcherProc = std::intptr_t (*)(AEffect* effect, std::int32_t opcode, std::int32_t index,
                                                std::intptr_t value, void* ptr, float opt);
/// Audio: channels x frames.
using AEffectProcessProc = void (*)(AEffect* effect, float** inputs, float** outputs,
                                    std::int32_t sampleFrames);
using AEffectProcessDoubleProc = void (*)(AEffect* effect, double** inputs, double** outputs,
                                          std::int32_t sampleFrames);
/// Parameter values are normalised, nominally 0..1.
using AEffectSetParameterProc = void (*)(AEffect* effect, std::int32_t index, float parameter);
using AEffectGetParameterProc = float (*)(AEffect* effect, std::int32_t index);

/// The function a library exports: takes the host's callback, gives one new instance or null.
using VstEntryPoint = AEffect* (*)(audioMasterCallback host);

constexpr std::int32_t kVstMagic = fourCharacterCode("VstP");
constexpr std::int32_t kVstVersion = 2400;

enum AEffectFlags : std::int32_t {
    effFlagsHasEditor = 1 << 0,
    effFlagsHasClip = 1 << 1,
    effFlagsHasVu = 1 << 2,
    effFlagsCanMono = 1 << 3,
    effFlagsCanReplacing = 1 << 4,
    effFlagsProgramChunks = 1 << 5,
    effFlagsIsSynth = 1 << 8,
    effFlagsNoSoundInStop = 1 << 9,
    effFlagsCanDoubleReplacing = 1 << 12,
};

/// All that a host knows of an instance.
struct AEffect {
    std::int32_t magic;
    AEffectDispatcherProc dispatcher;
    AEffectProcessProc process;
    AEffectSetParameterProc setParameter;
    AEffectGetParameterProc getParameter;
    std::int32_t numPrograms;
    std::int32_t numParams;
    std::int32_t numInputs;
    std::int32_t numOutputs;
    std::int32_t flags;
    std::intptr_t resvd1; ///< the host's own
    std::intptr_t resvd2; ///< the host's own
    std::int32_t initialDelay;
    std::int32_t realQualities;
    std::int32_t offQualities;
    float ioRatio;
    void* object; ///< the plug-in's own
    void* user;
    std::int32_t uniqueID;
    std::int32_t version;
    AEffectProcessProc processReplacing;
    AEffectProcessDoubleProc processDoubleReplacing;
    char future[56];
};

/// What a host asks of a plug-in, through AEffect::dispatcher.
enum AEffectOpcode : std::int32_t {
    effOpen = 0,
    effClose = 1,
    effSetProgram = 2,
    effGetProgram = 3,
    effSetProgramName = 4,
    effGetProgramName = 5,
    effGetParamLabel = 6,
    effGetParamDisplay = 7,
    effGetParamName = 8,
    effGetVu = 9,
    effSetSampleRate = 10,
    effSetBlockSize = 11,
    effMainsChanged = 12,
    effEditGetRect = 13,
    effEditOpen = 14,
    effEditClose = 15,
    effEditDraw = 16,
    effEditMouse = 17,
    effEditKey = 18,
    effEditIdle = 19,
    effEditTop = 20,
    effEditSleep = 21,
    effIdentify = 22,
    effGetChunk = 23,
    effSetChunk = 24,
    effProcessEvents = 25,
    effCanBeAutomated = 26,
    effString2Parameter = 27,
    effGetNumProgramCategories = 28,
    effGetProgramNameIndexed = 29,
    effCopyProgram = 30,
    effConnectInput = 31,
    effConnectOutput = 32,
    effGetInputProperties = 33,
    effGetOutputProperties = 34,
    effGetPlugCategory = 35,
    effGetCurrentPosition = 36,
    effGetDestinationBuffer = 37,
    effOfflineNotify = 38,
    effOfflinePrepare = 39,
    effOfflineRun = 40,
    effProcessVarIo = 41,
    effSetSpeakerArrangement = 42,
    effSetBlockSizeAndSampleRate = 43,
    effSetBypass = 44,
    effGetEffectName = 45,
    effGetErrorText = 46,
    effGetVendorString = 47,
    effGetProductString = 48,
    effGetVendorVersion = 49,
    effVendorSpecific = 50,
    effCanDo = 51,
    effGetTailSize = 52,
    effIdle = 53,
    effGetIcon = 54,
    effSetViewPosition = 55,
    effGetParameterProperties = 56,
    effKeysRequired = 57,
    effGetVstVersion = 58,
    effEditKeyDown = 59,
    effEditKeyUp = 60,
    effSetEditKnobMode = 61,
    effGetMidiProgramName = 62,
    effGetCurrentMidiProgram = 63,
    effGetMidiProgramCategory = 64,
    effHasMidiProgramsChanged = 65,
    effGetMidiKeyName = 66,
    effBeginSetProgram = 67,
    effEndSetProgram = 68,
    effGetSpeakerArrangement = 69,
    effShellGetNextPlugin = 70,
    effStartProcess = 71,
    effStopProcess = 72,
    effSetTotalSampleToProcess = 73,
    effSetPanLaw = 74,
    effBeginLoadBank = 75,
    effBeginLoadProgram = 76,
    effSetProcessPrecision = 77,
    effGetNumMidiInputChannels = 78,
    effGetNumMidiOutputChannels = 79,
};

/// What a plug-in asks of its host, through audioMasterCallback.
enum AudioMasterOpcode : std::int32_t {
    audioMasterAutomate = 0,
    audioMasterVersion = 1,
    audioMasterCurrentId = 2,
    audioMasterIdle = 3,
    audioMasterPinConnected = 4,
    audioMasterWantMidi = 6,
    audioMasterGetTime = 7,
    audioMasterProcessEvents = 8,
    audioMasterIOChanged = 13,
    audioMasterSizeWindow = 15,
    audioMasterGetSampleRate = 16,
    audioMasterGetBlockSize = 17,
    audioMasterGetInputLatency = 18,
    audioMasterGetOutputLatency = 19,
    audioMasterGetCurrentProcessLevel = 23,
    audioMasterGetAutomationState = 24,
    audioMasterOfflineStart = 25,
    audioMasterOfflineRead = 26,
    audioMasterOfflineWrite = 27,
    audioMasterOfflineGetCurrentPass = 28,
    audioMasterOfflineGetCurrentMetaPass = 29,
    audioMasterGetVendorString = 32,
    audioMasterGetProductString = 33,
    audioMasterGetVendorVersion = 34,
    audioMasterVendorSpecific = 35,
    audioMasterCanDo = 37,
    audioMasterGetLanguage = 38,
    audioMasterGetDirectory = 41,
    audioMasterUpdateDisplay = 42,
    audioMasterBeginEdit = 43,
    audioMasterEndEdit = 44,
    audioMasterOpenFileSelector = 45,
    audioMasterCloseFileSelector = 46,
};

/// Lengths of texts as the interface names them. Buffers must hold one byte more; see each caller.
enum VstStringConstants : std::int32_t {
    kVstMaxProgNameLen = 24,
    kVstMaxParamStrLen = 8,
    kVstMaxVendorStrLen = 64,
    kVstMaxProductStrLen = 64,
    kVstMaxEffectNameLen = 32,
    kVstMaxLabelLen = 64,
    kVstMaxShortLabelLen = 8,
    kVstMaxNameLen = 64,
};

/// Answer of effGetPlugCategory.
enum VstPlugCategory : std::int32_t { kPlugCategUnknown = 0 };

/// A window's size in pixels, as effEditGetRect gives it.
struct ERect {
    std::int16_t top;
    std::int16_t left;
    std::int16_t bottom;
    std::int16_t right;
};

enum VstEventTypes : std::int32_t { kVstMidiType = 1, kVstSysExType = 6 };

/// The head that every event shares. `type` says which structure it really is.
struct VstEvent {
    std::int32_t type;
    std::int32_t byteSize;    ///< size of the rest, behind `type` and `byteSize`
    std::int32_t deltaFrames; ///< samples from the start of the next block
    std::int32_t flags;
    char data[16];
};

struct VstMidiEvent {
    std::int32_t type; ///< kVstMidiType
    std::int32_t byteSize;
    std::int32_t deltaFrames; ///< samples from the start of the next block
    std::int32_t flags;
    std::int32_t noteLength;
    std::int32_t noteOffset;
    char midiData[4]; ///< one to three MIDI bytes, then zero
    char detune;
    char noteOffVelocity;
    char reserved1;
    char reserved2;
};

struct VstMidiSysexEvent {
    std::int32_t type; ///< kVstSysExType
    std::int32_t byteSize;
    std::int32_t deltaFrames;
    std::int32_t flags;
    std::int32_t dumpBytes;
    std::intptr_t resvd1;
    char* sysexDump;
    std::intptr_t resvd2;
};

/// A list of events. `events` really has `numEvents` entries.
struct VstEvents {
    std::int32_t numEvents;
    std::intptr_t reserved;
    VstEvent* events[2];
};

enum VstPinPropertiesFlags : std::int32_t {
    kVstPinIsActive = 1 << 0,
    kVstPinIsStereo = 1 << 1,
    kVstPinUseSpeaker = 1 << 2,
};

struct VstPinProperties {
    char label[kVstMaxLabelLen];
    std::int32_t flags;
    std::int32_t arrangementType;
    char shortLabel[kVstMaxShortLabelLen];
    char future[48];
};

struct VstParameterProperties {
    float stepFloat;
    float smallStepFloat;
    float largeStepFloat;
    char label[kVstMaxLabelLen];
    std::int32_t flags;
    std::int32_t minInteger;
    std::int32_t maxInteger;
    std::int32_t stepInteger;
    std::int32_t largeStepInteger;
    char shortLabel[kVstMaxShortLabelLen];
    std::int16_t displayIndex;
    std::int16_t category;
    std::int16_t numParametersInCategory;
    std::int16_t reserved;
    char categoryLabel[24];
    char future[16];
};

struct VstSpeakerProperties {
    float azimuth;
    float elevation;
    float radius;
    float reserved;
    char name[kVstMaxNameLen];
    std::int32_t type;
    char future[28];
};

/// `speakers` really has `numChannels` entries.
struct VstSpeakerArrangement {
    std::int32_t type;
    std::int32_t numChannels;
    VstSpeakerProperties speakers[8];
};

struct VstKeyCode {
    std::int32_t character;
    unsigned char virt;
    unsigned char modifier;
};

struct MidiProgramName {
    std::int32_t thisProgramIndex;
    std::int32_t flags;
    char name[kVstMaxNameLen];
    char midiProgram;
    char midiBankMsb;
    char midiBankLsb;
    char reserved;
    std::int32_t parentCategoryIndex;
};

struct MidiProgramCategory {
    std::int32_t thisCategoryIndex;
    char name[kVstMaxNameLen];
    std::int32_t parentCategoryIndex;
    std::int32_t flags;
};

struct MidiKeyName {
    std::int32_t thisProgramIndex;
    std::int32_t thisKeyNumber;
    char keyName[kVstMaxNameLen];
    std::int32_t reserved;
    std::int32_t flags;
};

struct VstVariableIo {
    float** inputs;
    float** outputs;
    std::int32_t numSamplesInput;
    std::int32_t numSamplesOutput;
    std::int32_t* numSamplesInputProcessed;
    std::int32_t* numSamplesOutputProcessed;
};

/// Handed over by effBeginLoadBank and effBeginLoadProgram.
struct VstPatchChunkInfo {
    std::int32_t version;
    std::int32_t pluginUniqueID;
    std::int32_t pluginVersion;
    std::int32_t numElements;
    char future[48];
};

enum VstTimeInfoFlags : std::int32_t {
    kVstTransportPlaying = 1 << 1,
    kVstPpqPosValid = 1 << 9,
    kVstTempoValid = 1 << 10,
    kVstTimeSigValid = 1 << 13,
};

/// The answer to audioMasterGetTime.
struct VstTimeInfo {
    double samplePos;
    double sampleRate;
    double nanoSeconds;
    double ppqPos;
    double tempo;
    double barStartPos;
    double cycleStartPos;
    double cycleEndPos;
    std::int32_t timeSigNumerator;
    std::int32_t timeSigDenominator;
    std::int32_t smpteOffset;
    std::int32_t smpteFrameRate;
    std::int32_t samplesToNextClock;
    std::int32_t flags;
};

} // namespace vst2
