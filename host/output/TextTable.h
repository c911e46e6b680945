// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Columns of text for a terminal.
///
/// Widths count code points, not bytes, so that UTF-8 names line up; characters of double width do not.
class TextTable
{
public:
    /// The side of a column on which its text stands.
    enum class Align
    {
        Left,
        Right
    };

    /// A table with one entry a column, and no rows.
    explicit TextTable(std::vector<Align> columns) : m_columns(std::move(columns)) {}

    /// Adds a row; it may be shorter than the columns.
    void add(std::vector<std::string> cells) { m_rows.push_back(std::move(cells)); }

    /// True if there is no row yet.
    bool empty() const { return m_rows.empty(); }

    /// All rows, each behind `indent` blanks and without blanks at its end.
    std::string text(std::size_t indent) const;

private:
    std::vector<std::size_t> widths() const;

    std::vector<Align> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};
