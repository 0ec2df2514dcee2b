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
    return host_.get_extension ? static_cast<const Extension*>(host_.get_extension(&host_, id)) : nullptr;
}

void Host::findExtensions() {
    log_ = extension<LogExtension>(kLog);
    params_ = extension<clap_host_params_t>(CLAP_EXT_PARAMS);
    threads_ = extension<clap_host_thread_check_t>(CLAP_EXT_THREAD_CHECK);
}

void Host::warn(const char* subject, const char* text) const {
    const std::string line = std::string(subject) + ": " + text;
    if (log_ && log_->log)
        log_->log(&host_, kWarning, line.c_str());
    else
        std::fprintf(stderr, "%s\n", line.c_str());
}

void Host::rescanValues() const {
    if (params_ && params_->rescan)
        params_->rescan(&host_, CLAP_PARAM_RESCAN_VALUES | CLAP_PARAM_RESCAN_TEXT);
}

bool Host::isMainThread() const {
    return !threads_ || threads_->is_main_thread(&host_);
}

bool Host::isAudioThread() const {
    return !threads_ || threads_->is_audio_thread(&host_);
}

} // namespace clap_door
