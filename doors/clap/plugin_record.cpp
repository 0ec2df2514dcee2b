#include "doors/clap/plugin_record.h"

#include "base/product_names.h"
#include "doors/clap/extensions.h"
#include "effect/large_object.h"

#include <cassert>
#include <utility>

namespace clap_door {

namespace {

/// An instance and its record, which leads to it. It is held by the host, by views of its window and by calls
/// that have not returned.
struct Plugin : effect::LargeObject, std::enable_shared_from_this<Plugin> {
    explicit Plugin(const clap_host_t& host);

    ClapDelay delay;
    ClapWindow window{delay};
    const clap_plugin_t record;
    std::shared_ptr<Plugin> hostsHold;
};

Plugin& pluginOf(const clap_plugin_t* record) {
    return *static_cast<Plugin*>(record->plugin_data);
}

bool init(const clap_plugin_t* plugin) noexcept try { return onMainThread(plugin).init(); } catch (...) {
    return false;
}

void destroy(const clap_plugin_t* plugin) noexcept {
    onMainThread(plugin);
    Plugin& instance = pluginOf(plugin);
    const std::shared_ptr<Plugin> held = std::move(instance.hostsHold);
    instance.window.end();
}

bool activate(const clap_plugin_t* plugin, double rate, std::uint32_t, std::uint32_t) noexcept {
    return onMainThread(plugin).activate(rate);
}

void deactivate(const clap_plugin_t* plugin) noexcept {
    onMainThread(plugin).deactivate();
}

bool startProcessing(const clap_plugin_t* plugin) noexcept {
    onAudioThread(plugin);
    return true;
}

void stopProcessing(const clap_plugin_t* plugin) noexcept {
    onAudioThread(plugin);
}

void reset(const clap_plugin_t* plugin) noexcept {
    onAudioThread(plugin).reset();
}

/// Echoes may go on for minutes, and without the extension for tails nothing says for how long.
clap_process_status process(const clap_plugin_t* plugin, const clap_process_t* block) noexcept {
    ClapDelay& delay = onAudioThread(plugin);
    if (!block)
        return CLAP_PROCESS_ERROR;
    delay.process(*block);
    return CLAP_PROCESS_CONTINUE;
}

const void* getExtension(const clap_plugin_t*, const char* id) noexcept {
    return id ? extensionOf(id) : nullptr;
}

void onMainThreadAsRequested(const clap_plugin_t* plugin) noexcept {
    heldWindow(plugin)->onMainThread();
}

const char* kFeatures[] = {CLAP_PLUGIN_FEATURE_AUDIO_EFFECT, CLAP_PLUGIN_FEATURE_DELAY,
                           CLAP_PLUGIN_FEATURE_STEREO, nullptr};

Plugin::Plugin(const clap_host_t& host)
    : delay(host),
      record{&kDescriptor,    this,           init,  destroy, activate,     deactivate,
             startProcessing, stopProcessing, reset, process, getExtension, onMainThreadAsRequested} {}

} // namespace

// Projects hold the id: it must never change.
const clap_plugin_descriptor_t kDescriptor = {CLAP_VERSION_INIT,
                                              "quillon.multitap-delay",
                                              base::kProductName.data(),
                                              base::kVendorName.data(),
                                              "",
                                              "",
                                              "",
                                              QUILLON_VERSION,
                                              "The 128 Taps Echo",
                                              kFeatures};

const clap_plugin_t* makePlugin(const clap_host_t& host) {
    const std::shared_ptr<Plugin> made(new Plugin(host));
    made->window.setInstance(made);
    made->hostsHold = made;
    return &made->record;
}

ClapDelay& delayOf(const clap_plugin_t* plugin) {
    return pluginOf(plugin).delay;
}

ClapDelay& onMainThread(const clap_plugin_t* plugin) {
    ClapDelay& delay = delayOf(plugin);
    assert(delay.host().isMainThread() && "the host calls on another thread than its main one");
    return delay;
}

ClapDelay& onAudioThread(const clap_plugin_t* plugin) {
    ClapDelay& delay = delayOf(plugin);
    assert(delay.host().isAudioThread() && "the host calls on another thread than one for audio");
    return delay;
}

std::shared_ptr<ClapWindow> heldWindow(const clap_plugin_t* plugin) {
    onMainThread(plugin);
    Plugin& instance = pluginOf(plugin);
    return {instance.shared_from_this(), &instance.window};
}

} // namespace clap_door
