// Two people who describe the same binary interface must agree on every byte of it. This compares our header
// with one that was found out independently, from the outside, by watching hosts and plug-ins talk. Where
// that header says itself that it guesses (numbers of 100000 and above, the tail of VstTimeInfo, the lengths
// of texts), there is nothing to compare with; layout_test.cpp holds the rest.

#include <pluginterfaces/fst/fst.h>

// It has this one as a macro, which would eat our constant's name.
constexpr int theirVersion = kVstVersion;
#undef kVstVersion

#include "vst2/vst2.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

namespace {

#define EXPECT_SAME_NUMBER(name) EXPECT_EQ(std::int64_t{::name}, std::int64_t{vst2::name})
#define EXPECT_SAME_OFFSET_AS(theirs, theirField, ours, field)                                               \
    EXPECT_EQ(offsetof(::theirs, theirField), offsetof(vst2::ours, field)) << #ours "." #field
#define EXPECT_SAME_OFFSET(theirs, ours, field) EXPECT_SAME_OFFSET_AS(theirs, field, ours, field)

TEST(InterfaceAgreement, OnMagicAndVersion) {
    EXPECT_EQ(::kEffectMagic, vst2::kVstMagic);
    EXPECT_EQ(CCONST('V', 's', 't', 'P'), vst2::fourCharacterCode("VstP"));
    EXPECT_EQ(theirVersion, vst2::kVstVersion);
}

TEST(InterfaceAgreement, OnEffectFlags) {
    EXPECT_SAME_NUMBER(effFlagsHasEditor);
    EXPECT_SAME_NUMBER(effFlagsCanReplacing);
    EXPECT_SAME_NUMBER(effFlagsProgramChunks);
    EXPECT_SAME_NUMBER(effFlagsIsSynth);
    EXPECT_SAME_NUMBER(effFlagsNoSoundInStop);
    EXPECT_SAME_NUMBER(effFlagsCanDoubleReplacing);
}

TEST(InterfaceAgreement, OnWhatAHostAsksAPlugIn) {
    EXPECT_SAME_NUMBER(effOpen);
    EXPECT_SAME_NUMBER(effClose);
    EXPECT_SAME_NUMBER(effSetProgram);
    EXPECT_SAME_NUMBER(effGetProgram);
    EXPECT_SAME_NUMBER(effSetProgramName);
    EXPECT_SAME_NUMBER(effGetProgramName);
    EXPECT_SAME_NUMBER(effGetParamLabel);
    EXPECT_SAME_NUMBER(effGetParamDisplay);
    EXPECT_SAME_NUMBER(effGetParamName);
    EXPECT_SAME_NUMBER(effSetSampleRate);
    EXPECT_SAME_NUMBER(effSetBlockSize);
    EXPECT_SAME_NUMBER(effMainsChanged);
    EXPECT_SAME_NUMBER(effEditGetRect);
    EXPECT_SAME_NUMBER(effEditOpen);
    EXPECT_SAME_NUMBER(effEditClose);
    EXPECT_SAME_NUMBER(effEditIdle);
    EXPECT_SAME_NUMBER(effIdentify);
    EXPECT_SAME_NUMBER(effGetChunk);
    EXPECT_SAME_NUMBER(effSetChunk);
    EXPECT_SAME_NUMBER(effProcessEvents);
    EXPECT_SAME_NUMBER(effCanBeAutomated);
    EXPECT_SAME_NUMBER(effString2Parameter);
    EXPECT_SAME_NUMBER(effGetProgramNameIndexed);
    EXPECT_SAME_NUMBER(effGetInputProperties);
    EXPECT_SAME_NUMBER(effGetOutputProperties);
    EXPECT_SAME_NUMBER(effGetPlugCategory);
    EXPECT_SAME_NUMBER(effSetSpeakerArrangement);
    EXPECT_SAME_NUMBER(effGetEffectName);
    EXPECT_SAME_NUMBER(effGetVendorString);
    EXPECT_SAME_NUMBER(effGetProductString);
    EXPECT_SAME_NUMBER(effGetVendorVersion);
    EXPECT_SAME_NUMBER(effVendorSpecific);
    EXPECT_SAME_NUMBER(effCanDo);
    EXPECT_SAME_NUMBER(effGetVstVersion);
    EXPECT_SAME_NUMBER(effGetCurrentMidiProgram);
    EXPECT_SAME_NUMBER(effGetSpeakerArrangement);
    EXPECT_SAME_NUMBER(effShellGetNextPlugin);
    EXPECT_SAME_NUMBER(effStartProcess);
    EXPECT_SAME_NUMBER(effStopProcess);
    EXPECT_SAME_NUMBER(effSetTotalSampleToProcess);
    EXPECT_SAME_NUMBER(effSetProcessPrecision);
}

TEST(InterfaceAgreement, OnWhatAPlugInAsksItsHost) {
    EXPECT_SAME_NUMBER(audioMasterAutomate);
    EXPECT_SAME_NUMBER(audioMasterVersion);
    EXPECT_SAME_NUMBER(audioMasterCurrentId);
    EXPECT_SAME_NUMBER(audioMasterWantMidi);
    EXPECT_SAME_NUMBER(audioMasterGetTime);
    EXPECT_SAME_NUMBER(audioMasterProcessEvents);
    EXPECT_SAME_NUMBER(audioMasterSizeWindow);
    EXPECT_SAME_NUMBER(audioMasterGetSampleRate);
    EXPECT_SAME_NUMBER(audioMasterGetBlockSize);
    EXPECT_SAME_NUMBER(audioMasterGetCurrentProcessLevel);
    EXPECT_SAME_NUMBER(audioMasterGetVendorString);
    EXPECT_SAME_NUMBER(audioMasterGetProductString);
    EXPECT_SAME_NUMBER(audioMasterGetVendorVersion);
    EXPECT_SAME_NUMBER(audioMasterCanDo);
    EXPECT_SAME_NUMBER(audioMasterBeginEdit);
    EXPECT_SAME_NUMBER(audioMasterEndEdit);
}

TEST(InterfaceAgreement, OnEventTypesCategoryAndTransport) {
    EXPECT_SAME_NUMBER(kVstMidiType);
    EXPECT_SAME_NUMBER(kVstSysExType);
    EXPECT_SAME_NUMBER(kPlugCategUnknown);
    EXPECT_SAME_NUMBER(kVstTransportPlaying);
    EXPECT_SAME_NUMBER(kVstPpqPosValid);
    EXPECT_SAME_NUMBER(kVstTempoValid);
    EXPECT_SAME_NUMBER(kVstTimeSigValid);
    EXPECT_SAME_NUMBER(kVstMaxParamStrLen);
    EXPECT_SAME_NUMBER(kVstMaxLabelLen);
    EXPECT_SAME_NUMBER(kVstMaxShortLabelLen);
}

TEST(InterfaceAgreement, OnTheRecord) {
    EXPECT_SAME_OFFSET(AEffect, AEffect, magic);
    EXPECT_SAME_OFFSET(AEffect, AEffect, dispatcher);
    EXPECT_SAME_OFFSET(AEffect, AEffect, process);
    EXPECT_SAME_OFFSET(AEffect, AEffect, setParameter);
    EXPECT_SAME_OFFSET(AEffect, AEffect, getParameter);
    EXPECT_SAME_OFFSET(AEffect, AEffect, numPrograms);
    EXPECT_SAME_OFFSET(AEffect, AEffect, numParams);
    EXPECT_SAME_OFFSET(AEffect, AEffect, numInputs);
    EXPECT_SAME_OFFSET(AEffect, AEffect, numOutputs);
    EXPECT_SAME_OFFSET(AEffect, AEffect, flags);
    EXPECT_SAME_OFFSET(AEffect, AEffect, resvd1);
    EXPECT_SAME_OFFSET(AEffect, AEffect, resvd2);
    EXPECT_SAME_OFFSET(AEffect, AEffect, initialDelay);
    EXPECT_SAME_OFFSET_AS(AEffect, float1, AEffect, ioRatio);
    EXPECT_SAME_OFFSET(AEffect, AEffect, object);
    EXPECT_SAME_OFFSET(AEffect, AEffect, user);
    EXPECT_SAME_OFFSET(AEffect, AEffect, uniqueID);
    EXPECT_SAME_OFFSET(AEffect, AEffect, version);
    EXPECT_SAME_OFFSET(AEffect, AEffect, processReplacing);
    EXPECT_SAME_OFFSET(AEffect, AEffect, processDoubleReplacing);
    // Theirs ends where our room for the future begins.
    EXPECT_EQ(sizeof(::AEffect), offsetof(vst2::AEffect, future));
}

TEST(InterfaceAgreement, OnEvents) {
    EXPECT_SAME_OFFSET(VstEvent, VstEvent, type);
    EXPECT_SAME_OFFSET(VstEvent, VstEvent, byteSize);
    EXPECT_SAME_OFFSET(VstEvent, VstEvent, deltaFrames);
    EXPECT_SAME_OFFSET(VstEvent, VstEvent, flags);
    EXPECT_EQ(sizeof(::VstEvent), offsetof(vst2::VstEvent, data));

    EXPECT_SAME_OFFSET(VstMidiEvent, VstMidiEvent, type);
    EXPECT_SAME_OFFSET(VstMidiEvent, VstMidiEvent, byteSize);
    EXPECT_SAME_OFFSET(VstMidiEvent, VstMidiEvent, deltaFrames);
    EXPECT_SAME_OFFSET(VstMidiEvent, VstMidiEvent, flags);
    EXPECT_SAME_OFFSET(VstMidiEvent, VstMidiEvent, noteLength);
    EXPECT_SAME_OFFSET(VstMidiEvent, VstMidiEvent, midiData);
    EXPECT_EQ(sizeof(::VstMidiEvent), sizeof(vst2::VstMidiEvent));

    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, type);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, byteSize);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, deltaFrames);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, flags);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, dumpBytes);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, resvd1);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, sysexDump);
    EXPECT_SAME_OFFSET(VstMidiSysexEvent, VstMidiSysexEvent, resvd2);
    EXPECT_EQ(sizeof(::VstMidiSysexEvent), sizeof(vst2::VstMidiSysexEvent));

    EXPECT_SAME_OFFSET(VstEvents, VstEvents, numEvents);
    EXPECT_SAME_OFFSET_AS(VstEvents, _pad, VstEvents, reserved);
    EXPECT_SAME_OFFSET(VstEvents, VstEvents, events);
}

TEST(InterfaceAgreement, OnPinsAndSpeakers) {
    EXPECT_SAME_OFFSET(VstPinProperties, VstPinProperties, label);
    EXPECT_SAME_OFFSET(VstPinProperties, VstPinProperties, flags);
    EXPECT_SAME_OFFSET(VstPinProperties, VstPinProperties, arrangementType);
    EXPECT_SAME_OFFSET(VstPinProperties, VstPinProperties, shortLabel);
    EXPECT_EQ(sizeof(::VstPinProperties), offsetof(vst2::VstPinProperties, future));

    EXPECT_SAME_OFFSET(VstSpeakerProperties, VstSpeakerProperties, azimuth);
    EXPECT_SAME_OFFSET(VstSpeakerProperties, VstSpeakerProperties, elevation);
    EXPECT_SAME_OFFSET(VstSpeakerProperties, VstSpeakerProperties, radius);
    EXPECT_SAME_OFFSET(VstSpeakerProperties, VstSpeakerProperties, reserved);
    EXPECT_SAME_OFFSET(VstSpeakerProperties, VstSpeakerProperties, name);
    EXPECT_SAME_OFFSET(VstSpeakerProperties, VstSpeakerProperties, type);
    EXPECT_SAME_OFFSET_AS(VstSpeakerProperties, _padding2, VstSpeakerProperties, future);
    EXPECT_EQ(sizeof(::VstSpeakerProperties), sizeof(vst2::VstSpeakerProperties));

    EXPECT_SAME_OFFSET(VstSpeakerArrangement, VstSpeakerArrangement, type);
    EXPECT_SAME_OFFSET(VstSpeakerArrangement, VstSpeakerArrangement, numChannels);
    EXPECT_SAME_OFFSET(VstSpeakerArrangement, VstSpeakerArrangement, speakers);
}

TEST(InterfaceAgreement, OnTimeAndTheEditorsRectangle) {
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, samplePos);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, sampleRate);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, nanoSeconds);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, ppqPos);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, tempo);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, barStartPos);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, cycleStartPos);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, cycleEndPos);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, timeSigNumerator);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, timeSigDenominator);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, samplesToNextClock);
    EXPECT_SAME_OFFSET(VstTimeInfo, VstTimeInfo, flags);

    EXPECT_SAME_OFFSET(ERect, ERect, top);
    EXPECT_SAME_OFFSET(ERect, ERect, left);
    EXPECT_SAME_OFFSET(ERect, ERect, bottom);
    EXPECT_SAME_OFFSET(ERect, ERect, right);
    EXPECT_EQ(sizeof(::ERect), sizeof(vst2::ERect));
}

} // namespace
