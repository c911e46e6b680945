// SPDX-License-Identifier: MIT
#include "foamfile/ChunkTranslator.h"

#include "LibCore/Numbers.h"

#include <tbb/blocked_range.h>
#include <tbb/parallel_for.h>
#include <tbb/parallel_sort.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace {

using Range = tbb::blocked_range<std::size_t>;

/// The number at the start of a text. The text is cut at the end of the number first, so that the conversion never runs
/// on into later lines, which other workers read.
double leadingNumber(const char* text)
{
    const char* const first = text + std::strspn(text, " \t\n\v\f\r");
    double value = 0.0;
    static_cast<void>(dvf::tokenToDouble(std::string_view(first, std::strcspn(first, " \t\n\v\f\r);")), &value));
    return value;
}

/// Marks the line starts of a range of positions. Pushes may come from all workers at once, in any order, because the
/// offsets are sorted after the loop.
struct MarkLinesFunctor
{
    const char* chunk;
    char delimiter;
    tbb::concurrent_vector<int>& offsets;

    void operator()(const Range& range) const
    {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            if (chunk[i] == delimiter) {
                offsets.push_back(static_cast<int>(i + 1));
            }
            if (chunk[i] == ';') {
                return;
            }
        }
    }
};

/// Converts lines. Line i writes only the `COMPONENTS` values of place i.
template <std::size_t COMPONENTS>
struct ReadLinesFunctor
{
    const char* chunk;
    const tbb::concurrent_vector<int>& offsets;
    double* values;

    void operator()(const Range& range) const
    {
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            const char* const line = chunk + offsets[i] + (COMPONENTS == 1 ? 0 : 1);
            for (std::size_t component = 0; component < COMPONENTS; ++component) {
                values[COMPONENTS * i + component] = leadingNumber(line);
            }
        }
    }
};

} // namespace

bool ChunkTranslator::split(char delimiter, char* chunk, std::size_t lastIndex, tbb::concurrent_vector<int>* offsets)
{
    offsets->push_back(0);
    if (lastIndex >= 3) {
        tbb::task_group_context context;
        tbb::parallel_for(Range(0, lastIndex - 1, 1), MarkLinesFunctor{chunk, delimiter, *offsets}, m_partitioner,
                          context);
    }
    tbb::parallel_sort(offsets->begin(), offsets->end());
    return true;
}

bool ChunkTranslator::readOneDoublePerLine(char* chunk, const tbb::concurrent_vector<int>& offsets, char /*delimiter*/,
                                           double* values, std::size_t count)
{
    if (count != 0) {
        tbb::task_group_context context;
        tbb::parallel_for(Range(0, count, 1), ReadLinesFunctor<1>{chunk, offsets, values}, m_partitioner, context);
    }
    return true;
}

bool ChunkTranslator::readThreeDoublePerLine(char* chunk, const tbb::concurrent_vector<int>& offsets,
                                             char* /*delimiters*/, double* values, std::size_t count)
{
    if (count != 0) {
        tbb::task_group_context context;
        tbb::parallel_for(Range(0, count, 1), ReadLinesFunctor<3>{chunk, offsets, values}, m_partitioner, context);
    }
    return true;
}

double ChunkTranslator::readAsDouble(const char*& text, char /*delimiter*/)
{
    return leadingNumber(text);
}
