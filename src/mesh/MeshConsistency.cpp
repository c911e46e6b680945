// SPDX-License-Identifier: MIT
#include "mesh/MeshConsistency.h"

#include "LibCore/Parallel.h"
#include "foamfile/OFLogger.h"

#include <algorithm>
#include <limits>
#include <span>
#include <utility>

namespace {

/// Entries per task: enough to hide the cost of the task.
constexpr std::size_t CHECK_GRAIN = 65536;

/// How many values a byte can have.
constexpr int BYTE_VALUES = 256;

/// Labels are ints, so points beyond that cannot be named.
int largestCount(std::size_t count)
{
    return static_cast<int>(std::min<std::size_t>(count, std::numeric_limits<int>::max()));
}

bool isLabel(int label, int nodeCount)
{
    // guard: label-range
    return label >= 0 && label < nodeCount;
}

bool isInside(const FacesData& faces, std::size_t face, int nodesSize)
{
    const int offset = faces.nodeOffsets[face];
    // guard: face-offset
    return offset >= 0 && offset <= nodesSize - faces.nodeCounts[face];
}

/// Where the labels of a face that is inside end: where those of the next face begin. Those of the last face end with
/// the list, provided that the labels beyond its count, which is a byte, are a multiple of 256.
int endOfFace(const FacesData& faces, std::size_t face, int nodesSize)
{
    const int begin = faces.nodeOffsets[face];
    const int counted = begin + faces.nodeCounts[face];
    if (face + 1 < faces.nodeOffsets.size()) {
        const int next = faces.nodeOffsets[face + 1];
        return next > begin && next <= nodesSize ? next : counted;
    }
    // Faces missing from a short file begin at 0.
    const bool isFilled = begin != 0 || face == 0;
    return isFilled && (nodesSize - counted) % BYTE_VALUES == 0 ? nodesSize : counted;
}

/// True if `isGood` holds for all indices below `count`. The loop has no early end, which makes it several times
/// faster.
template <typename Predicate>
bool allOf(std::size_t count, const Predicate& isGood)
{
    return dvf::allOf(count, CHECK_GRAIN, [&isGood](const dvf::IndexRange& range) {
        int bad = 0;
        for (std::size_t i = range.begin(); i != range.end(); ++i) {
            bad |= isGood(i) ? 0 : 1;
        }
        return bad == 0;
    });
}

void makeConsistent(FacesData* faces, std::size_t pointCount)
{
    const std::size_t faceCount = std::min(faces->nodeCounts.size(), faces->nodeOffsets.size());
    faces->nodeCounts.resize(faceCount);
    faces->nodeOffsets.resize(faceCount);
    const int nodesSize = largestCount(faces->nodes.size());
    const int nodeCount = largestCount(pointCount);
    for (std::size_t face = 0; face < faceCount; ++face) {
        if (!isInside(*faces, face, nodesSize)) {
            faces->nodeOffsets[face] = 0;
            faces->nodeCounts[face] = 0;
        }
        // The labels kept move to the front of the face's own range. If damaged faces overlap, only labels that are
        // already good are overwritten.
        int* const nodes = faces->nodes.data() + faces->nodeOffsets[face];
        const int* const end = std::remove_if(nodes, nodes + faces->nodeCounts[face],
                                              [nodeCount](int label) { return !isLabel(label, nodeCount); });
        faces->nodeCounts[face] = static_cast<std::uint8_t>(end - nodes);
    }
}

/// Every cell of a sound mesh has several faces, so sound meshes stay far below the bound. The number of faces counts
/// too, because a mesh of one cell has no neighbours, and its owners may be in a form that is not read.
void limitCellCount(OFPolymesh* mesh)
{
    const auto claimed = static_cast<int>(mesh->cellCount());
    const int bound =
        largestCount(std::max(mesh->owners().size() + mesh->neighbors().size(), mesh->faces().faceCount()));
    // guard: cell-count
    if (claimed < 0) {
        mesh->setCellCount(0);
    } else if (claimed > bound) {
        OFLogger::get().logInfo(
            "OFPolymeshToDDP",
            dvn::Str("The mesh claims %1 cells, but its faces can form no more than %2. The count is cut.")
                .arg(claimed)
                .arg(bound));
        mesh->setCellCount(bound);
    }
}

} // namespace

bool areConsistent(const FacesData& faces, std::size_t nodeCount)
{
    const int labelEnd = largestCount(nodeCount);
    const int nodesSize = largestCount(faces.nodes.size());
    const int* const nodes = faces.nodes.data();
    return faces.nodeCounts.size() == faces.nodeOffsets.size() &&
           allOf(faces.faceCount(), [&faces, nodesSize](std::size_t i) { return isInside(faces, i, nodesSize); }) &&
           allOf(faces.nodes.size(), [nodes, labelEnd](std::size_t i) { return isLabel(nodes[i], labelEnd); });
}

void makeConsistent(OFPolymesh* mesh)
{
    if (!areConsistent(mesh->faces(), mesh->nodeCount())) {
        makeConsistent(&mesh->faces(), mesh->nodeCount());
    }
    // guard: owner-count
    if (mesh->owners().size() > mesh->faces().faceCount()) {
        mesh->owners().resize(mesh->faces().faceCount());
    }
    // guard: neighbour-count
    if (mesh->neighbors().size() > mesh->owners().size()) {
        mesh->neighbors().resize(mesh->owners().size());
    }
    limitCellCount(mesh);
}

void dropInconsistentFaces(FacesData* faces, std::size_t nodeCount)
{
    const bool hasEmptyFace = std::ranges::find(faces->nodeCounts, 0) != faces->nodeCounts.end();
    if (!hasEmptyFace && areConsistent(*faces, nodeCount)) {
        return;
    }
    const int labelEnd = largestCount(nodeCount);
    const int nodesSize = largestCount(faces->nodes.size());
    const std::size_t faceCount = std::min(faces->nodeCounts.size(), faces->nodeOffsets.size());
    FacesData kept;
    int keptEnd = 0; // labels shared by damaged faces go to the first of them
    for (std::size_t face = 0; face < faceCount; ++face) {
        const int begin = faces->nodeOffsets[face];
        // guard: surface-faces
        if (begin < keptEnd || !isInside(*faces, face, nodesSize)) {
            continue;
        }
        const int end = endOfFace(*faces, face, nodesSize);
        const std::span<const int> labels(faces->nodes.data() + begin, faces->nodes.data() + end);
        if (!labels.empty() &&
            std::ranges::all_of(labels, [labelEnd](int label) { return isLabel(label, labelEnd); })) {
            kept.nodeCounts.push_back(faces->nodeCounts[face]);
            kept.nodeOffsets.push_back(static_cast<int>(kept.nodes.size()));
            kept.nodes.insert(kept.nodes.end(), labels.begin(), labels.end());
            keptEnd = end;
        }
    }
    *faces = std::move(kept);
}
