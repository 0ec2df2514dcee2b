#include "tools/window/folder_watch.h"

#include <system_error>

namespace tools::window {

namespace files = std::filesystem;

FolderWatch::FolderWatch(files::path folder) : folder_(std::move(folder)), told_(look()), last_(told_) {}

FolderWatch::Traces FolderWatch::look() const {
    Traces traces;
    std::error_code error;
    // Anything may vanish while it is looked at.
    files::recursive_directory_iterator entry(folder_, error), end;
    for (; !error && entry != end; entry.increment(error)) {
        std::error_code gone;
        Trace trace;
        trace.written = entry->last_write_time(gone);
        if (!gone && entry->is_regular_file(gone))
            trace.size = entry->file_size(gone);
        if (!gone)
            traces.emplace(entry->path(), trace);
    }
    return traces;
}

bool FolderWatch::hasChanged() {
    Traces now = look();
    const bool isAtRest = now == last_;
    last_ = std::move(now);
    if (!isAtRest || last_ == told_)
        return false;
    told_ = last_;
    return true;
}

} // namespace tools::window
