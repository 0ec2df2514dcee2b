#include "host/library_call.h"

#include "vst2/vst2.h"

#include <array>
#include <iterator>

namespace host {

namespace {

std::array<char, 4096> lastLoaded = {};

/// By number.
constexpr const char* kOpcodeNames[] = {"effOpen",
                                        "effClose",
                                        "effSetProgram",
                                        "effGetProgram",
                                        "effSetProgramName",
                                        "effGetProgramName",
                                        "effGetParamLabel",
                                        "effGetParamDisplay",
                                        "effGetParamName",
                                        "effGetVu",
                                        "effSetSampleRate",
                                        "effSetBlockSize",
                                        "effMainsChanged",
                                        "effEditGetRect",
                                        "effEditOpen",
                                        "effEditClose",
                                        "effEditDraw",
                                        "effEditMouse",
                                        "effEditKey",
                                        "effEditIdle",
                                        "effEditTop",
                                        "effEditSleep",
                                        "effIdentify",
                                        "effGetChunk",
                                        "effSetChunk",
                                        "effProcessEvents",
                                        "effCanBeAutomated",
                                        "effString2Parameter",
                                        "effGetNumProgramCategories",
                                        "effGetProgramNameIndexed",
                                        "effCopyProgram",
                                        "effConnectInput",
                                        "effConnectOutput",
                                        "effGetInputProperties",
                                        "effGetOutputProperties",
                                        "effGetPlugCategory",
                                        "effGetCurrentPosition",
                                        "effGetDestinationBuffer",
                                        "effOfflineNotify",
                                        "effOfflinePrepare",
                                        "effOfflineRun",
                                        "effProcessVarIo",
                                        "effSetSpeakerArrangement",
                                        "effSetBlockSizeAndSampleRate",
                                        "effSetBypass",
                                        "effGetEffectName",
                                        "effGetErrorText",
                                        "effGetVendorString",
                                        "effGetProductString",
                                        "effGetVendorVersion",
                                        "effVendorSpecific",
                                        "effCanDo",
                                        "effGetTailSize",
                                        "effIdle",
                                        "effGetIcon",
                                        "effSetViewPosition",
                                        "effGetParameterProperties",
                                        "effKeysRequired",
                                        "effGetVstVersion",
                                        "effEditKeyDown",
                                        "effEditKeyUp",
                                        "effSetEditKnobMode",
                                        "effGetMidiProgramName",
                                        "effGetCurrentMidiProgram",
                                        "effGetMidiProgramCategory",
                                        "effHasMidiProgramsChanged",
                                        "effGetMidiKeyName",
                                        "effBeginSetProgram",
                                        "effEndSetProgram",
                                        "effGetSpeakerArrangement",
                                        "effShellGetNextPlugin",
                                        "effStartProcess",
                                        "effStopProcess",
                                        "effSetTotalSampleToProcess",
                                        "effSetPanLaw",
                                        "effBeginLoadBank",
                                        "effBeginLoadProgram",
                                        "effSetProcessPrecision",
                                        "effGetNumMidiInputChannels",
                                        "effGetNumMidiOutputChannels"};
static_assert(std::size(kOpcodeNames) == vst2::effGetNumMidiOutputChannels + 1);

/// Text that is cut where it would not fit.
class Writer {
  public:
    Writer(char* text, std::size_t size) : next_(text), last_(text + size - 1) { *next_ = 0; }
    void add(const char* text) {
        while (*text && next_ < last_)
            *next_++ = *text++;
        *next_ = 0;
    }
    void add(std::int32_t number) {
        char digits[12];
        char* first = digits + sizeof digits - 1;
        *first = 0;
        auto rest = static_cast<std::int64_t>(number);
        const bool isNegative = rest < 0;
        rest = isNegative ? -rest : rest;
        do
            *--first = static_cast<char>('0' + rest % 10);
        while ((rest /= 10) > 0);
        add(isNegative ? "-" : "");
        add(first);
    }

  private:
    char* next_;
    char* last_;
};

} // namespace

const char* opcodeName(std::int32_t opcode) {
    const bool isKnown = opcode >= 0 && opcode < static_cast<std::int32_t>(std::size(kOpcodeNames));
    return isKnown ? kOpcodeNames[opcode] : nullptr;
}

void LibraryCall::noteLoaded(const std::string& library) {
    Writer(lastLoaded.data(), lastLoaded.size()).add(library.c_str());
}

bool LibraryCall::describe(char* text, std::size_t size) {
    Writer writer(text, size);
    const LibraryCall* const call = innermost;
    if (!call) {
        writer.add(lastLoaded.data());
        return false;
    }
    writer.add(call->library_);
    writer.add(" in ");
    const char* const name = call->name_ ? call->name_ : opcodeName(call->opcode_);
    writer.add(name ? name : "opcode ");
    if (!name)
        writer.add(call->opcode_);
    return true;
}

} // namespace host
