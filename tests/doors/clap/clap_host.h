// A small CLAP host: holds instances of the plug-in, plays blocks with events. By itself it keeps to the
// rules of the format; what it is handed may break them.
#pragma once

#include "doors/clap/parameter_list.h"

#include <clap/entry.h>
#include <clap/ext/audio-ports.h>
#include <clap/ext/gui.h>
#include <clap/ext/note-ports.h>
#include <clap/ext/params.h>
#include <clap/ext/state.h>
#include <clap/ext/thread-check.h>
#include <clap/ext/timer-support.h>
#include <clap/plugin-factory.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace clap_test {

inline constexpr char kPluginId[] = "quillon.multitap-delay";

inline const clap_plugin_factory_t& factoryOf(const clap_plugin_entry_t& entry) {
    const auto* const factory =
        static_cast<const clap_plugin_factory_t*>(entry.get_factory(CLAP_PLUGIN_FACTORY_ID));
    if (!factory)
        throw std::runtime_error("no factory");
    return *factory;
}

/// What an instance may ask of its host. On one thread alone it tells "audio" while `isAudioCall` is set.
class Host {
  public:
    enum Offer : unsigned {
        kNothing = 0,
        kLog = 1,
        kParameters = 2,
        kThreadCheck = 4,
        kWindows = 8,
        kTimers = 16,
        kEverything = 31
    };

    struct Size {
        std::uint32_t width, height;
        bool operator==(const Size&) const = default;
    };

    explicit Host(unsigned offers = kEverything) : offers_(offers) {}
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    clap_host_t record = {CLAP_VERSION_INIT, this,   "tests", "tests",       "", "1",
                          getExtension,      ignore, ignore,  askForCallback};
    std::vector<std::string> lines; ///< of the log, each behind its severity
    std::function<void()> whenLineIsLogged;
    clap_param_rescan_flags rescanned = 0;
    std::atomic<bool> isAudioCall = false;
    int flushRequests = 0;
    std::function<void()> whenFlushIsAsked;
    int callbackRequests = 0;
    std::function<void()> whenCallbackIsAsked;
    std::vector<clap_id> timers;        ///< that run
    std::vector<std::uint32_t> periods; ///< of all that were started, in milliseconds
    bool startsTimers = true;
    std::vector<Size> sizesAsked;
    bool resizes = true;
    std::function<void()> whenSizeIsAsked;

  private:
    struct Log {
        void(CLAP_ABI* log)(const clap_host_t* host, std::int32_t severity, const char* message);
    };

    static Host& of(const clap_host_t* host) { return *static_cast<Host*>(host->host_data); }
    static void ignore(const clap_host_t*) {}
    static void askForCallback(const clap_host_t* host) {
        Host& self = of(host);
        ++self.callbackRequests;
        if (self.whenCallbackIsAsked)
            self.whenCallbackIsAsked();
    }
    static void askForFlush(const clap_host_t* host) {
        Host& self = of(host);
        ++self.flushRequests;
        if (self.whenFlushIsAsked)
            self.whenFlushIsAsked();
    }
    static bool startTimer(const clap_host_t* host, std::uint32_t period, clap_id* timer) {
        Host& self = of(host);
        if (!self.startsTimers)
            return false;
        *timer = static_cast<clap_id>(self.periods.size()); // the first one is 0
        self.periods.push_back(period);
        self.timers.push_back(*timer);
        return true;
    }
    static bool stopTimer(const clap_host_t* host, clap_id timer) {
        return std::erase(of(host).timers, timer) == 1;
    }
    static bool resize(const clap_host_t* host, std::uint32_t width, std::uint32_t height) {
        Host& self = of(host);
        self.sizesAsked.push_back({width, height});
        if (self.whenSizeIsAsked)
            self.whenSizeIsAsked();
        return self.resizes;
    }

    static const void* getExtension(const clap_host_t* host, const char* id) {
        static constexpr Log log = {[](const clap_host_t* self, std::int32_t severity, const char* message) {
            of(self).lines.push_back(std::to_string(severity) + " " + message);
            if (of(self).whenLineIsLogged)
                of(self).whenLineIsLogged();
        }};
        static constexpr clap_host_params_t parameters = {
            [](const clap_host_t* self, clap_param_rescan_flags flags) { of(self).rescanned |= flags; },
            [](const clap_host_t*, clap_id, clap_param_clear_flags) {}, askForFlush};
        static constexpr clap_host_thread_check_t threads = {
            [](const clap_host_t* self) {
                return !of(self).isAudioCall && std::this_thread::get_id() == of(self).mainThread_;
            },
            [](const clap_host_t* self) { return of(self).isAudioCall.load(); }};
        static constexpr clap_host_gui_t windows = {ignore, resize, [](const clap_host_t*) { return false; },
                                                    [](const clap_host_t*) { return false; },
                                                    [](const clap_host_t*, bool) {}};
        static constexpr clap_host_timer_support_t timers = {startTimer, stopTimer};
        const unsigned offers = of(host).offers_;
        const auto offered = [&](unsigned offer, const char* name) {
            return (offers & offer) != 0 && std::strcmp(id, name) == 0;
        };
        if (offered(kLog, "clap.log"))
            return &log;
        if (offered(kParameters, CLAP_EXT_PARAMS))
            return &parameters;
        if (offered(kThreadCheck, CLAP_EXT_THREAD_CHECK))
            return &threads;
        if (offered(kWindows, CLAP_EXT_GUI))
            return &windows;
        return offered(kTimers, CLAP_EXT_TIMER_SUPPORT) ? &timers : nullptr;
    }

    unsigned offers_;
    std::thread::id mainThread_ = std::this_thread::get_id();
};

/// Events for a plug-in, in the order in which they were added.
class Events {
  public:
    Events& value(clap_id id, double value, std::uint32_t time = 0) {
        clap_event_param_value_t event = {};
        event.header = header(sizeof event, CLAP_EVENT_PARAM_VALUE, time);
        event.param_id = id;
        event.note_id = event.port_index = event.channel = event.key = -1;
        event.value = value;
        return add(event);
    }
    Events& midi(std::uint8_t status, std::uint8_t second, std::uint8_t third = 0, std::uint32_t time = 0) {
        clap_event_midi_t event = {};
        event.header = header(sizeof event, CLAP_EVENT_MIDI, time);
        event.data[0] = status;
        event.data[1] = second;
        event.data[2] = third;
        return add(event);
    }
    template <class Event>
    Events& add(const Event& event) {
        return add(&event, sizeof event);
    }
    /// In a block of exactly this size, so that a step too far is noticed.
    Events& add(const void* event, std::size_t size) {
        entries_.push_back(std::make_unique<unsigned char[]>(size));
        std::memcpy(entries_.back().get(), event, size);
        return *this;
    }
    /// An entry that is there and null.
    Events& nothing() {
        entries_.push_back(nullptr);
        return *this;
    }
    void clear() { entries_.clear(); }

    static clap_event_header_t header(std::size_t size, std::uint16_t type, std::uint32_t time) {
        return {static_cast<std::uint32_t>(size), time, CLAP_CORE_EVENT_SPACE_ID, type, 0};
    }

    const clap_input_events_t* list() {
        list_ = {this,
                 [](const clap_input_events_t* self) {
                     return static_cast<std::uint32_t>(of(self).entries_.size());
                 },
                 [](const clap_input_events_t* self, std::uint32_t index) {
                     return reinterpret_cast<const clap_event_header_t*>(of(self).entries_.at(index).get());
                 }};
        return &list_;
    }

  private:
    static const Events& of(const clap_input_events_t* list) {
        return *static_cast<const Events*>(list->ctx);
    }

    std::vector<std::unique_ptr<unsigned char[]>> entries_;
    clap_input_events_t list_ = {};
};

/// What a plug-in tells its host. Takes at most `room` events.
struct ToldEvents {
    struct Told {
        std::uint16_t type;
        clap_id id;
        bool operator==(const Told&) const = default;
    };
    std::vector<Told> order; ///< of all events
    std::vector<clap_event_param_value_t> values;
    std::size_t room = ~std::size_t{0};

    void clear() {
        order.clear();
        values.clear();
    }

    const clap_output_events_t* list() {
        list_ = {this, [](const clap_output_events_t* self, const clap_event_header_t* event) {
                     return static_cast<ToldEvents*>(self->ctx)->take(*event);
                 }};
        return &list_;
    }

  private:
    bool take(const clap_event_header_t& event) {
        if (order.size() >= room)
            return false;
        const bool isValue = event.type == CLAP_EVENT_PARAM_VALUE;
        const bool isGesture =
            event.type == CLAP_EVENT_PARAM_GESTURE_BEGIN || event.type == CLAP_EVENT_PARAM_GESTURE_END;
        if (event.size != (isValue ? sizeof(clap_event_param_value_t) : sizeof(clap_event_param_gesture_t)) ||
            !(isValue || isGesture))
            throw std::logic_error("an event of another kind or size");
        if (isValue)
            values.push_back(reinterpret_cast<const clap_event_param_value_t&>(event));
        order.push_back(
            {event.type, isValue ? values.back().param_id
                                 : reinterpret_cast<const clap_event_param_gesture_t&>(event).param_id});
        return true;
    }

    clap_output_events_t list_ = {};
};

using Bytes = std::vector<std::uint8_t>;

/// An instance from create to destroy, initialised.
class Instance {
  public:
    /// Throws std::runtime_error if there is none.
    Instance(const clap_plugin_entry_t& entry, Host& host) : host_(host) {
        const clap_plugin_factory_t& factory = factoryOf(entry);
        plugin_ = factory.create_plugin(&factory, &host.record, kPluginId);
        if (!plugin_)
            throw std::runtime_error("no instance");
        if (!plugin_->init(plugin_)) {
            plugin_->destroy(plugin_);
            throw std::runtime_error("no working instance");
        }
    }
    ~Instance() { end(); }
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    /// destroy(), if that has not been done.
    void end() {
        deactivate();
        if (const clap_plugin_t* const ended = std::exchange(plugin_, nullptr))
            ended->destroy(ended);
    }

    const clap_plugin_t* plugin() const { return plugin_; }
    template <class Extension>
    const Extension& extension(const char* id) const {
        const void* const found = plugin_->get_extension(plugin_, id);
        if (!found)
            throw std::runtime_error(std::string("no ") + id);
        return *static_cast<const Extension*>(found);
    }
    const clap_plugin_gui_t& window() const { return extension<clap_plugin_gui_t>(CLAP_EXT_GUI); }
    /// Whose windows the window wants to lie in.
    const char* windowApi() const {
        const char* api = nullptr;
        bool isFloating = true;
        return window().get_preferred_api(plugin_, &api, &isFloating) && !isFloating ? api : "none";
    }
    /// Lets every timer that runs call once. One of them may end the instance.
    void serveTimers() {
        const clap_plugin_t* const plugin = plugin_;
        const auto& timers = extension<clap_plugin_timer_support_t>(CLAP_EXT_TIMER_SUPPORT);
        for (const clap_id timer : std::vector(host_.timers))
            timers.on_timer(plugin, timer);
    }
    const clap_plugin_params_t& parameters() const {
        return extension<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    }

    /// Also starts processing. False if the plug-in refuses.
    bool activate(double rate = 44100.0) {
        deactivate();
        isActive_ = plugin_->activate(plugin_, rate, 1, 65536);
        if (isActive_)
            onAudioThread([&] { plugin_->start_processing(plugin_); });
        return isActive_;
    }
    void deactivate() {
        if (!isActive_)
            return;
        onAudioThread([&] { plugin_->stop_processing(plugin_); });
        plugin_->deactivate(plugin_);
        isActive_ = false;
    }
    void reset() {
        onAudioThread([&] { plugin_->reset(plugin_); });
    }

    /// Two channels each; `events` take effect in this block.
    clap_process_status process(float* const* inputs, float* const* outputs, std::uint32_t frames,
                                Events* events = nullptr, ToldEvents* told = nullptr) {
        clap_audio_buffer_t in = {const_cast<float**>(inputs), nullptr, 2, 0, 0};
        clap_audio_buffer_t out = {const_cast<float**>(outputs), nullptr, 2, 0, ~std::uint64_t{0}};
        Events none;
        ToldEvents unheard;
        const clap_process_t block = {-1,
                                      frames,
                                      nullptr,
                                      &in,
                                      &out,
                                      1,
                                      1,
                                      (events ? *events : none).list(),
                                      (told ? *told : unheard).list()};
        return process(block);
    }
    clap_process_status process(const clap_process_t& block) { return process(&block); }
    clap_process_status process(const clap_process_t* block) {
        clap_process_status status = CLAP_PROCESS_ERROR;
        onAudioThread([&] { status = plugin_->process(plugin_, block); });
        return status;
    }
    void flush(Events& events, ToldEvents* told = nullptr) {
        ToldEvents unheard;
        flush(events.list(), (told ? *told : unheard).list());
    }
    /// On the thread that the format wants for it.
    void flush(const clap_input_events_t* in, const clap_output_events_t* out) {
        const auto work = [&] { parameters().flush(plugin_, in, out); };
        if (isActive_)
            onAudioThread(work);
        else
            work();
    }
    void set(clap_id id, double value) {
        Events events;
        flush(events.value(id, value));
    }

    double value(clap_id id) const {
        double value = -1.0;
        if (!parameters().get_value(plugin_, id, &value))
            throw std::runtime_error("no value");
        return value;
    }
    std::string text(clap_id id, double value) const {
        char text[CLAP_NAME_SIZE];
        return parameters().value_to_text(plugin_, id, value, text, sizeof text) ? text : "none";
    }
    std::optional<double> read(clap_id id, const char* text) const {
        double value = -1.0;
        return parameters().text_to_value(plugin_, id, text, &value) ? std::optional(value) : std::nullopt;
    }

    /// `portion` bytes at a time. Nothing if the plug-in says that it could not.
    std::optional<Bytes> save(std::size_t portion = 1000, std::size_t room = ~std::size_t{0}) {
        struct Sink {
            std::size_t portion, room;
            Bytes bytes;
        } sink = {portion, room, {}};
        const clap_ostream_t stream = {
            &sink, [](const clap_ostream_t* self, const void* data, std::uint64_t size) -> std::int64_t {
                auto& to = *static_cast<Sink*>(self->ctx);
                const auto count = std::min<std::uint64_t>({size, to.portion, to.room - to.bytes.size()});
                const auto* const bytes = static_cast<const std::uint8_t*>(data);
                to.bytes.insert(to.bytes.end(), bytes, bytes + count);
                return count > 0 ? static_cast<std::int64_t>(count) : -1;
            }};
        return extension<clap_plugin_state_t>(CLAP_EXT_STATE).save(plugin_, &stream)
                   ? std::optional(sink.bytes)
                   : std::nullopt;
    }
    /// At the end of `bytes` the stream answers `end`: 0, or a failure below that.
    bool load(const Bytes& bytes, std::size_t portion = 1000, std::int64_t end = 0) {
        struct Source {
            const Bytes& bytes;
            std::size_t portion, position;
            std::int64_t end;
        } source = {bytes, portion, 0, end};
        const clap_istream_t stream = {
            &source, [](const clap_istream_t* self, void* data, std::uint64_t size) -> std::int64_t {
                auto& from = *static_cast<Source*>(self->ctx);
                const auto count =
                    std::min<std::uint64_t>({size, from.portion, from.bytes.size() - from.position});
                if (count == 0)
                    return from.end;
                std::memcpy(data, from.bytes.data() + from.position, count);
                from.position += count;
                return static_cast<std::int64_t>(count);
            }};
        return extension<clap_plugin_state_t>(CLAP_EXT_STATE).load(plugin_, &stream);
    }

  private:
    template <class Work>
    void onAudioThread(const Work& work) {
        host_.isAudioCall = true;
        work();
        host_.isAudioCall = false;
    }

    Host& host_;
    const clap_plugin_t* plugin_ = nullptr;
    bool isActive_ = false;
};

} // namespace clap_test
