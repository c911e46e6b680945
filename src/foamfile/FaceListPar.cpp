// SPDX-License-Identifier: MIT
// The parallel reader of ascii faces, and the cut between two faces that it shares with the sequential ones.
#include "LibCore/LargePages.h"
#include "LibCore/Limits.h"
#include "foamfile/ChunkPasses.h"
#include "foamfile/FaceList.h"
#include "foamfile/FaceScan.h"

#include <algorithm>
#include <string_view>

namespace {

/// Chunks of one pass.
constexpr std::size_t FACE_SLOTS = 6;
/// Entries by which the faces and labels of a slot grow: more than the usual chunk holds, so this is rare.
constexpr std::size_t SLOT_FACES_STEP = 80000;
constexpr std::size_t SLOT_NODES_STEP = 640000;
/// By how much the estimate of all nodes exceeds what the first faces suggest.
constexpr double RESERVE_MARGIN = 1.125;

struct FaceSlot : ChunkSlot
{
    GrowingBuffer<std::uint8_t> nodeCounts;
    GrowingBuffer<int> nodeOffsets;
    GrowingBuffer<int> nodes;
    std::size_t faceCount = 0;
    std::size_t nodeCount = 0;
    /// The place of the faces in the list.
    std::size_t firstFace = 0;
    std::size_t firstNode = 0;

    void parse()
    {
        faceCount = 0;
        nodeCount = 0;
        if (!more) {
            return;
        }
        const char* p = chunk.begin;
        TokenScanner::skipLineFeeds(p);
        while (scanFace<TokenScanner::FaceTokenEnd::Delimiter>(p, chunk.end, this)) {
        }
    }

    bool canTake(std::size_t count) const { return nodeCount + count <= dvf::limits::FACE_NODES; }

    int* room(std::size_t count)
    {
        // guard: face-slot
        if (nodeCount + count > nodes.capacity()) {
            nodes.grow(nodeCount + std::max(count, SLOT_NODES_STEP), nodeCount);
        }
        return nodes.data() + nodeCount;
    }

    void publish(std::size_t count)
    {
        if (faceCount == nodeCounts.capacity()) {
            nodeCounts.grow(faceCount + SLOT_FACES_STEP, faceCount);
            nodeOffsets.grow(nodeCounts.capacity(), faceCount);
        }
        nodeCounts.data()[faceCount] = static_cast<std::uint8_t>(count);
        nodeOffsets.data()[faceCount] = static_cast<int>(nodeCount);
        ++faceCount;
        nodeCount += count;
    }

    /// Drops the faces after the first `limit`.
    void cutTo(std::size_t limit)
    {
        if (limit < faceCount) {
            nodeCount = static_cast<std::size_t>(nodeOffsets.data()[limit]);
            faceCount = limit;
        }
    }
};

/// The target of the passes.
class FaceTarget
{
public:
    FaceTarget(TextSource& text, FacesData* faces) : m_text(text), m_chunks(text), m_faces(faces)
    {
        m_faces->nodes.clear();
    }

    bool isFull() const { return m_facesDone == m_faces->faceCount(); }
    std::size_t facesDone() const { return m_facesDone; }

    bool fill(FaceSlot* slot) { return m_chunks.next(&slot->buffer, &slot->chunk); }

    void place(FaceSlot* slot)
    {
        // A file with more faces than it promised, or more labels than offsets can address, must not write beyond the
        // list. guard: faces-parallel
        const bool isTooMuch = m_nodesDone + slot->nodeCount > dvf::limits::FACE_NODES;
        slot->cutTo(isTooMuch ? 0 : m_faces->faceCount() - m_facesDone);
        slot->firstFace = m_facesDone;
        slot->firstNode = m_nodesDone;
        m_facesDone += slot->faceCount;
        m_nodesDone += slot->nodeCount;
    }

    /// Grows the list to what this pass needs and no further, so that memory is touched once and filled while it is in
    /// the cache.
    void makeRoom()
    {
        if (m_faces->nodes.empty()) {
            reserveNodes();
        }
        m_faces->nodes.resize(m_nodesDone);
    }

    void copy(const FaceSlot& slot) const
    {
        std::copy_n(slot.nodeCounts.data(), slot.faceCount, m_faces->nodeCounts.data() + slot.firstFace);
        std::transform(slot.nodeOffsets.data(), slot.nodeOffsets.data() + slot.faceCount,
                       m_faces->nodeOffsets.data() + slot.firstFace,
                       [base = static_cast<int>(slot.firstNode)](int offset) { return offset + base; });
        std::copy_n(slot.nodes.data(), slot.nodeCount, m_faces->nodes.data() + slot.firstNode);
    }

private:
    /// Reserves room for all nodes, estimated from the first faces, so that the list is not copied while it grows.
    void reserveNodes()
    {
        if (m_facesDone == 0) {
            return;
        }
        const double nodesPerFace = static_cast<double>(m_nodesDone) / static_cast<double>(m_facesDone);
        const double estimate = nodesPerFace * static_cast<double>(m_faces->faceCount()) * RESERVE_MARGIN;
        const auto expected =
            static_cast<std::size_t>(std::min(estimate, static_cast<double>(dvf::limits::FACE_NODES)));
        if (m_text.canHold(expected, dvf::limits::BYTES_PER_NUMBER)) {
            dvf::reserveLarge(&m_faces->nodes, expected);
        }
    }

    TextSource& m_text;
    FaceChunks m_chunks;
    FacesData* m_faces;
    std::size_t m_facesDone = 0;
    std::size_t m_nodesDone = 0;
};

} // namespace

std::size_t FaceList::readPar(TextSource& text, FacesData* faces)
{
    FaceTarget target(text, faces);
    readInPasses<FaceSlot, FACE_SLOTS>(&target);
    return target.facesDone();
}

bool FaceChunks::next(ChunkBuffer* buffer, TextSource::Chunk* chunk)
{
    TextSource::Chunk pending;
    if (m_text.isPending() && m_text.nextChunk(buffer, &pending)) {
        m_tail.append(pending.begin, pending.end);
    }
    if (!m_text.isOpen()) {
        return false;
    }
    buffer->grow(m_tail.size() + TextSource::CHUNK_BUFFER_SIZE + TextSource::LINE_BUFFER_SIZE, 0);
    std::size_t used = m_tail.copy(buffer->data(), m_tail.size());
    m_tail.clear();
    for (;;) {
        const std::size_t length = m_text.appendChunk(buffer, used);
        *chunk = {buffer->data(), buffer->data() + length};
        if (length == used) {
            return length != 0;
        }
        const std::string_view text(buffer->data(), length);
        const std::size_t close = text.substr(used).rfind(')');
        if (close != std::string_view::npos) {
            const std::string_view rest = text.substr(used + close + 1);
            m_tail.assign(rest.substr(std::min(rest.find_first_not_of('\n'), rest.size())));
            chunk->end = chunk->begin + used + close + 1;
            *chunk->end = '\0';
            return true;
        }
        used = length;
    }
}
