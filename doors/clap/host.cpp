#include "doors/clap/host.h"

#include <cstdio>
#include <string>

namespace clap_door {

namespace {

constexpr char kLog[] = "clap.log";
constexpr std::int32_t kWarning = 2;

} // namespace

template <class Extension>
const Extension* Host::extension(const char* id) const {
    return host_->get_extension ? static_cast<const Extension*>(host_->get_extension(host_, id)) : nullptr;
}

void Host::findExtensions() {
    log_ = extension<LogExtension>(kLog);
    params_ = extension<clap_host_params_t>(CLAP_EXT_PARAMS);
    threads_ = extension<clap_host_thread_check_t>(CLAP_EXT_THREAD_CHECK);
    gui_ = extension<clap_host_gui_t>(CLAP_EXT_GUI);
    timers_ = extension<clap_host_timer_support_t>(CLAP_EXT_TIMER_SUPPORT);
}

void Host::leave() {
    host_ = nullptr;
    log_ = nullptr;
    params_ = nullptr;
    threads_ = nullptr;
    gui_ = nullptr;
    timers_ = nullptr;
}

void Host::warn(const char* subject, const char* text) const {
    const std::string line = std::string(subject) + ": " + text;
    if (log_ && log_->log)
        log_->log(host_, kWarning, line.c_str());
    else
        std::fprintf(stderr, "%s\n", line.c_str());
}

bool Host::rescansValues() const {
    return params_ && params_->rescan;
}

void Host::rescanValues() const {
    if (rescansValues())
        params_->rescan(host_, CLAP_PARAM_RESCAN_VALUES | CLAP_PARAM_RESCAN_TEXT);
}

void Host::requestFlush() const {
    if (params_ && params_->request_flush)
        params_->request_flush(host_);
}

void Host::requestCallback() const {
    if (host_ && host_->request_callback)
        host_->request_callback(host_);
}

std::optional<clap_id> Host::startTimer(std::uint32_t milliseconds) const {
    clap_id timer = CLAP_INVALID_ID;
    if (timers_ && timers_->register_timer && timers_->unregister_timer &&
        timers_->register_timer(host_, milliseconds, &timer))
        return timer;
    return std::nullopt;
}

void Host::stopTimer(clap_id timer) const {
    if (timers_)
        timers_->unregister_timer(host_, timer);
}

bool Host::requestResize(std::uint32_t width, std::uint32_t height) const {
    return resizesWindows() && gui_->request_resize(host_, width, height);
}

bool Host::isMainThread() const {
    return !threads_ || threads_->is_main_thread(host_);
}

bool Host::isAudioThread() const {
    return !threads_ || threads_->is_audio_thread(host_);
}

} // namespace clap_door
