// SPDX-License-Identifier: MIT
#include "foamfile/FaceList.h"

#include "LibCore/LargePages.h"
#include "LibCore/Limits.h"
#include "foamfile/FaceScan.h"

#include <algorithm>
#include <vector>

namespace {

/// How many nodes the sequential readers expect of a face, and by how many their arrays grow.
constexpr std::size_t NODES_PER_FACE = 8;
constexpr std::size_t NODES_STEP = 80000;

/// Appends faces directly to the list, one after the other.
class SequentialFaces
{
public:
    explicit SequentialFaces(FacesData* faces) : m_faces(faces) {}

    bool canTake(std::size_t count) const { return m_nodeCount + count <= dvf::limits::FACE_NODES; }

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

/// Reads faces one after the other; the end of the file is not a failure, text that is not a face is one.
bool walkFaces(TextSource& text, bool skipsFirstLineFeeds, SequentialFaces* target)
{
    FaceChunks chunks(text);
    ChunkBuffer buffer;
    TextSource::Chunk chunk;
    bool skipsLineFeeds = skipsFirstLineFeeds;
    while (!target->isFull() && chunks.next(&buffer, &chunk)) {
        const char* p = chunk.begin;
        if (skipsLineFeeds) {
            TokenScanner::skipLineFeeds(p);
        }
        skipsLineFeeds = true;
        // guard: faces-sequential
        while (!target->isFull() && *p != '\0') {
            if (!scanFace<TokenScanner::FaceTokenEnd::DelimiterBlankOrNul>(p, chunk.end, target)) {
                return false;
            }
        }
    }
    return true;
}

/// Labels of the first `faceCount` faces.
std::size_t nodesOfFaces(const int* offsets, std::size_t faceCount)
{
    return static_cast<std::size_t>(static_cast<std::int64_t>(offsets[faceCount]) - offsets[0]);
}

/// How many faces come before the first offset that is smaller than the one before it.
std::size_t risingFaces(const int* offsets, std::size_t faceCount)
{
    // guard: falling-offsets
    return static_cast<std::size_t>(std::is_sorted_until(offsets, offsets + faceCount + 1) - offsets) - 1;
}

/// Reads labels into `nodes`, from its start on and growing it in steps, and returns how many were read.
///
/// One read takes many labels, not just those of a face, but only into memory that was cleared just before and is still
/// in the cache. If the file is large enough for all labels, memory for them is reserved at once.
std::size_t readCompactNodes(TextSource& text, std::size_t labelCount, std::vector<int>* nodes)
{
    const auto sizeFor = [size = nodes->size()](std::size_t count) {
        const std::size_t missing = count - std::min(count, size);
        return size + (missing + NODES_STEP - 1) / NODES_STEP * NODES_STEP;
    };
    // guard: compact-offsets
    if (text.canHold(labelCount, text.rawForm().labelSize)) {
        dvf::reserveLarge(nodes, sizeFor(labelCount));
    }
    std::size_t done = 0;
    while (done < labelCount) {
        const std::size_t wanted = std::min(NODES_STEP, labelCount - done);
        nodes->resize(std::max(nodes->size(), done + wanted));
        const std::size_t came = text.readRawLabels(nodes->data() + done, wanted);
        done += came;
        if (came < wanted) {
            break;
        }
    }
    nodes->resize(sizeFor(done));
    return done;
}

} // namespace

bool FaceList::readFile(FoamFile& file, const dvn::Str& path, const dvn::Str& objectName, FacesData* faces)
{
    static constexpr ListHeader::Messages MESSAGES = {
        .openFailed = "Failed to open face list file. File basename is %1",
        .wrongObject = "Unexpected object in face list file. File basename is %1",
        .wrongClass = "Unexpected class in face list file. File basename is %1",
        .noCount = "Failed to read number of items in face list file. File basename is %1",
        .badCount = "Invalid number of items in face list file. File basename is %1"};
    if (!ListHeader::openWithOrWithoutHeader(file, path, objectName, MESSAGES)) {
        return false;
    }
    const bool isCompact = file.hasHeader && file.entry("class") == "faceCompactList";
    if (file.hasHeader && !isCompact && !ListHeader::checkClass(file, "faceList", MESSAGES)) {
        return false;
    }
    // A compact list counts offsets, one more than faces, so its count may be one larger.
    const int largestCount = dvf::limits::LIST_COUNT + (isCompact ? 1 : 0);
    int count = 0;
    if (!ListHeader::readCount(file, dvf::limits::BYTES_PER_NUMBER, largestCount, MESSAGES, &count)) {
        return false;
    }
    const std::size_t faceCount = static_cast<std::size_t>(count) - (isCompact && count != 0 ? 1 : 0);
    faces->nodes.clear();
    faces->nodeCounts.assign(faceCount, 0);
    faces->nodeOffsets.assign(faceCount, 0);
    if (count != 0) {
        std::size_t found = faceCount;
        const bool isRead = readNext(file.text, isCompact, faces, &found);
        if (found < faceCount) {
            file.text.reportShortList(faceCount, found);
        }
        if (!isRead) {
            return false;
        }
    }
    file.text.close();
    return true;
}

bool FaceList::readNext(TextSource& text, bool isCompact, FacesData* faces, std::size_t* found)
{
    if (!text.skipToList((faces->faceCount() + 1) * text.rawForm().labelSize) || (text.isBinary() && !isCompact)) {
        return false;
    }
    if (text.isBinary()) {
        return readCompactBinary(text, faces, found);
    }
    if (isCompact) {
        return readCompactAscii(text, faces, found);
    }
    // A short list is not a failure; only the number of faces shows it.
    *found = readPar(text, faces);
    return true;
}

bool FaceList::readSeq(TextSource& text, FacesData* faces)
{
    faces->nodes.resize(std::max(faces->nodes.size(), NODES_PER_FACE * faces->faceCount()));
    SequentialFaces target(faces);
    const bool isGood = walkFaces(text, true, &target);
    faces->nodes.resize(target.nodeCount());
    return isGood;
}

bool FaceList::readCompactAscii(TextSource& text, FacesData* faces, std::size_t* found)
{
    SequentialFaces target(faces);
    const bool isGood = walkFaces(text, false, &target);
    *found = target.faceCount();
    // Nothing of use follows the list; the position is left at the end of the file.
    TextSource::Chunk rest;
    while (isGood && text.nextChunk(&rest)) {
    }
    return isGood;
}

bool FaceList::readCompactBinary(TextSource& text, FacesData* faces, std::size_t* found)
{
    *found = 0;
    const std::size_t offsetCount = faces->faceCount() + 1;
    GrowingBuffer<int> offsets;
    offsets.grow(offsetCount, 0);
    if (text.readRawLabels(offsets.data(), offsetCount) != offsetCount || text.nextByte() != ')') {
        return false;
    }
    // The offsets say how many labels there are; the count before the labels only has to be there, and helps to find
    // the first of them.
    int labelCount = 0;
    if (!text.readCount(&labelCount) ||
        !text.skipToList(static_cast<std::uint32_t>(labelCount) * text.rawForm().labelSize)) {
        return false;
    }
    const std::size_t planned = risingFaces(offsets.data(), faces->faceCount());
    const std::size_t labels = readCompactNodes(text, nodesOfFaces(offsets.data(), planned), &faces->nodes);
    // guard: compact-faces-binary
    while (*found < planned && nodesOfFaces(offsets.data(), *found + 1) <= labels) {
        const std::size_t first = nodesOfFaces(offsets.data(), *found);
        faces->nodeCounts[*found] = static_cast<std::uint8_t>(nodesOfFaces(offsets.data(), *found + 1) - first);
        faces->nodeOffsets[*found] = static_cast<int>(first);
        ++*found;
    }
    return *found == faces->faceCount();
}
