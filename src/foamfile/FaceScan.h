// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/TextSource.h"
#include "foamfile/TokenScanner.h"

#include <cstddef>
#include <string>

/// Reads the face at the cursor, hands it to `target` and advances past it; false if there is no whole face.
///
/// @param target has `bool canTake(count)`, `int* room(count)`, where the labels go, and `void publish(count)`, called
///               for whole faces only
template <TokenScanner::FaceTokenEnd END, typename Target>
bool scanFace(const char*& cursor, const char* end, Target* target)
{
    const char* p = cursor;
    int count = 0;
    // guard: face-of-no-nodes
    if (!TokenScanner::scanFaceSize<END>(p, &count) || count < 1) {
        return false;
    }
    // Each label takes at least one character, so nothing grows for a size that is wrong. guard: face-size
    const auto size = static_cast<std::size_t>(count);
    if (size > static_cast<std::size_t>(end - p) || !target->canTake(size) ||
        !TokenScanner::scanFaceLabels<END>(p, size, target->room(size))) {
        return false;
    }
    target->publish(size);
    cursor = p;
    return true;
}

/// Chunks that end after a face: a face cut by a chunk border would be lost on both sides.
class FaceChunks
{
public:
    explicit FaceChunks(TextSource& text) : m_text(text) {}

    /// Hands out the text up to the last ")" of the next chunk; what follows it is put before the next one. False at
    /// the end of the file.
    bool next(ChunkBuffer* buffer, TextSource::Chunk* chunk);

private:
    TextSource& m_text;
    std::string m_tail;
};
