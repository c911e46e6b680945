// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"

#include "LibCore/Limits.h"
#include "mesh/FaceGroup.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>
#include <numeric>
#include <utility>

namespace {

struct FaceRange
{
    std::int64_t first;
    std::int64_t end;

    std::size_t size() const { return static_cast<std::size_t>(end - first); }
};

/// The faces of a patch that the mesh has. A patch may claim more; the claim stays in its record, since the mesh may be
/// whole when it is read again.
FaceRange rangeOfPatch(const OFBoundary& boundary, std::size_t faceCount)
{
    const auto meshEnd = static_cast<std::int64_t>(faceCount);
    const std::int64_t start = boundary.startFaceIndex();
    // Enough to reach the end of the mesh from anywhere, and small enough that the sum below cannot overflow.
    const auto longest = static_cast<std::uint64_t>(meshEnd + std::abs(start));
    const auto claimed = static_cast<std::int64_t>(std::min<std::uint64_t>(boundary.faceCount(), longest));
    // guard: patch-range
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, meshEnd);
    const std::int64_t end = std::clamp<std::int64_t>(start + claimed, first, meshEnd);
    return {first, end};
}

/// The positions of the ranges in ascending order of size; equal ones keep their order.
std::vector<std::size_t> shortestFirst(const std::vector<FaceRange>& ranges)
{
    std::vector<std::size_t> order(ranges.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, std::less<>(), [&ranges](std::size_t i) { return ranges[i].size(); });
    return order;
}

std::size_t labelsOf(const std::vector<std::uint8_t>& nodeCounts)
{
    return std::accumulate(nodeCounts.begin(), nodeCounts.end(), std::size_t{0});
}

/// The faces of a zone that the mesh has. A zone that repeats faces gets no more labels than the mesh has.
std::vector<int> facesOfZone(const OFFaceZone& zone, const FacesData& mesh)
{
    std::vector<int> faces;
    faces.reserve(zone.faceCount());
    // With so few faces the limit cannot be reached, so the labels of the mesh are not counted.
    const std::size_t mostLabels = zone.faceIds().size() * std::numeric_limits<std::uint8_t>::max();
    std::size_t labelsLeft = mostLabels <= mesh.faceCount() ? mostLabels : labelsOf(mesh.nodeCounts);
    for (const int face : zone.faceIds()) {
        const auto index = static_cast<std::size_t>(face);
        // guard: zone-faces
        if (face >= 0 && index < mesh.faceCount() && mesh.nodeCounts[index] <= labelsLeft) {
            labelsLeft -= mesh.nodeCounts[index];
            faces.push_back(face);
        }
    }
    return faces;
}

/// Stores in a patch which nodes and cells it comes from; its results need that.
void storeMappings(const std::vector<int>& owners, const std::vector<int>& faces, FaceGroup* group,
                   OFBoundary* boundary)
{
    boundary->nodeCountPerFace() = group->faceSizes();
    boundary->faceConnectivity() = std::move(group->faceNodes());
    boundary->createNodeFaceToNodeMapping(group->nodes().size());
    for (std::size_t i = 0; i < group->nodes().size(); ++i) {
        boundary->nodeIndex(i) = group->nodes()[i];
    }
    boundary->createFaceToCellMapping(faces.size());
    for (std::size_t i = 0; i < faces.size(); ++i) {
        // A broken `owner` file may end before the faces do. No cell has the label -1. guard: patch-owners
        const auto face = static_cast<std::size_t>(faces[i]);
        boundary->cellIndex(i) = face < owners.size() ? owners[face] : -1;
    }
}

} // namespace

bool OFPolymeshToDDP::populateBoundaryGroup(OFBoundary& boundary, DDPNodeGroup* nodes, std::size_t* nodeCount,
                                            DDPElementGroup* elements, std::size_t* elementCount,
                                            std::size_t mostFaces) const
{
    const FaceRange range = rangeOfPatch(boundary, m_mesh->faces().faceCount());
    const std::size_t count = std::min(range.size(), mostFaces);
    const std::vector<int> faces = numbersFrom(static_cast<int>(range.first), count);
    FaceGroup group(*m_mesh, faces);
    *nodeCount = group.nodes().size();
    *elementCount = faces.size();
    storeMappings(m_mesh->owners(), faces, &group, &boundary);
    group.sendNodes(*m_mesh, nodes);
    group.sendElements(numbersFrom(0, faces.size()), elements);
    return true;
}

std::vector<std::size_t> OFPolymeshToDDP::facesPerPatch(const std::vector<OFBoundary>& boundaries) const
{
    const std::vector<std::uint8_t>& nodeCounts = m_mesh->faces().nodeCounts;
    std::vector<FaceRange> ranges;
    ranges.reserve(boundaries.size());
    for (const OFBoundary& boundary : boundaries) {
        ranges.push_back(rangeOfPatch(boundary, nodeCounts.size()));
    }
    std::size_t facesLeft = dvf::limits::SHARE_OF_PATCHES * nodeCounts.size();
    std::size_t labelsLeft = dvf::limits::SHARE_OF_PATCHES * labelsOf(nodeCounts);
    std::vector<std::size_t> counts(boundaries.size());
    // A patch that claims too much comes late and gets what the others leave over.
    for (const std::size_t patch : shortestFirst(ranges)) {
        const auto first = static_cast<std::size_t>(ranges[patch].first);
        // guard: patch-share
        const std::size_t most = std::min(facesLeft, ranges[patch].size());
        std::size_t& count = counts[patch];
        for (; count < most && nodeCounts[first + count] <= labelsLeft; ++count) {
            labelsLeft -= nodeCounts[first + count];
        }
        facesLeft -= count;
    }
    return counts;
}

bool OFPolymeshToDDP::populateFaceZoneGroup(OFFaceZone& zone, DDPNodeGroup* nodes, std::size_t* nodeCount,
                                            DDPElementGroup* elements, std::size_t* elementCount) const
{
    const std::vector<int> faces = facesOfZone(zone, m_mesh->faces());
    FaceGroup group(*m_mesh, faces);
    *nodeCount = group.nodes().size();
    *elementCount = faces.size();
    group.sendNodes(*m_mesh, nodes);
    // Compatibility (docs/compatibility.md, "face zone ids 0").
    group.sendElements(std::vector<int>(faces.size()), elements);
    return true;
}

bool OFPolymeshToDDP::removeDuplicates(std::vector<int>& values) const
{
    sortUnique(&values);
    return true;
}
