// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/TextSource.h"
#include "foamfile/TokenScanner.h"

#include <cstddef>

/// The tokens of an ascii list, taken one by one from chunk after chunk.
///
/// White space and comments between tokens are skipped, as OpenFOAM does. No token is cut by the border of a chunk,
/// because chunks end with lines. While an object is in use, nobody else takes text of the source.
class ListTokens
{
public:
    /// Tokens at the position of a source.
    explicit ListTokens(TextSource& text) : m_text(&text) {}
    /// Tokens of a text that ends with a NUL at `end`.
    ListTokens(char* begin, char* end) : m_chunk{begin, end}, m_cursor(begin) {}

    /// Takes the next token if it is this character.
    bool take(char sought);
    /// Takes a number that is followed by white space, a bracket, ";", a comment or the end of the text.
    bool takeReal(double* value);
    /// The same for a label, which may have a sign. One that does not fit an int gives -1.
    bool takeLabel(int* label);
    /// The same for a flag, which OpenFOAM writes as 0 or 1 and also reads as a word.
    bool takeFlag(int* flag);

    /// Skips the white space up to the next token of the chunk; true if there is none, with the cursor at its end.
    bool endsChunk();
    /// Goes on to the next chunk of the source; false at the end of the file.
    bool nextChunk();
    /// The rest of the chunk.
    const char* cursor() const { return m_cursor; }
    const char* end() const { return m_chunk.end; }
    /// Moves within the chunk.
    void jumpTo(const char* cursor) { m_cursor = cursor; }

    /// Leaves the rest of the chunk pending in the source.
    void leave();

    /// Whether a token of a list may end before this character.
    static bool endsToken(char c);
    static bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

private:
    bool skipBlanks();
    bool skipComment();

    TextSource* m_text = nullptr; ///< null for a text of its own
    TextSource::Chunk m_chunk;
    const char* m_cursor = nullptr;
};
