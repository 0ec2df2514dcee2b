#include "doors/lv2/host_log.h"

#include <string_view>

namespace lv2_door {

namespace {

/// What the host offers under `uri`; null if nothing.
template <class Data>
Data* featureOf(const LV2_Feature* const* features, std::string_view uri) {
    for (; features && *features; ++features)
        if ((*features)->URI == uri)
            return static_cast<Data*>((*features)->data);
    return nullptr;
}

} // namespace

HostLog::HostLog(const LV2_Feature* const* features) {
    auto* const map = featureOf<LV2_URID_Map>(features, LV2_URID__map);
    // Kinds of entries have no numbers without a map, and a host could not tell what an entry is.
    auto* const log = map ? featureOf<LV2_Log_Log>(features, LV2_LOG__log) : nullptr;
    lv2_log_logger_init(&logger_, map, log);
}

void HostLog::warn(const char* subject, const char* text) {
    lv2_log_warning(&logger_, "%s: %s\n", subject, text);
}

} // namespace lv2_door
