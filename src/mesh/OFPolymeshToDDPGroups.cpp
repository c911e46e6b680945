// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"

#include "mesh/FaceGroup.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

/// Cuts a patch to the faces that the mesh has, so that its counts agree with what is delivered.
void clipToFaces(std::size_t faceCount, OFBoundary* boundary)
{
    const auto meshEnd = static_cast<std::int64_t>(faceCount);
    const std::int64_t start = boundary->startFaceIndex();
    // No patch needs more than this to reach the end of the mesh, and the sum below cannot overflow.
    const auto longest = static_cast<std::uint64_t>(meshEnd + std::abs(start));
    const auto claimed = static_cast<std::int64_t>(std::min<std::uint64_t>(boundary->faceCount(), longest));
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, meshEnd);
    const std::int64_t end = std::clamp<std::int64_t>(start + claimed, first, meshEnd);
    boundary->setStartFaceIndex(static_cast<int>(first));
    boundary->setFaceCount(static_cast<std::size_t>(end - first));
}

/// Takes the ids that name no face out of a zone, with their flip entries where it has one for each face.
void removeUnknownFaces(std::size_t faceCount, OFFaceZone* zone)
{
    std::vector<int>& ids = zone->faceIds();
    std::vector<int>& flips = zone->flipMap();
    const bool hasFlips = flips.size() == ids.size();
    std::size_t kept = 0;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        if (ids[i] >= 0 && static_cast<std::size_t>(ids[i]) < faceCount) {
            ids[kept] = ids[i];
            if (hasFlips) {
                flips[kept] = flips[i];
            }
            ++kept;
        }
    }
    ids.resize(kept);
    if (hasFlips) {
        flips.resize(kept);
    }
}

/// Stores in a patch where its nodes and faces come from, which its results need.
void storeMappings(const FaceGroup& group, const std::vector<int>& owners, OFBoundary* boundary)
{
    boundary->nodeCountPerFace() = group.faceSizes();
    boundary->faceConnectivity() = group.faceNodes();
    boundary->createNodeFaceToNodeMapping(group.nodes().size());
    for (std::size_t i = 0; i < group.nodes().size(); ++i) {
        boundary->nodeIndex(i) = group.nodes()[i];
    }
    boundary->createFaceToCellMapping(boundary->faceCount());
    const auto startFace = static_cast<std::size_t>(boundary->startFaceIndex());
    for (std::size_t i = 0; i < boundary->faceCount(); ++i) {
        // A broken `owner` file may end before the faces do; no cell has the label -1.
        boundary->cellIndex(i) = startFace + i < owners.size() ? owners[startFace + i] : -1;
    }
}

} // namespace

bool OFPolymeshToDDP::populateBoundaryGroup(OFBoundary& boundary, DDPNodeGroup* nodes, std::size_t* nodeCount,
                                            DDPElementGroup* elements, std::size_t* elementCount) const
{
    clipToFaces(m_mesh->faces().faceCount(), &boundary);
    FaceGroup group(*m_mesh, numbersFrom(boundary.startFaceIndex(), boundary.faceCount()));
    *nodeCount = group.nodes().size();
    *elementCount = boundary.faceCount();
    storeMappings(group, m_mesh->owners(), &boundary);
    group.sendNodes(*m_mesh, nodes);
    group.sendElements(numbersFrom(0, boundary.faceCount()), elements);
    return true;
}

bool OFPolymeshToDDP::populateFaceZoneGroup(OFFaceZone& zone, DDPNodeGroup* nodes, std::size_t* nodeCount,
                                            DDPElementGroup* elements, std::size_t* elementCount) const
{
    removeUnknownFaces(m_mesh->faces().faceCount(), &zone);
    FaceGroup group(*m_mesh, zone.faceIds());
    *nodeCount = group.nodes().size();
    *elementCount = zone.faceCount();
    group.sendNodes(*m_mesh, nodes);
    // All elements have the id 0: only patches number theirs, and hosts know it so.
    group.sendElements(std::vector<int>(zone.faceCount()), elements);
    return true;
}

bool OFPolymeshToDDP::removeDuplicates(std::vector<int>& values) const
{
    sortUnique(&values);
    return true;
}
