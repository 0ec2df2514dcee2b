#include "doors/clap/clap_delay.h"

#include "base/ascii.h"
#include "doors/clap/event_list.h"
#include "doors/clap/saved_state.h"
#include "midi/cc_map.h"
#include "parameters/unit_text.h"
#include "platform/module_folder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace clap_door {

using namespace parameters;

namespace {

/// One channel of the only port from frame `first` on; null if the host has not given it.
float* channelOf(const clap_audio_buffer_t* ports, std::uint32_t count, std::uint32_t channel,
                 std::uint32_t first) {
    if (!ports || count == 0 || !ports->data32 || channel >= ports->channel_count || !ports->data32[channel])
        return nullptr;
    return ports->data32[channel] + first;
}

bool pushValue(const clap_output_events_t& out, const UntoldChange& change, double value,
               std::uint32_t time) {
    clap_event_param_value_t event = {};
    event.header = {sizeof event, time, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_VALUE, 0};
    // Where no hand has caused the change the host records what has, if anything.
    if (!change.isByHand)
        event.header.flags = CLAP_EVENT_DONT_RECORD;
    event.param_id = idAt(change.index);
    event.note_id = event.port_index = event.channel = event.key = -1;
    event.value = value;
    return out.try_push(&out, &event.header);
}

bool pushGesture(const clap_output_events_t& out, const UntoldChange& change, std::uint32_t time) {
    const bool isBegin = change.kind == UntoldChange::Kind::gestureBegin;
    clap_event_param_gesture_t event = {};
    event.header = {
        sizeof event, time, CLAP_CORE_EVENT_SPACE_ID,
        static_cast<std::uint16_t>(isBegin ? CLAP_EVENT_PARAM_GESTURE_BEGIN : CLAP_EVENT_PARAM_GESTURE_END),
        0};
    event.param_id = idAt(change.index);
    return out.try_push(&out, &event.header);
}

} // namespace

bool ClapDelay::init() {
    host_.findExtensions();
    midi::readCcMap(platform::moduleFolder());
    effect_.makePrograms();
    effect_.startUp();
    for (std::uint32_t index = 0; index < kNumListed; ++index)
        defaults_[index] = hostValue(index);
    untold_.forgetValues();
    char name[presets::kProgramNameLength + 1];
    return effect_.getProgramName(0, name);
}

bool ClapDelay::activate(double rate) {
    const auto newRate = static_cast<float>(rate);
    if (!std::isfinite(newRate) || newRate <= 0.0f)
        return false;
    effect_.setSampleRate(newRate);
    setAllParameters();
    isActive_ = true;
    isPlaying_ = false;
    return true;
}

/// A program has set every value.
bool ClapDelay::updateDisplay() {
    untold_.noteAll();
    return true;
}

ClapDelay::Values ClapDelay::storedValues() const {
    Values values;
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        values[static_cast<std::size_t>(id)] = effect_.getStoredParameter(id);
    return values;
}

/// The order decides which law the filters follow: that of a parameter that was set.
void ClapDelay::setAllParameters() {
    effect_.resume();
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        effect_.setStoredParameter(id);
}

void ClapDelay::process(const clap_process_t& block) {
    if (!isPlaying_)
        setAllParameters();
    isPlaying_ = true;
    const std::uint32_t frames = block.frames_count;
    std::uint32_t position = 0;
    forEachEvent(block.in_events, [&](const clap_event_header_t& event) {
        const clap_event_param_value_t* const newValue = newValueIn(event);
        const clap_event_midi_t* const message = messageIn(event);
        if (!newValue && !message)
            return;
        if (const std::uint32_t time = std::min(event.time, frames); time > position) {
            playAndTell(block, position, time - position);
            position = time;
        }
        if (newValue)
            setValue(newValue->param_id, newValue->value);
        else
            takeMessage(*message);
    });
    playAndTell(block, position, frames - position);
    if (block.audio_outputs && block.audio_outputs_count > 0)
        block.audio_outputs->constant_mask = 0;
}

/// Tells of changes once all events of the piece's first frame are taken: of several that set one value the
/// last one counts. Events at the end of a block, behind which nothing is played, are told at its last frame.
void ClapDelay::playAndTell(const clap_process_t& block, std::uint32_t first, std::uint32_t frames) {
    const bool isBehind = frames == 0 && first > 0;
    tellChanges(block.out_events, isBehind ? first - 1 : first);
    if (!isBehind)
        play(block, first, frames);
}

void ClapDelay::play(const clap_process_t& block, std::uint32_t first, std::uint32_t frames) {
    effect::InputChannels inputs;
    effect::OutputChannels outputs;
    for (std::uint32_t channel = 0; channel < 2; ++channel) {
        inputs[channel] = channelOf(block.audio_inputs, block.audio_inputs_count, channel, first);
        outputs[channel] = channelOf(block.audio_outputs, block.audio_outputs_count, channel, first);
    }
    missing_.process(effect_, inputs, outputs, frames);
}

void ClapDelay::flush(const clap_input_events_t* in, const clap_output_events_t* out) {
    forEachEvent(in, [&](const clap_event_header_t& event) {
        if (const clap_event_param_value_t* const newValue = newValueIn(event))
            setValue(newValue->param_id, newValue->value);
    });
    tellChanges(out, 0);
}

void ClapDelay::setValue(clap_id id, double hostValue) {
    if (id == kProgramId) {
        // A host may repeat a value at each block: only another program loses the echoes.
        if (const std::int32_t program = programOfHost(hostValue); program != effect_.getProgram())
            effect_.setProgram(program);
        return;
    }
    const auto parameter = static_cast<std::int32_t>(id);
    const float before = effect_.getStoredParameter(parameter);
    // Nor does a repeated value arm the fade again.
    if (const float value = valueOfHost(parameter, hostValue, before); !base::sameBits(value, before))
        effect_.setParameter(parameter, value);
}

void ClapDelay::takeMessage(const clap_event_midi_t& event) {
    const Values before = storedValues();
    effect_.processMidi(
        {{event.data[0], event.data[1], event.data[2]}, static_cast<std::int32_t>(event.header.time)});
    const Values after = storedValues();
    for (std::uint32_t index = 0; index < kNumLiveParameters; ++index)
        if (!base::sameBits(before[index], after[index]))
            untold_.note(index);
}

/// `time` in frames from the beginning of the block. What the host does not take waits for the next time.
void ClapDelay::tellChanges(const clap_output_events_t* out, std::uint32_t time) {
    if (!out)
        return;
    untold_.tell([&](const UntoldChange& change) {
        return change.kind == UntoldChange::Kind::value
                   ? pushValue(*out, change, hostValue(change.index), time)
                   : pushGesture(*out, change, time);
    });
}

void ClapDelay::setByHand(std::int32_t id, float value) {
    effect_.setParameter(id, value);
    if (!isLive(id))
        return;
    untold_.noteMoved(static_cast<std::uint32_t>(id));
    host_.requestFlush();
}

void ClapDelay::noteGesture(std::int32_t id) {
    untold_.noteGesture(static_cast<std::uint32_t>(id));
    host_.requestFlush();
}

double ClapDelay::hostValue(std::uint32_t index) {
    if (index == kProgramIndex)
        return effect_.getProgram();
    const auto id = static_cast<std::int32_t>(index);
    return hostValueOf(id, effect_.getStoredParameter(id));
}

/// Of several programs with that name the current one, else the first.
std::optional<double> ClapDelay::programOfText(std::string_view name) {
    const std::int32_t current = effect_.getProgram();
    if (base::equalIgnoringCase(programName(current), name))
        return current;
    for (std::int32_t program = 0; program < presets::kNumPrograms; ++program)
        if (base::equalIgnoringCase(programName(program), name))
            return program;
    return std::nullopt;
}

std::string ClapDelay::programName(std::int32_t program) const {
    char name[presets::kProgramNameLength + 1];
    return effect_.getProgramName(program, name) ? name : "";
}

std::string ClapDelay::textOf(std::uint32_t index, double hostValue) const {
    if (index == kProgramIndex)
        return programName(programOfHost(hostValue));
    const auto id = static_cast<std::int32_t>(index);
    return unitText(id, valueOfHost(id, hostValue, 0.0f));
}

std::optional<double> ClapDelay::valueOfText(std::uint32_t index, std::string_view text) {
    if (index == kProgramIndex)
        return programOfText(text);
    const auto id = static_cast<std::int32_t>(index);
    const std::optional<float> value = valueOfUnitText(id, text);
    return value ? std::optional(hostValueOf(id, *value)) : std::nullopt;
}

bool ClapDelay::save(const clap_ostream_t& stream) {
    SavedState state;
    state.program = effect_.getProgram();
    void* bank = nullptr;
    if (effect_.getChunk(&bank, false) != presets::kBankChunkSize)
        return false;
    std::memcpy(state.bank.data(), bank, state.bank.size());
    // The live values are those of the current program, also if another thread has just selected another one.
    const std::size_t current = static_cast<std::size_t>(state.program) * presets::kPresetChunkSize;
    std::memcpy(state.live.data(), &state.bank[current], sizeof state.live);
    return write(stream, state);
}

bool ClapDelay::load(const clap_istream_t& stream) {
    SavedState state;
    if (!read(stream, state))
        return false;
    // The live values are those of the current program. In its place they stay also if another one is
    // selected meanwhile.
    const std::size_t current = static_cast<std::size_t>(state.program) * presets::kPresetChunkSize;
    std::memcpy(&state.bank[current], state.live.data(), sizeof state.live);
    effect_.setChunk(state.bank.data(), presets::kBankChunkSize, false);
    effect_.setProgram(state.program);
    for (std::int32_t id = 0; id < kNumLiveParameters; ++id)
        effect_.setStoredParameter(id);
    // What the host reads by itself is not told as well: it would count as one more change.
    if (host_.rescansValues())
        untold_.forgetValues();
    host_.rescanValues();
    return true;
}

} // namespace clap_door
