// SPDX-License-Identifier: MIT
#pragma once

#include <tbb/concurrent_vector.h>
#include <tbb/partitioner.h>

#include <cstddef>

/// The parallel loops that turn a chunk of lines into numbers in two passes: the first finds where the lines start, the
/// second converts them.
///
/// The first pass tests one byte per position, and the second has no shared writes: line starts are found without
/// parsing, and after that each line can be parsed by itself. An object lives as long as one run over a list, so loops
/// over chunks of similar size keep their cache affinity. Every operation returns true.
class ChunkTranslator
{
public:
    /// Appends the offsets at which lines start, ascending, the first of them 0.
    ///
    /// A worker stops at a ";", the end of a list; others may still mark lines after it, which sort after those of the
    /// list.
    /// @param chunk     text that ends with a line and a NUL
    /// @param lastIndex index of its last byte; the last two bytes are left out, because no line can start there
    bool split(char delimiter, char* chunk, std::size_t lastIndex, tbb::concurrent_vector<int>* offsets);
    /// Fills `values[i]` with the number at the start of line i, 0.0 if there is none. `delimiter` is not used.
    bool readOneDoublePerLine(char* chunk, const tbb::concurrent_vector<int>& offsets, char delimiter, double* values,
                              std::size_t count);
    /// Fills three values for each line with the number after its first character. `delimiters` is not used.
    ///
    /// Compatibility (docs/compatibility.md, "vector lines of the two-pass strategy"): all three are the first number.
    bool readThreeDoublePerLine(char* chunk, const tbb::concurrent_vector<int>& offsets, char* delimiters,
                                double* values, std::size_t count);
    /// The number at the start of the text, after white space, as `strtod` reads it; `text` stays where it is.
    double readAsDouble(const char*& text, char delimiter);

private:
    tbb::affinity_partitioner m_partitioner;
};
