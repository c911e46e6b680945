// SPDX-License-Identifier: MIT
#include "foamfile/OFFile.h"

#include "LibCore/LargePages.h"
#include "foamfile/CheckedLookup.h"
#include "foamfile/GzStream.h"
#include "foamfile/ListMessages.h"
#include "foamfile/TokenScanner.h"

#include <tbb/parallel_invoke.h>
#include <tbb/task_group.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace {

using TokenScanner::FaceTokenEnd;

constexpr std::size_t FACE_WORKERS = 6;
/// Entries by which the faces and labels of a worker grow: more than the usual chunk holds, so that this is rare.
constexpr std::size_t WORKER_FACES_STEP = 80000;
constexpr std::size_t WORKER_NODES_STEP = 640000;
/// What the sequential readers assume of a face, and by how much they grow.
constexpr std::size_t NODES_PER_FACE = 8;
constexpr std::size_t NODES_STEP = 80000;
/// By how much the estimate of all nodes exceeds what the first faces suggest.
constexpr double RESERVE_MARGIN = 1.125;
/// Offsets are 32 bits, so this is all that a mesh can have of labels.
constexpr std::size_t MAX_NODES = std::numeric_limits<int>::max();

/// Reads the face at the cursor, hands it to `target` and moves behind it; false if no whole face stands there.
///
/// A target has `bool canTake(count)`, `int* room(count)`, where the labels go, and `void publish(count)`, called for
/// whole faces alone.
template <FaceTokenEnd END, typename Target>
bool readFace(const char*& cursor, const char* end, Target* target)
{
    const char* p = cursor;
    int count = 0;
    if (!TokenScanner::scanFaceSize<END>(p, &count) || count < 1) {
        return false;
    }
    // Each label takes at least one character, so a size that lies makes nothing grow.
    const auto size = static_cast<std::size_t>(count);
    if (size > static_cast<std::size_t>(end - p) || !target->canTake(size) ||
        !TokenScanner::scanFaceLabels<END>(p, size, target->room(size))) {
        return false;
    }
    target->publish(size);
    cursor = p;
    return true;
}

/// What one worker of a pass owns: its chunk and the faces read from it, whose place in the list is not known before
/// the workers of the chunks in front of it are done.
struct FaceListThread
{
    ChunkBuffer chunk;
    const char* begin = nullptr;
    const char* end = nullptr;
    GrowingBuffer<std::uint8_t> nodeCounts;
    GrowingBuffer<int> nodeOffsets;
    GrowingBuffer<int> nodes;
    std::size_t faceCount = 0;
    std::size_t nodeCount = 0;
    bool more = true;

    bool canTake(std::size_t count) const { return nodeCount + count <= MAX_NODES; }

    int* room(std::size_t count)
    {
        if (nodeCount + count > nodes.capacity()) {
            nodes.grow(nodeCount + std::max(count, WORKER_NODES_STEP), nodeCount);
        }
        return nodes.data() + nodeCount;
    }

    void publish(std::size_t count)
    {
        if (faceCount == nodeCounts.capacity()) {
            nodeCounts.grow(faceCount + WORKER_FACES_STEP, faceCount);
            nodeOffsets.grow(nodeCounts.capacity(), faceCount);
        }
        nodeCounts.data()[faceCount] = static_cast<std::uint8_t>(count);
        nodeOffsets.data()[faceCount] = static_cast<int>(nodeCount);
        ++faceCount;
        nodeCount += count;
    }

    /// Drops the faces behind the first `limit`.
    void cutTo(std::size_t limit)
    {
        if (limit < faceCount) {
            nodeCount = static_cast<std::size_t>(nodeOffsets.data()[limit]);
            faceCount = limit;
        }
    }
};

/// Reads the faces of one chunk up to the first text that is none. It touches nothing but its own record.
struct FaceListReader
{
    FaceListThread* thread;

    void operator()() const
    {
        thread->faceCount = 0;
        thread->nodeCount = 0;
        if (!thread->more) {
            return;
        }
        const char* p = thread->begin;
        TokenScanner::skipLineFeeds(p);
        while (readFace<FaceTokenEnd::Delimiter>(p, thread->end, thread)) {
        }
    }
};

/// Copies the faces of one worker to their place. Places never overlap: they are prefix sums over the workers that are
/// complete before the copies start.
struct FaceListAssembler
{
    const FaceListThread* thread;
    FacesData* faces;
    std::size_t firstFace;
    std::size_t firstNode;

    void operator()() const
    {
        std::copy_n(thread->nodeCounts.data(), thread->faceCount, faces->nodeCounts.data() + firstFace);
        std::transform(thread->nodeOffsets.data(), thread->nodeOffsets.data() + thread->faceCount,
                       faces->nodeOffsets.data() + firstFace,
                       [base = static_cast<int>(firstNode)](int offset) { return offset + base; });
        std::copy_n(thread->nodes.data(), thread->nodeCount, faces->nodes.data() + firstNode);
    }
};

/// Takes faces into the list itself, one behind the other.
class SequentialFaces
{
public:
    explicit SequentialFaces(FacesData* faces) : m_faces(faces) {}

    bool canTake(std::size_t count) const { return m_nodeCount + count <= MAX_NODES; }

    int* room(std::size_t count)
    {
        growNodes(m_nodeCount + count);
        return m_faces->nodes.data() + m_nodeCount;
    }

    void publish(std::size_t count)
    {
        m_faces->nodeCounts[m_faceCount] = static_cast<std::uint8_t>(count);
        m_faces->nodeOffsets[m_faceCount] = static_cast<int>(m_nodeCount);
        ++m_faceCount;
        m_nodeCount += count;
    }

    bool isFull() const { return m_faceCount == m_faces->faceCount(); }
    std::size_t faceCount() const { return m_faceCount; }
    std::size_t nodeCount() const { return m_nodeCount; }

private:
    void growNodes(std::size_t needed)
    {
        std::vector<int>& nodes = m_faces->nodes;
        if (needed > nodes.size()) {
            const std::size_t steps = (needed - nodes.size() + NODES_STEP - 1) / NODES_STEP;
            nodes.resize(nodes.size() + steps * NODES_STEP);
        }
    }

    FacesData* m_faces;
    std::size_t m_faceCount = 0;
    std::size_t m_nodeCount = 0;
};

/// Labels of the first `faceCount` faces.
std::size_t nodesOfFaces(const int* offsets, std::size_t faceCount)
{
    return static_cast<std::size_t>(static_cast<std::int64_t>(offsets[faceCount]) - offsets[0]);
}

/// How many faces there are in front of the first offset that falls.
std::size_t risingFaces(const int* offsets, std::size_t faceCount)
{
    return static_cast<std::size_t>(std::is_sorted_until(offsets, offsets + faceCount + 1) - offsets) - 1;
}

} // namespace

bool OFFile::readFaceList(const dvn::Str& path, const dvn::Str& objectName, FacesData* faces)
{
    static constexpr ListMessages MESSAGES = {"Failed to open face list file. File basename is %1",
                                              "Unexpected object in face list file. File basename is %1",
                                              "Unexpected class in face list file. File basename is %1",
                                              "Failed to read number of items in face list file. File basename is %1",
                                              "Invalid number of items in face list file. File basename is %1"};
    if (m_hasHeader ? !openWithObject(path, objectName, MESSAGES) : !openOrReport(path, MESSAGES)) {
        return false;
    }
    const std::string className = m_hasHeader ? checkedLookup(m_headerEntries, std::string("class")) : "faceList";
    const bool isCompact = className == "faceCompactList";
    if (!isCompact && className != "faceList") {
        return reportError(MESSAGES.wrongClass);
    }
    // A compact list counts offsets, one more than faces, so the largest count is one face less and passes.
    const int largestCount = LARGEST_COUNT + (isCompact ? 1 : 0);
    int count = 0;
    if (!readListCount(MESSAGES, BYTES_PER_NUMBER, largestCount, &count)) {
        return false;
    }
    const std::size_t faceCount = static_cast<std::size_t>(count) - (isCompact && count != 0 ? 1 : 0);
    faces->nodes.clear();
    faces->nodeCounts.assign(faceCount, 0);
    faces->nodeOffsets.assign(faceCount, 0);
    if (count != 0) {
        std::size_t found = faceCount;
        const bool isRead = readFaces(faces, isCompact, &found);
        if (found < faceCount) {
            reportShortList(faceCount, found);
        }
        if (!isRead) {
            return false;
        }
    }
    close();
    return true;
}

bool OFFile::readNextFaceList(FacesData* faces)
{
    std::size_t found = 0;
    return readFaces(faces, false, &found);
}

bool OFFile::readNextFaceCompactList(FacesData* faces)
{
    std::size_t found = 0;
    return readFaces(faces, true, &found);
}

/// Moves to the list and reads it. `found` becomes the number of whole faces read, if the list was reached.
bool OFFile::readFaces(FacesData* faces, bool isCompact, std::size_t* found)
{
    if (!skipToList() || (m_isBinary && !isCompact)) {
        return false;
    }
    if (m_isBinary) {
        return readCompactBinary(faces, found);
    }
    if (isCompact) {
        return readCompactAscii(faces, found);
    }
    // What a short list lacks shows in the number of faces alone.
    *found = readFacesPar(faces);
    return true;
}

bool OFFile::readNextFaceListBinary(FacesData* /*faces*/)
{
    return false;
}

/// Hands out text that ends behind a face: a face of many nodes stands over several lines, and one that a border cuts
/// would be lost on both sides of it. What stands behind the last ")" of a chunk goes in front of the next one.
bool OFFile::nextChunkOfFaces(ChunkBuffer* buffer, std::string* tail, Chunk* chunk) const
{
    Chunk pending;
    if (m_position.pending && nextChunk(buffer, &pending)) {
        tail->append(pending.begin, pending.end);
    }
    if (m_stream == nullptr) {
        return false;
    }
    buffer->grow(tail->size() + CHUNK_BUFFER_SIZE + LINE_BUFFER_SIZE, 0);
    std::size_t used = tail->copy(buffer->data(), tail->size());
    tail->clear();
    for (;;) {
        const std::size_t length = appendChunk(buffer, used);
        *chunk = {buffer->data(), buffer->data() + length};
        if (length == used) {
            return length != 0;
        }
        const std::string_view text(buffer->data(), length);
        const std::size_t close = text.substr(used).rfind(')');
        if (close != std::string_view::npos) {
            const std::string_view rest = text.substr(used + close + 1);
            tail->assign(rest.substr(std::min(rest.find_first_not_of('\n'), rest.size())));
            chunk->end = chunk->begin + used + close + 1;
            *chunk->end = '\0';
            return true;
        }
        used = length;
    }
}

bool OFFile::readNextFaceListAsciiPar(FacesData* faces)
{
    readFacesPar(faces);
    return true;
}

/// Reads chunks in file order on this thread, has them parsed by one worker each, and copies what they hold one behind
/// the other, pass after pass. Tells how many faces came; `nodes` is cut to what they hold.
std::size_t OFFile::readFacesPar(FacesData* faces) const
{
    std::vector<FaceListThread> threads(FACE_WORKERS);
    std::string tail;
    std::size_t facesDone = 0;
    std::size_t nodesDone = 0;
    faces->nodes.clear();
    while (facesDone < faces->faceCount() && threads.back().more) {
        for (FaceListThread& thread : threads) {
            Chunk chunk;
            thread.more = nextChunkOfFaces(&thread.chunk, &tail, &chunk);
            thread.begin = chunk.begin;
            thread.end = chunk.end;
        }
        tbb::task_group_context parsing;
        tbb::parallel_invoke(FaceListReader{&threads[0]}, FaceListReader{&threads[1]}, FaceListReader{&threads[2]},
                             FaceListReader{&threads[3]}, FaceListReader{&threads[4]}, FaceListReader{&threads[5]},
                             parsing);
        std::array<std::size_t, FACE_WORKERS> firstFaces = {};
        std::array<std::size_t, FACE_WORKERS> firstNodes = {};
        for (std::size_t i = 0; i < FACE_WORKERS; ++i) {
            // A file with more faces than it promised, or more labels than offsets can tell, must not write beyond.
            const bool isTooMuch = nodesDone + threads[i].nodeCount > MAX_NODES;
            threads[i].cutTo(isTooMuch ? 0 : faces->faceCount() - facesDone);
            firstFaces[i] = facesDone;
            firstNodes[i] = nodesDone;
            facesDone += threads[i].faceCount;
            nodesDone += threads[i].nodeCount;
        }
        if (faces->nodes.empty()) {
            reserveNodes(faces, facesDone, nodesDone);
        }
        // To what this pass needs and no further: memory is filled while it is in the cache, and touched once.
        faces->nodes.resize(nodesDone);
        const auto assembler = [&](std::size_t i) {
            return FaceListAssembler{&threads[i], faces, firstFaces[i], firstNodes[i]};
        };
        tbb::task_group_context assembling;
        tbb::parallel_invoke(assembler(0), assembler(1), assembler(2), assembler(3), assembler(4), assembler(5),
                             assembling);
    }
    return facesDone;
}

/// Makes room for all nodes by what the first faces had, so that the list is not copied while it grows.
void OFFile::reserveNodes(FacesData* faces, std::size_t faceCount, std::size_t nodeCount) const
{
    if (faceCount == 0) {
        return;
    }
    const double nodesPerFace = static_cast<double>(nodeCount) / static_cast<double>(faceCount);
    const double estimate = nodesPerFace * static_cast<double>(faces->faceCount()) * RESERVE_MARGIN;
    const auto expected = static_cast<std::size_t>(std::min(estimate, static_cast<double>(MAX_NODES)));
    if (canHold(expected, BYTES_PER_NUMBER)) {
        dvf::reserveLarge(&faces->nodes, expected);
    }
}

bool OFFile::readNextFaceListAscii(FacesData* faces)
{
    faces->nodes.resize(std::max(faces->nodes.size(), NODES_PER_FACE * faces->faceCount()));
    const FaceWalk walk = walkFaces(faces, true);
    faces->nodes.resize(walk.nodeCount);
    return walk.isGood;
}

bool OFFile::readNextFaceCompactListAscii(FacesData* faces)
{
    std::size_t found = 0;
    return readCompactAscii(faces, &found);
}

bool OFFile::readCompactAscii(FacesData* faces, std::size_t* found)
{
    const FaceWalk walk = walkFaces(faces, false);
    *found = walk.faceCount;
    // Nothing of use follows the list; the position is left at the end of the file.
    Chunk rest;
    while (walk.isGood && nextChunk(&m_chunkBuffer, &rest)) {
    }
    return walk.isGood;
}

/// Reads faces one after the other; the end of the file is no failure, text that is no face is one.
OFFile::FaceWalk OFFile::walkFaces(FacesData* faces, bool skipsFirstLineFeeds) const
{
    SequentialFaces target(faces);
    std::string tail;
    Chunk chunk;
    bool skipsLineFeeds = skipsFirstLineFeeds;
    while (!target.isFull() && nextChunkOfFaces(&m_chunkBuffer, &tail, &chunk)) {
        const char* p = chunk.begin;
        if (skipsLineFeeds) {
            TokenScanner::skipLineFeeds(p);
        }
        skipsLineFeeds = true;
        while (!target.isFull() && *p != '\0') {
            if (!readFace<FaceTokenEnd::DelimiterBlankOrNul>(p, chunk.end, &target)) {
                return {false, target.faceCount(), target.nodeCount()};
            }
        }
    }
    return {true, target.faceCount(), target.nodeCount()};
}

bool OFFile::readNextFaceCompactListBinary(FacesData* faces)
{
    std::size_t found = 0;
    return readCompactBinary(faces, &found);
}

bool OFFile::readCompactBinary(FacesData* faces, std::size_t* found)
{
    *found = 0;
    const std::size_t offsetCount = faces->faceCount() + 1;
    GrowingBuffer<int> offsets;
    offsets.grow(offsetCount, 0);
    if (readRaw(offsets.data(), sizeof(int), offsetCount) != offsetCount || m_stream->nextByte() != ')') {
        return false;
    }
    // The offsets tell how many labels there are; the count in front of the labels only has to be there.
    int labelCount = 0;
    if (!readNextIntLine(&labelCount) || !skipToList()) {
        return false;
    }
    const std::size_t planned = risingFaces(offsets.data(), faces->faceCount());
    const std::size_t claimed = nodesOfFaces(offsets.data(), planned);
    const std::size_t labels = readCompactNodes(faces, claimed, canHold(claimed, sizeof(int)));
    while (*found < planned && nodesOfFaces(offsets.data(), *found + 1) <= labels) {
        const std::size_t first = nodesOfFaces(offsets.data(), *found);
        faces->nodeCounts[*found] = static_cast<std::uint8_t>(nodesOfFaces(offsets.data(), *found + 1) - first);
        faces->nodeOffsets[*found] = static_cast<int>(first);
        ++*found;
    }
    return *found == faces->faceCount();
}

/// Reads labels to the start of `nodes`, which grows in steps, and tells how many came.
///
/// One read of many labels in place of one a face, but into memory that was cleared just before and is in the cache.
/// The memory for all is taken at once if the file has them, as `isCredible` says.
std::size_t OFFile::readCompactNodes(FacesData* faces, std::size_t labelCount, bool isCredible) const
{
    std::vector<int>& nodes = faces->nodes;
    const auto sizeFor = [size = nodes.size()](std::size_t count) {
        const std::size_t missing = count - std::min(count, size);
        return size + (missing + NODES_STEP - 1) / NODES_STEP * NODES_STEP;
    };
    if (isCredible) {
        dvf::reserveLarge(&nodes, sizeFor(labelCount));
    }
    std::size_t done = 0;
    while (done < labelCount) {
        const std::size_t wanted = std::min(NODES_STEP, labelCount - done);
        nodes.resize(std::max(nodes.size(), done + wanted));
        const std::size_t came = readRaw(nodes.data() + done, sizeof(int), wanted);
        done += came;
        if (came < wanted) {
            break;
        }
    }
    nodes.resize(sizeFor(done));
    return done;
}
