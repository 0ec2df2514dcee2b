#include "bench/page_table.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace bench {

namespace {

constexpr char kMissing[] = "–";

std::string lineOf(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields)
        line += "| " + field + " ";
    return line + "|\n";
}

} // namespace

void Table::add(std::vector<std::string> fields) {
    const auto firstValue = fields.begin() + 1;
    if (std::all_of(firstValue, fields.end(), [](const std::string& field) { return field.empty(); }))
        return;
    std::replace(firstValue, fields.end(), std::string(), std::string(kMissing));
    rows_.push_back(std::move(fields));
}

std::string Table::text() const {
    if (rows_.empty())
        return "";
    std::vector<std::string> rule(columns_.size(), "--:");
    rule.front() = "---";
    std::string text = lineOf(columns_) + lineOf(rule);
    for (const std::vector<std::string>& row : rows_)
        text += lineOf(row);
    return text + "\n";
}

} // namespace bench
