// SPDX-License-Identifier: MIT
#include "output/TextTable.h"

#include "border/EscapedText.h"

#include <algorithm>

namespace {

constexpr std::size_t COLUMN_GAP = 2;

/// The number of characters of a UTF-8 text.
std::size_t shownWidth(const std::string& text)
{
    // Continuation bytes of UTF-8 do not count as characters.
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

/// Pads a cell to the width of its column, on the side opposite its text.
std::string padded(const std::string& text, std::size_t width, TextTable::Align align)
{
    const std::string blanks(width - shownWidth(text), ' ');
    return align == TextTable::Align::Left ? text + blanks : blanks + text;
}

} // namespace

void TextTable::add(const std::vector<std::string>& cells)
{
    std::vector<std::string>& row = m_rows.emplace_back();
    row.reserve(cells.size());
    for (const std::string& cell : cells) {
        row.push_back(escapedControls(cell));
    }
}

std::string TextTable::text(std::size_t indent) const
{
    const std::vector<std::size_t> columnWidths = widths();
    std::string result;
    for (const std::vector<std::string>& row : m_rows) {
        std::string line(indent, ' ');
        for (std::size_t k = 0; k < row.size(); ++k) {
            line += padded(row[k], columnWidths[k], m_columns[k]) + std::string(COLUMN_GAP, ' ');
        }
        line.resize(line.find_last_not_of(' ') + 1);
        result += line + "\n";
    }
    return result;
}

std::vector<std::size_t> TextTable::widths() const
{
    std::vector<std::size_t> result(m_columns.size(), 0);
    for (const std::vector<std::string>& row : m_rows) {
        for (std::size_t k = 0; k < row.size(); ++k) {
            result[k] = std::max(result[k], shownWidth(row[k]));
        }
    }
    return result;
}
