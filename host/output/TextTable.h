// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Columns of text for a terminal.
///
/// Widths count code points, not bytes, so that UTF-8 names line up, except for double-width characters.
class TextTable
{
public:
    /// The side of a column that its text is aligned to.
    enum class Align
    {
        Left,
        Right
    };

    /// A table with one alignment per column and no rows.
    explicit TextTable(std::vector<Align> columns) : m_columns(std::move(columns)) {}

    /// Adds a row, which may have fewer cells than there are columns. Control characters in them are escaped.
    void add(const std::vector<std::string>& cells);

    /// True if there are no rows yet.
    bool empty() const { return m_rows.empty(); }

    /// All rows, each indented by `indent` spaces and without trailing spaces.
    /// @param width columns of the terminal, or 0; text that aligns left is shortened in the middle to make rows fit
    std::string text(std::size_t indent, std::size_t width = 0) const;

private:
    std::vector<std::size_t> widths() const;
    std::vector<std::size_t> fittingWidths(std::size_t width) const;

    std::vector<Align> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};
