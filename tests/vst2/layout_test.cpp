// The layout in bytes on a 64-bit system, as every host of the last decades has been compiled with it. The
// compiler checks nearly all of it; the tests that run look at values.

#include "vst2/vst2.h"

#include <gtest/gtest.h>

#include <cstring>
#include <type_traits>

namespace {

using namespace vst2;

static_assert(sizeof(void*) == 8, "the numbers below are those of a 64-bit system");

#define LIES_AT(structure, field, offset, size)                                                              \
    static_assert(offsetof(structure, field) == (offset) && sizeof(structure::field) == (size))

static_assert(sizeof(AEffect) == 192);
LIES_AT(AEffect, magic, 0, 4);
LIES_AT(AEffect, dispatcher, 8, 8);
LIES_AT(AEffect, process, 16, 8);
LIES_AT(AEffect, setParameter, 24, 8);
LIES_AT(AEffect, getParameter, 32, 8);
LIES_AT(AEffect, numPrograms, 40, 4);
LIES_AT(AEffect, numParams, 44, 4);
LIES_AT(AEffect, numInputs, 48, 4);
LIES_AT(AEffect, numOutputs, 52, 4);
LIES_AT(AEffect, flags, 56, 4);
LIES_AT(AEffect, resvd1, 64, 8);
LIES_AT(AEffect, resvd2, 72, 8);
LIES_AT(AEffect, initialDelay, 80, 4);
LIES_AT(AEffect, realQualities, 84, 4);
LIES_AT(AEffect, offQualities, 88, 4);
LIES_AT(AEffect, ioRatio, 92, 4);
LIES_AT(AEffect, object, 96, 8);
LIES_AT(AEffect, user, 104, 8);
LIES_AT(AEffect, uniqueID, 112, 4);
LIES_AT(AEffect, version, 116, 4);
LIES_AT(AEffect, processReplacing, 120, 8);
LIES_AT(AEffect, processDoubleReplacing, 128, 8);
LIES_AT(AEffect, future, 136, 56);

static_assert(sizeof(ERect) == 8);
LIES_AT(ERect, top, 0, 2);
LIES_AT(ERect, left, 2, 2);
LIES_AT(ERect, bottom, 4, 2);
LIES_AT(ERect, right, 6, 2);

static_assert(sizeof(VstEvent) == 32);
LIES_AT(VstEvent, type, 0, 4);
LIES_AT(VstEvent, byteSize, 4, 4);
LIES_AT(VstEvent, deltaFrames, 8, 4);
LIES_AT(VstEvent, flags, 12, 4);
LIES_AT(VstEvent, data, 16, 16);

static_assert(sizeof(VstMidiEvent) == 32);
LIES_AT(VstMidiEvent, type, 0, 4);
LIES_AT(VstMidiEvent, byteSize, 4, 4);
LIES_AT(VstMidiEvent, deltaFrames, 8, 4);
LIES_AT(VstMidiEvent, flags, 12, 4);
LIES_AT(VstMidiEvent, noteLength, 16, 4);
LIES_AT(VstMidiEvent, noteOffset, 20, 4);
LIES_AT(VstMidiEvent, midiData, 24, 4);
LIES_AT(VstMidiEvent, detune, 28, 1);
LIES_AT(VstMidiEvent, noteOffVelocity, 29, 1);
LIES_AT(VstMidiEvent, reserved1, 30, 1);
LIES_AT(VstMidiEvent, reserved2, 31, 1);

static_assert(sizeof(VstMidiSysexEvent) == 48);
LIES_AT(VstMidiSysexEvent, dumpBytes, 16, 4);
LIES_AT(VstMidiSysexEvent, resvd1, 24, 8);
LIES_AT(VstMidiSysexEvent, sysexDump, 32, 8);
LIES_AT(VstMidiSysexEvent, resvd2, 40, 8);

static_assert(sizeof(VstEvents) == 32);
LIES_AT(VstEvents, numEvents, 0, 4);
LIES_AT(VstEvents, reserved, 8, 8);
LIES_AT(VstEvents, events, 16, 16);

static_assert(sizeof(VstPinProperties) == 128);
LIES_AT(VstPinProperties, label, 0, 64);
LIES_AT(VstPinProperties, flags, 64, 4);
LIES_AT(VstPinProperties, arrangementType, 68, 4);
LIES_AT(VstPinProperties, shortLabel, 72, 8);
LIES_AT(VstPinProperties, future, 80, 48);

static_assert(sizeof(VstParameterProperties) == 152);
LIES_AT(VstParameterProperties, stepFloat, 0, 4);
LIES_AT(VstParameterProperties, smallStepFloat, 4, 4);
LIES_AT(VstParameterProperties, largeStepFloat, 8, 4);
LIES_AT(VstParameterProperties, label, 12, 64);
LIES_AT(VstParameterProperties, flags, 76, 4);
LIES_AT(VstParameterProperties, minInteger, 80, 4);
LIES_AT(VstParameterProperties, maxInteger, 84, 4);
LIES_AT(VstParameterProperties, stepInteger, 88, 4);
LIES_AT(VstParameterProperties, largeStepInteger, 92, 4);
LIES_AT(VstParameterProperties, shortLabel, 96, 8);
LIES_AT(VstParameterProperties, displayIndex, 104, 2);
LIES_AT(VstParameterProperties, category, 106, 2);
LIES_AT(VstParameterProperties, numParametersInCategory, 108, 2);
LIES_AT(VstParameterProperties, reserved, 110, 2);
LIES_AT(VstParameterProperties, categoryLabel, 112, 24);
LIES_AT(VstParameterProperties, future, 136, 16);

static_assert(sizeof(VstSpeakerProperties) == 112);
LIES_AT(VstSpeakerProperties, name, 16, 64);
LIES_AT(VstSpeakerProperties, type, 80, 4);
LIES_AT(VstSpeakerProperties, future, 84, 28);

static_assert(sizeof(VstSpeakerArrangement) == 8 + 8 * 112);
LIES_AT(VstSpeakerArrangement, type, 0, 4);
LIES_AT(VstSpeakerArrangement, numChannels, 4, 4);
LIES_AT(VstSpeakerArrangement, speakers, 8, 8 * 112);

static_assert(sizeof(VstKeyCode) == 8);
LIES_AT(VstKeyCode, character, 0, 4);
LIES_AT(VstKeyCode, virt, 4, 1);
LIES_AT(VstKeyCode, modifier, 5, 1);

static_assert(sizeof(MidiProgramName) == 80);
LIES_AT(MidiProgramName, thisProgramIndex, 0, 4);
LIES_AT(MidiProgramName, flags, 4, 4);
LIES_AT(MidiProgramName, name, 8, 64);
LIES_AT(MidiProgramName, midiProgram, 72, 1);
LIES_AT(MidiProgramName, parentCategoryIndex, 76, 4);

static_assert(sizeof(MidiProgramCategory) == 76);
LIES_AT(MidiProgramCategory, name, 4, 64);
LIES_AT(MidiProgramCategory, parentCategoryIndex, 68, 4);
LIES_AT(MidiProgramCategory, flags, 72, 4);

static_assert(sizeof(MidiKeyName) == 80);
LIES_AT(MidiKeyName, thisKeyNumber, 4, 4);
LIES_AT(MidiKeyName, keyName, 8, 64);
LIES_AT(MidiKeyName, reserved, 72, 4);
LIES_AT(MidiKeyName, flags, 76, 4);

static_assert(sizeof(VstVariableIo) == 40);
LIES_AT(VstVariableIo, numSamplesInput, 16, 4);
LIES_AT(VstVariableIo, numSamplesOutput, 20, 4);
LIES_AT(VstVariableIo, numSamplesInputProcessed, 24, 8);
LIES_AT(VstVariableIo, numSamplesOutputProcessed, 32, 8);

static_assert(sizeof(VstPatchChunkInfo) == 64);
LIES_AT(VstPatchChunkInfo, version, 0, 4);
LIES_AT(VstPatchChunkInfo, pluginUniqueID, 4, 4);
LIES_AT(VstPatchChunkInfo, pluginVersion, 8, 4);
LIES_AT(VstPatchChunkInfo, numElements, 12, 4);

static_assert(sizeof(VstTimeInfo) == 88);
LIES_AT(VstTimeInfo, samplePos, 0, 8);
LIES_AT(VstTimeInfo, cycleEndPos, 56, 8);
LIES_AT(VstTimeInfo, timeSigNumerator, 64, 4);
LIES_AT(VstTimeInfo, timeSigDenominator, 68, 4);
LIES_AT(VstTimeInfo, smpteOffset, 72, 4);
LIES_AT(VstTimeInfo, smpteFrameRate, 76, 4);
LIES_AT(VstTimeInfo, samplesToNextClock, 80, 4);
LIES_AT(VstTimeInfo, flags, 84, 4);

// Hosts zero these and copy them as bytes.
static_assert(std::is_trivial_v<AEffect> && std::is_standard_layout_v<AEffect>);
static_assert(std::is_trivial_v<VstEvents> && std::is_standard_layout_v<VstEvents>);
static_assert(std::is_trivial_v<VstTimeInfo> && std::is_standard_layout_v<VstTimeInfo>);

// Numbers that a host or plug-in of ours speaks and that agreement_test.cpp has nothing to compare with.
static_assert(effSetBypass == 44 && effGetTailSize == 52 && effGetParameterProperties == 56);
static_assert(effEditKeyDown == 59 && effEditKeyUp == 60 && effSetEditKnobMode == 61);
static_assert(effGetMidiProgramName == 62 && effGetMidiProgramCategory == 64 &&
              effHasMidiProgramsChanged == 65);
static_assert(effGetMidiKeyName == 66 && effBeginSetProgram == 67 && effEndSetProgram == 68);
static_assert(effSetPanLaw == 74 && effBeginLoadBank == 75 && effBeginLoadProgram == 76);
static_assert(effGetNumMidiInputChannels == 78 && effGetNumMidiOutputChannels == 79);
static_assert(audioMasterIdle == 3 && audioMasterUpdateDisplay == 42);
static_assert(effFlagsHasClip == 0x2 && effFlagsHasVu == 0x4 && effFlagsCanMono == 0x8);
static_assert(kVstPinIsActive == 1 && kVstPinIsStereo == 2 && kVstPinUseSpeaker == 4);

TEST(InterfaceLayout, PutsTheFirstCharacterOfACodeInTheTopByte) {
    EXPECT_EQ(fourCharacterCode("VstP"), 0x56737450);
    EXPECT_EQ(fourCharacterCode("qlvd"), 'q' * 0x1000000 + 'l' * 0x10000 + 'v' * 0x100 + 'd');
    EXPECT_LT(fourCharacterCode("\xff\0\0\0"), 0) << "the top byte holds the sign";
}

TEST(InterfaceLayout, LetsAnEventBeReadByItsHead) {
    VstMidiEvent midi = {};
    midi.type = kVstMidiType;
    midi.deltaFrames = 17;
    midi.midiData[0] = static_cast<char>(0xB0);
    VstEvent head;
    static_assert(sizeof head == sizeof midi);
    std::memcpy(&head, &midi, sizeof head);
    EXPECT_EQ(head.type, kVstMidiType);
    EXPECT_EQ(head.deltaFrames, 17);
    EXPECT_EQ(head.data[8], static_cast<char>(0xB0));
}

} // namespace
