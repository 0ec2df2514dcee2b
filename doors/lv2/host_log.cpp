#include "doors/lv2/host_log.h"

#include "doors/lv2/features.h"

namespace lv2_door {

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
