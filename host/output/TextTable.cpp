// SPDX-License-Identifier: MIT
#include "output/TextTable.h"

#include "border/EscapedText.h"

#include <algorithm>
#include <numeric>
#include <string_view>

namespace {

constexpr std::size_t COLUMN_GAP = 2;
constexpr std::size_t LEAST_WIDTH = 12;
constexpr std::string_view ELLIPSIS = "...";

/// The number of characters of a UTF-8 text.
std::size_t shownWidth(const std::string& text)
{
    // Continuation bytes of UTF-8 do not count as characters.
    return static_cast<std::size_t>(std::ranges::count_if(text, [](char c) { return (c & 0xC0) != 0x80; }));
}

/// Leaves out characters in the middle of a cell that is wider than its column: names differ at both ends.
std::string shortened(const std::string& text, std::size_t width)
{
    const std::size_t shown = shownWidth(text);
    if (shown <= width) {
        return text;
    }
    const std::size_t head = (width - ELLIPSIS.size() + 1) / 2;
    const std::size_t tail = width - ELLIPSIS.size() - head;
    std::string result;
    std::size_t position = 0;
    for (const char c : text) {
        position += (c & 0xC0) != 0x80 ? 1 : 0;
        if (position <= head || position > shown - tail) {
            result += c;
        } else if (!result.ends_with(ELLIPSIS)) {
            result += ELLIPSIS;
        }
    }
    return result;
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

std::string TextTable::text(std::size_t indent, std::size_t width) const
{
    const std::vector<std::size_t> columnWidths =
        width == 0 ? widths() : fittingWidths(width - std::min(width, indent));
    std::string result;
    for (const std::vector<std::string>& row : m_rows) {
        std::string line(indent, ' ');
        for (std::size_t k = 0; k < row.size(); ++k) {
            line += padded(shortened(row[k], columnWidths[k]), columnWidths[k], m_columns[k]) +
                    std::string(COLUMN_GAP, ' ');
        }
        line.resize(line.find_last_not_of(' ') + 1);
        result += line + "\n";
    }
    return result;
}

std::vector<std::size_t> TextTable::fittingWidths(std::size_t width) const
{
    std::vector<std::size_t> result = widths();
    const auto sum = [&] { return std::accumulate(result.begin(), result.end(), COLUMN_GAP * (result.size() - 1)); };
    for (std::size_t total = sum(); total > width; --total) {
        std::size_t* widest = nullptr;
        for (std::size_t k = 0; k < result.size(); ++k) {
            const bool canShrink = m_columns[k] == Align::Left && result[k] > LEAST_WIDTH;
            widest = canShrink && (widest == nullptr || result[k] > *widest) ? &result[k] : widest;
        }
        // Numbers stay whole. If that is too wide, the terminal wraps the rows anyway, and names need not suffer.
        if (widest == nullptr) {
            return widths();
        }
        --*widest;
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
