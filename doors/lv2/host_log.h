// Where an instance writes what went wrong: the host's log or, where the host has none, standard error.
#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/logger.h>

namespace lv2_door {

class HostLog {
  public:
    /// `features` as the host has given them for an instance; may be null.
    explicit HostLog(const LV2_Feature* const* features);

    /// Writes the line "subject: text". Any thread but the audio thread.
    void warn(const char* subject, const char* text);

  private:
    LV2_Log_Logger logger_ = {};
};

} // namespace lv2_door
