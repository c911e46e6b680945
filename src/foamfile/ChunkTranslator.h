// SPDX-License-Identifier: MIT
#pragma once

#include <tbb/concurrent_vector.h>
#include <tbb/partitioner.h>

#include <cstddef>

/// The parallel loops that turn a chunk of lines into numbers in two passes: where the lines start, then what they say.
///
/// The first pass tests one byte a position, and the second has no shared writes: line starts are found without
/// parsing, and after that each line can be parsed alone. It lives as long as one run over a list, so that loops over
/// chunks of like size keep their cache affinity. Every operation answers true.
class ChunkTranslator
{
public:
    /// Appends the offsets at which lines start, ascending, with 0 in front.
    ///
    /// Where a worker meets ";", the end of a list, it stops; others may still mark lines behind it, which sort behind
    /// those of the list.
    /// @param chunk     text that ends with a line and a NUL
    /// @param lastIndex index of its last byte; the last two bytes are left out, as a line that starts there is none
    bool split(char delimiter, char* chunk, std::size_t lastIndex, tbb::concurrent_vector<int>* offsets);
    /// Fills `values[i]` with the number at the start of line i, 0.0 if there is none. `delimiter` plays no part.
    bool readOneDoublePerLine(char* chunk, const tbb::concurrent_vector<int>& offsets, char delimiter, double* values,
                              std::size_t count);
    /// Fills three values for each line with the number behind its first character. `delimiters` plays no part.
    ///
    /// All three take the first number of the line: the text is not advanced between them, and callers of this loop
    /// know it so.
    bool readThreeDoublePerLine(char* chunk, const tbb::concurrent_vector<int>& offsets, char* delimiters,
                                double* values, std::size_t count);
    /// The number at the start of the text, behind white space, as `strtod` takes it; `text` stays where it is.
    double readAsDouble(const char*& text, char delimiter);

private:
    tbb::affinity_partitioner m_partitioner;
};
