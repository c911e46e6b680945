// SPDX-License-Identifier: MIT
#include "mesh/OFTriSurfaceToDDP.h"

#include "LibCore/Parallel.h"
#include "mesh/MeshArrays.h"
#include "mesh/MeshConsistency.h"

#include <algorithm>

namespace {

constexpr std::size_t TRIANGLE_NODES = 3;

} // namespace

OFTriSurfaceToDDP::OFTriSurfaceToDDP(OFTriSurface* surface) : m_surface(surface)
{
    FacesData& faces = m_surface->faces();
    dropInconsistentFaces(&faces, m_surface->nodeCount());
    // The labels go to the host unchanged. A host that takes three per triangle, though a face has fewer, finds zeros
    // after them and does not read past the array.
    const std::size_t sent = faces.nodes.size();
    faces.nodes.resize(std::max(sent, TRIANGLE_NODES * faces.faceCount()));
    faces.nodes.resize(sent);
}

bool OFTriSurfaceToDDP::populateNodeAndElementGroup(DDPNodeGroup* nodes, DDPElementGroup* elements,
                                                    std::size_t* nodeCount, std::size_t* elementCount) const
{
    // Separate objects: tasks that end together must not write to one word. They show that a task has run.
    bool nodesDone = false;
    bool elementsDone = false;
    dvf::invokeAll(
        [&] {
            (void)populateNodeGroup(nodes, nodeCount);
            nodesDone = true;
        },
        [&] {
            (void)populateElementGroup(elements, elementCount);
            elementsDone = true;
        });
    return nodesDone && elementsDone;
}

bool OFTriSurfaceToDDP::populateNodeGroup(DDPNodeGroup* nodes, std::size_t* nodeCount) const
{
    *nodeCount = m_surface->nodeCount();
    nodes->setNodes(m_surface->points().data(), *nodeCount);
    nodes->setNodeIds(numbersFrom(1, *nodeCount).data(), *nodeCount);
    return true;
}

bool OFTriSurfaceToDDP::populateElementGroup(DDPElementGroup* elements, std::size_t* elementCount) const
{
    const FacesData& faces = m_surface->faces();
    *elementCount = faces.faceCount();
    elements->setUniformElements(DDP_TRIANGLE, *elementCount, faces.nodes.data(), faces.nodes.size(),
                                 numbersFrom(1, *elementCount).data());
    return true;
}
