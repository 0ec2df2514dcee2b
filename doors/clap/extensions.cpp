#include "doors/clap/extensions.h"

#include "base/fixed_text.h"
#include "doors/clap/plugin_record.h"
#include "doors/clap/window_functions.h"

#include <clap/ext/audio-ports.h>
#include <clap/ext/note-ports.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>

#include <algorithm>
#include <cmath>
#include <string>

namespace clap_door {

namespace {

/// Of the one port in and the one port out: a host may use the same buffers for both.
constexpr clap_id kAudioPort = 0;
constexpr clap_id kNotePort = 0;

std::uint32_t countAudioPorts(const clap_plugin_t*, bool) noexcept {
    return 1;
}

bool getAudioPort(const clap_plugin_t*, std::uint32_t index, bool isInput,
                  clap_audio_port_info_t* info) noexcept {
    if (index != 0 || !info)
        return false;
    *info = {};
    info->id = kAudioPort;
    base::copyText(info->name, isInput ? "Input" : "Output");
    info->flags = CLAP_AUDIO_PORT_IS_MAIN;
    info->channel_count = 2;
    info->port_type = CLAP_PORT_STEREO;
    info->in_place_pair = kAudioPort;
    return true;
}

constexpr clap_plugin_audio_ports_t kAudioPorts = {countAudioPorts, getAudioPort};

std::uint32_t countNotePorts(const clap_plugin_t*, bool isInput) noexcept {
    return isInput ? 1 : 0;
}

bool getNotePort(const clap_plugin_t*, std::uint32_t index, bool isInput,
                 clap_note_port_info_t* info) noexcept {
    if (!isInput || index != 0 || !info)
        return false;
    *info = {};
    info->id = kNotePort;
    info->supported_dialects = info->preferred_dialect = CLAP_NOTE_DIALECT_MIDI;
    base::copyText(info->name, "MIDI");
    return true;
}

constexpr clap_plugin_note_ports_t kNotePorts = {countNotePorts, getNotePort};

std::uint32_t countParameters(const clap_plugin_t* plugin) noexcept {
    onMainThread(plugin);
    return kNumListed;
}

bool getInfo(const clap_plugin_t* plugin, std::uint32_t index, clap_param_info_t* info) noexcept {
    const ClapDelay& delay = onMainThread(plugin);
    if (index >= kNumListed || !info)
        return false;
    describe(index, *info);
    info->default_value = delay.defaultValue(index);
    return true;
}

bool getValue(const clap_plugin_t* plugin, clap_id id, double* value) noexcept {
    ClapDelay& delay = onMainThread(plugin);
    const std::optional<std::uint32_t> index = indexOf(id);
    if (!index || !value)
        return false;
    *value = delay.hostValue(*index);
    return true;
}

bool valueToText(const clap_plugin_t* plugin, clap_id id, double value, char* text,
                 std::uint32_t size) noexcept try {
    const ClapDelay& delay = onMainThread(plugin);
    const std::optional<std::uint32_t> index = indexOf(id);
    if (!index || std::isnan(value) || !text || size == 0)
        return false;
    base::copyText(text, delay.textOf(*index, value).c_str(), size - 1);
    return true;
} catch (...) {
    return false;
}

bool textToValue(const clap_plugin_t* plugin, clap_id id, const char* text, double* value) noexcept try {
    ClapDelay& delay = onMainThread(plugin);
    const std::optional<std::uint32_t> index = indexOf(id);
    if (!index || !text || !value)
        return false;
    const std::optional<double> read = delay.valueOfText(*index, text);
    if (read)
        *value = *read;
    return read.has_value();
} catch (...) {
    return false;
}

void flush(const clap_plugin_t* plugin, const clap_input_events_t* in,
           const clap_output_events_t* out) noexcept {
    ClapDelay& delay = delayOf(plugin).isActive() ? onAudioThread(plugin) : onMainThread(plugin);
    delay.flush(in, out);
}

constexpr clap_plugin_params_t kParameters = {countParameters, getInfo,     getValue,
                                              valueToText,     textToValue, flush};

bool save(const clap_plugin_t* plugin, const clap_ostream_t* stream) noexcept {
    ClapDelay& delay = onMainThread(plugin);
    return stream && delay.save(*stream);
}

bool load(const clap_plugin_t* plugin, const clap_istream_t* stream) noexcept {
    ClapDelay& delay = onMainThread(plugin);
    return stream && delay.load(*stream);
}

constexpr clap_plugin_state_t kState = {save, load};

} // namespace

const void* extensionOf(std::string_view id) {
    if (id == CLAP_EXT_AUDIO_PORTS)
        return &kAudioPorts;
    if (id == CLAP_EXT_NOTE_PORTS)
        return &kNotePorts;
    if (id == CLAP_EXT_PARAMS)
        return &kParameters;
    if (id == CLAP_EXT_STATE)
        return &kState;
    if (id == CLAP_EXT_GUI)
        return &kWindowFunctions;
    if (id == CLAP_EXT_TIMER_SUPPORT)
        return &kTimerFunctions;
    return nullptr;
}

} // namespace clap_door
