// SPDX-License-Identifier: MIT
#include "mesh/OFTriSurfaceToDDP.h"

#include "mesh/MeshArrays.h"
#include "mesh/MeshConsistency.h"

#include <tbb/parallel_invoke.h>
#include <tbb/task_group.h>

OFTriSurfaceToDDP::OFTriSurfaceToDDP(OFTriSurface* surface) : m_surface(surface)
{
    dropInconsistentFaces(&m_surface->faces(), m_surface->points().size() / 3);
}

bool OFTriSurfaceToDDP::populateNodeAndElementGroup(DDPNodeGroup* nodes, DDPElementGroup* elements,
                                                    std::size_t* nodeCount, std::size_t* elementCount) const
{
    // Separate objects, since tasks that end together must not write to one word. They tell that a task has run.
    bool nodesDone = false;
    bool elementsDone = false;
    tbb::task_group_context context;
    tbb::parallel_invoke(
        [&] {
            (void)populateNodeGroup(nodes, nodeCount);
            nodesDone = true;
        },
        [&] {
            (void)populateElementGroup(elements, elementCount);
            elementsDone = true;
        },
        context);
    return nodesDone && elementsDone;
}

bool OFTriSurfaceToDDP::populateNodeGroup(DDPNodeGroup* nodes, std::size_t* nodeCount) const
{
    *nodeCount = m_surface->points().size() / 3;
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
