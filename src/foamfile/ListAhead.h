// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FieldPieces.h"
#include "foamfile/TextSource.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

/// Reads the long list of a field ahead of the walk: windows of many lines, parsed in pieces while the next window is
/// read. Counts the chunks that the walk would have taken the text in, since a log line names them.
class ListAhead
{
public:
    ListAhead(TextSource& text, std::vector<double>* values) : m_text(text), m_values(values) {}

    /// Parses windows as long as each of their pieces can be used. `*found` grows by the values stored.
    template <typename ReadPiece>
    void read(const ReadPiece& readPiece, std::size_t* found)
    {
        m_offset = 0;
        while (!m_text.isPending() && canGoOn(*found)) {
            const std::string_view lines = m_text.peekLines(m_offset + WINDOW_SIZE);
            const std::string_view window = lines.substr(std::min(m_offset, lines.size()));
            if (*found == 0 && window.starts_with('\n')) {
                // Only the walk knows how to treat an empty line before the first value.
                return;
            }
            std::size_t count = 0;
            const char* const stop = m_pieces.read(
                window.data(), window.data() + window.size(), m_values->size() - *found, m_values->data() + *found,
                readPiece, [this] { m_text.stage(WINDOW_SIZE); }, &count);
            *found += count;
            const auto parsed = static_cast<std::size_t>(stop - lines.data());
            std::size_t taken = 0;
            m_chunks += m_text.takeChunks(lines, parsed, &taken);
            m_offset = parsed - taken;
            if (count == 0 || parsed < lines.size()) {
                return;
            }
        }
    }

    /// Parses the text of a chunk from `p` on in pieces, if it is long enough, and returns where the walk goes on.
    template <typename ReadPiece>
    const char* readChunk(const char* p, const char* end, const ReadPiece& readPiece, std::size_t* found)
    {
        std::size_t count = 0;
        p = m_pieces.read(p, end, m_values->size() - *found, m_values->data() + *found, readPiece, &count);
        *found += count;
        return p;
    }

    /// Where in the next chunk the walk goes on.
    std::size_t offset() const { return m_offset; }
    int chunks() const { return m_chunks; }

private:
    /// Text that is parsed at once: with its values it fits the cache of a core.
    static constexpr std::size_t WINDOW_SIZE = 1048576;

    bool canGoOn(std::size_t found) const
    {
        return FieldPieces::pays(static_cast<std::ptrdiff_t>(WINDOW_SIZE), m_values->size() - found);
    }

    TextSource& m_text;
    std::vector<double>* m_values;
    FieldPieces m_pieces;
    std::size_t m_offset = 0;
    int m_chunks = 0;
};
