// A host's log that a test reads, and the numbers that the host has for names.
#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/urid/urid.h>

#include <cstdarg>
#include <cstdio>
#include <map>
#include <string>

namespace lv2_test {

/// What a host's log has received.
struct Log {
    static int print(LV2_Log_Handle handle, LV2_URID type, const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        const int length = vprint(handle, type, format, arguments);
        va_end(arguments);
        return length;
    }
    static int vprint(LV2_Log_Handle handle, LV2_URID type, const char* format, va_list arguments) {
        char line[1000];
        const int length = std::vsnprintf(line, sizeof line, format, arguments);
        auto& log = *static_cast<Log*>(handle);
        log.lines += log.nameOf(type) + " " + line;
        return length;
    }
    static LV2_URID number(LV2_URID_Map_Handle handle, const char* uri) {
        auto& log = *static_cast<Log*>(handle);
        return log.numbers.try_emplace(uri, static_cast<LV2_URID>(log.numbers.size() + 1)).first->second;
    }
    std::string nameOf(LV2_URID type) const {
        for (const auto& [uri, number] : numbers)
            if (number == type)
                return uri;
        return "nothing";
    }

    std::map<std::string, LV2_URID> numbers;
    std::string lines;
    LV2_Log_Log log = {this, print, vprint};
    LV2_URID_Map map = {this, number};
    LV2_Feature logFeature = {LV2_LOG__log, &log};
    LV2_Feature mapFeature = {LV2_URID__map, &map};
};

} // namespace lv2_test
