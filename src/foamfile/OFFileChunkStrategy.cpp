// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "foamfile/ChunkTranslator.h"

#include <algorithm>
#include <array>
#include <cstring>

bool OFFile::markChunkThenReadChunkStrategy(std::vector<double>* values, int componentsPerLine)
{
    if (componentsPerLine < 1) {
        return false;
    }
    const auto components = static_cast<std::size_t>(componentsPerLine);
    const std::size_t items = values->size() / components;
    ChunkTranslator translator;
    std::size_t itemsRead = 0;
    while (itemsRead < items) {
        char* chunk = m_chunkBuffer.data();
        std::size_t lastIndex = 0;
        if (!getNextChunkOfLines(&chunk, &lastIndex)) {
            return false;
        }
        if (*chunk == '\0') {
            // The rest of a chunk that was used up to its end; the list goes on in the next one.
            continue;
        }
        m_lineOffsets.clear();
        translator.split('\n', chunk, lastIndex, &m_lineOffsets);
        const std::size_t lines = m_lineOffsets.size();
        const std::size_t count = std::min(lines, items - itemsRead);
        if (lines + itemsRead >= items) {
            // Not the next marked line: a ";" ends the marking, and which lines behind it are marked depends on how
            // the loop was cut.
            char* const lastItem = chunk + m_lineOffsets[count - 1];
            keepBehindList(lastItem + std::strcspn(lastItem, "\n"));
        }
        double* const target = values->data() + components * itemsRead;
        if (componentsPerLine == 1) {
            translator.readOneDoublePerLine(chunk, m_lineOffsets, '\n', target, count);
        } else if (componentsPerLine == 3) {
            std::array<char, 3> delimiters = {' ', ' ', ')'};
            translator.readThreeDoublePerLine(chunk, m_lineOffsets, delimiters.data(), target, count);
        } else {
            return false;
        }
        itemsRead += lines;
    }
    m_lineOffsets.clear();
    return true;
}

/// Leaves what stands behind the next ";" pending; nothing is, where the chunk has none, as the text then goes on in
/// the stream.
void OFFile::keepBehindList(char* firstLineBehind) const
{
    char* const semicolon = std::strchr(firstLineBehind, ';');
    if (semicolon != nullptr) {
        keepPending(semicolon + 1);
    }
}
