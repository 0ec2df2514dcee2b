#include "tools/render/bulk_record.h"

#include "tools/common/text.h"
#include "tools/common/tool_error.h"
#include "tools/render/content_hash.h"

#include <nlohmann/json.hpp>

namespace tools::render {

namespace {

namespace files = std::filesystem;
using Json = nlohmann::ordered_json;

std::int64_t timeOf(const files::path& file) {
    std::error_code error;
    return files::last_write_time(file, error).time_since_epoch().count();
}

} // namespace

BulkRecord::BulkRecord(const files::path& folder) : folder_(folder), file_(folder / kRecordName) {
    read();
}

std::string BulkRecord::keyOf(const files::path& output) const {
    return utf8(output.lexically_relative(folder_).generic_string());
}

void BulkRecord::read() {
    std::error_code error;
    if (!files::exists(file_, error))
        return;
    std::ifstream lines(file_, std::ios::binary);
    if (!lines || !files::is_regular_file(file_, error))
        throw ToolError(file_.string() + " cannot be read");
    for (std::string line; std::getline(lines, line);) {
        const Json json = Json::parse(line, nullptr, false);
        try {
            const std::string key = json.at("output");
            const std::string state = json.at("state");
            entries_.erase(key);
            if (state == "begun")
                entries_[key] = {};
            if (state == "done")
                entries_[key] = {true,
                                 json.at("fingerprint"),
                                 json.at("size"),
                                 json.at("modified"),
                                 json.at("content"),
                                 json.at("report").dump()};
        } catch (const Json::exception&) {
            continue;
        }
    }
}

const RecordEntry* BulkRecord::find(const files::path& output) const {
    const auto entry = entries_.find(keyOf(output));
    return entry == entries_.end() ? nullptr : &entry->second;
}

void BulkRecord::open() {
    std::error_code error;
    const bool isNew = files::file_size(file_, error) == 0 || error;
    stream_.open(file_, std::ios::binary | std::ios::app);
    // An earlier run may have left a line without its end.
    if (!isNew)
        stream_ << '\n' << std::flush;
    check();
}

void BulkRecord::check() const {
    if (!stream_)
        throw ToolError(file_.string() + " cannot be written");
}

void BulkRecord::begin(const files::path& output) {
    const std::string key = keyOf(output);
    if (const RecordEntry* known = find(output))
        before_[key] = *known;
    const RecordEntry begun;
    write(key, &begun);
}

void BulkRecord::finish(const files::path& output, const RecordEntry& entry) {
    write(keyOf(output), &entry);
}

void BulkRecord::abandon(const files::path& output) {
    const std::string key = keyOf(output);
    const auto before = before_.find(key);
    write(key, before == before_.end() ? nullptr : &before->second);
}

void BulkRecord::removeIfEmpty() {
    if (!entries_.empty())
        return;
    stream_.close();
    std::error_code ignored;
    files::remove(file_, ignored);
}

void BulkRecord::write(const std::string& key, const RecordEntry* entry) {
    Json line = {{"output", key}, {"state", !entry ? "none" : entry->isDone ? "done" : "begun"}};
    if (entry && entry->isDone) {
        line["fingerprint"] = entry->fingerprint;
        line["size"] = entry->size;
        line["modified"] = entry->modified;
        line["content"] = entry->content;
        line["report"] = Json::parse(entry->report, nullptr, false);
        if (line["report"].is_discarded())
            line["report"] = nullptr;
    }
    stream_ << line.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n' << std::flush;
    check();
    entries_.erase(key);
    if (entry)
        entries_[key] = *entry;
}

bool isUnchanged(const files::path& file, const RecordEntry& entry) {
    std::error_code error;
    if (files::file_size(file, error) != entry.size || error)
        return false;
    return timeOf(file) == entry.modified || contentHashOf(file) == entry.content;
}

RecordEntry entryFor(const files::path& file) {
    RecordEntry entry;
    entry.isDone = true;
    std::error_code error;
    entry.size = files::file_size(file, error);
    entry.modified = timeOf(file);
    entry.content = contentHashOf(file);
    return entry;
}

} // namespace tools::render
