#pragma once

#include <string>
#include <utility>
#include <vector>

namespace velmorquit {

/// Rows of text for a terminal. Columns are as wide as their widest cell: nothing is cut.
class Table {
public:
    enum class Align { left, right };
    using Row = std::vector<std::string>;

    explicit Table(std::vector<Align> columns) : columns_(std::move(columns)) {}

    /// Adds a row with one cell for each column; each cell must be fit for display on a line.
    void add(Row row);

    /// One indented line for each row.
    [[nodiscard]] std::string text() const;

private:
    std::vector<Align> columns_;
    std::vector<Row> rows_;
};

} // namespace velmorquit
