// A table of the page, in Markdown.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace bench {

class Table {
  public:
    /// The first column has the names of the rows, the others have values.
    explicit Table(std::vector<std::string> columns) : columns_(std::move(columns)) {}
    /// As many fields as there are columns. A row without any value is left out; a single missing value
    /// becomes a dash.
    void add(std::vector<std::string> fields);
    /// Nothing if there are no rows; else the table and an empty line.
    std::string text() const;

  private:
    std::vector<std::string> columns_;
    std::vector<std::vector<std::string>> rows_;
};

} // namespace bench
