// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "LibCore/LargePages.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/FieldPieces.h"
#include "foamfile/ListMessages.h"
#include "foamfile/OFLogger.h"
#include "foamfile/TokenScanner.h"

#include <tbb/parallel_invoke.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using TokenScanner::ComponentEnd;

constexpr std::size_t COMPONENTS = 3;
/// Doubles by which the values of a worker grow: more than the usual chunk holds.
constexpr std::size_t VALUES_STEP = 72000;
constexpr std::size_t VECTOR_WORKERS = 4;

/// Finds the next "(" and stands behind it; false at the end of the text.
bool skipToVector(const char*& p)
{
    return TokenScanner::skipBehind(p, '(');
}

/// Reads the components of one vector up to `limit` of them, and tells how many are numbers.
template <ComponentEnd END>
std::size_t scanVector(const char*& p, const char* end, std::size_t limit, double* xyz)
{
    static constexpr std::array<char, COMPONENTS> DELIMITERS = {' ', ' ', ')'};
    std::size_t done = 0;
    while (done < limit && TokenScanner::scanComponent<END>(p, end, DELIMITERS[done], xyz + done)) {
        ++done;
    }
    return done;
}

/// Reads the vectors of a piece of a field list. One that does not end with its line, or is not as it should be, leaves
/// the piece in doubt.
void readVectorsOfPiece(FieldPieces::Piece* piece, const char* end)
{
    const char* p = piece->begin;
    const auto nextVector = [&] {
        const void* const found = std::memchr(p, '(', static_cast<std::size_t>(piece->limit - p));
        return static_cast<const char*>(found);
    };
    for (const char* bracket = nextVector(); bracket != nullptr; bracket = nextVector()) {
        const char* vector = bracket + 1;
        vector += std::strspn(vector, " ");
        double* const xyz = piece->room(COMPONENTS);
        if (scanVector<ComponentEnd::DelimiterBlankOrBracketOfTheLine>(vector, end, COMPONENTS, xyz) < COMPONENTS ||
            vector > piece->limit) {
            return;
        }
        piece->count += COMPONENTS;
        p = vector;
    }
    piece->stop = p;
    piece->isClean = true;
}

/// What one worker of a pass owns: its chunk and the values read from it, whose place in the list is not known before
/// the workers of the chunks in front of it are done.
struct VectorFieldThread
{
    ChunkBuffer chunk;
    const char* begin = nullptr;
    const char* end = nullptr;
    GrowingBuffer<double> values;
    std::size_t count = 0;
    bool more = true;
};

/// Reads the vectors of one chunk. It touches nothing but its own record.
///
/// Text between vectors is passed over. A vector that is not as it should be ends the chunk, and what came before it
/// counts.
struct VectorDataGroupReader
{
    VectorFieldThread* thread;

    void operator()() const
    {
        thread->count = 0;
        if (!thread->more) {
            return;
        }
        const char* p = thread->begin;
        while (skipToVector(p)) {
            if (thread->count + COMPONENTS > thread->values.capacity()) {
                thread->values.grow(thread->count + VALUES_STEP, thread->count);
            }
            double* const xyz = thread->values.data() + thread->count;
            if (scanVector<ComponentEnd::Delimiter>(p, thread->end, COMPONENTS, xyz) < COMPONENTS) {
                return;
            }
            thread->count += COMPONENTS;
        }
    }
};

/// Copies the values of one worker to their place. Places never overlap: they are a prefix sum over the workers that is
/// complete before the copies start.
struct Merger
{
    const VectorFieldThread* thread;
    double* target;

    void operator()() const { std::copy_n(thread->values.data(), thread->count, target); }
};

} // namespace

bool OFFile::readVectorField(const dvn::Str& path, const dvn::Str& objectName, std::vector<double>* values)
{
    static constexpr ListMessages MESSAGES = {
        "Failed to open vector field file. File basename is %1",
        "Unexpected object in vector field file. File basename is %1",
        "Unexpected class in vector field file. File basename is %1",
        "Failed to read number of items in vector field file. File basename is %1",
        "Invalid number of items in vector field file. File basename is %1"};
    if (m_hasHeader ? !openWithObject(path, objectName, MESSAGES) : !openOrReport(path, MESSAGES)) {
        return false;
    }
    if (m_hasHeader && checkedLookup(m_headerEntries, std::string("class")) != "vectorField") {
        return reportError(MESSAGES.wrongClass);
    }
    int count = 0;
    if (!readListCount(MESSAGES, COMPONENTS * BYTES_PER_NUMBER, LARGEST_COUNT, &count)) {
        return false;
    }
    dvf::reserveLarge(values, COMPONENTS * static_cast<std::size_t>(count));
    values->resize(COMPONENTS * static_cast<std::size_t>(count));
    if (count == 0) {
        close();
        return true;
    }
    if (!skipToList()) {
        return false;
    }
    const std::size_t found =
        m_isBinary ? readRaw(values->data(), sizeof(double), values->size()) : readVectorsPar(values);
    const bool isWhole = found == values->size();
    if (!isWhole) {
        reportShortList(static_cast<std::size_t>(count), found / COMPONENTS);
    }
    close();
    return isWhole || !m_isBinary;
}

bool OFFile::readNextVectorFieldAsciiPar(std::vector<double>* values) const
{
    readVectorsPar(values);
    return true;
}

/// Reads chunks in file order on this thread, has them parsed by one worker each, and copies what they hold one behind
/// the other, pass after pass. Tells how many doubles came.
std::size_t OFFile::readVectorsPar(std::vector<double>* values) const
{
    std::array<VectorFieldThread, VECTOR_WORKERS> threads;
    std::size_t done = 0;
    while (done < values->size() && threads.back().more) {
        for (VectorFieldThread& thread : threads) {
            Chunk chunk;
            thread.more = nextChunk(&thread.chunk, &chunk);
            thread.begin = chunk.begin;
            thread.end = chunk.end;
        }
        tbb::task_group_context parsing;
        tbb::parallel_invoke(VectorDataGroupReader{&threads[0]}, VectorDataGroupReader{&threads[1]},
                             VectorDataGroupReader{&threads[2]}, VectorDataGroupReader{&threads[3]}, parsing);
        std::array<double*, VECTOR_WORKERS> targets = {};
        for (std::size_t i = 0; i < VECTOR_WORKERS; ++i) {
            // A file with more vectors than it promised must not write beyond the target.
            threads[i].count = std::min(threads[i].count, values->size() - done);
            targets[i] = values->data() + done;
            done += threads[i].count;
        }
        tbb::task_group_context merging;
        tbb::parallel_invoke(Merger{&threads[0], targets[0]}, Merger{&threads[1], targets[1]},
                             Merger{&threads[2], targets[2]}, Merger{&threads[3], targets[3]}, merging);
    }
    return done;
}

bool OFFile::readNextVectorFieldBinary(std::vector<double>* values) const
{
    return readRaw(values->data(), sizeof(double), values->size()) == values->size();
}

bool OFFile::readNextVectorFieldAscii(std::vector<double>* values) const
{
    std::size_t found = 0;
    return walkVectors(values, &found);
}

/// Reads vectors in this thread to the end of the target or to the first text that is none.
bool OFFile::walkVectors(std::vector<double>* values, std::size_t* found) const
{
    int chunks = 0;
    Chunk chunk;
    FieldPieces pieces;
    while (nextChunk(&m_chunkBuffer, &chunk)) {
        ++chunks;
        std::size_t ahead = 0;
        const char* p = pieces.read(chunk.begin, chunk.end, values->size() - *found, values->data() + *found,
                                    readVectorsOfPiece, &ahead);
        *found += ahead;
        while (*found < values->size() && skipToVector(p)) {
            p += std::strspn(p, " ");
            const std::size_t wanted = std::min(COMPONENTS, values->size() - *found);
            const std::size_t came =
                scanVector<ComponentEnd::DelimiterBlankOrBracket>(p, chunk.end, wanted, values->data() + *found);
            *found += came;
            if (came < wanted) {
                keepPending(chunk.begin + (p - chunk.begin));
                return false;
            }
        }
        if (*found == values->size()) {
            endList(chunk, p, chunks, *found);
            return true;
        }
    }
    return OFLogger::get().logError(
        "OFFile", dvn::Str("Failed to read values from file. Read %1 values from %2").arg(*found).arg(values->size()));
}

/// Leaves what stands behind the ";" of a list pending, if the chunk still holds it.
void OFFile::endList(const Chunk& chunk, const char* p, int chunks, std::size_t valueCount) const
{
    if (!TokenScanner::skipBehind(p, ';')) {
        return;
    }
    keepPending(chunk.begin + (p - chunk.begin));
    OFLogger::get().logDebug("OFFile",
                             dvn::Str("treated %1 chunks for reading %2 doubles").arg(chunks).arg(valueCount));
}
