// SPDX-License-Identifier: MIT
#include "mesh/FaceGroup.h"

#include "records/Components.h"
#include "records/OFBoundary.h"

#include <algorithm>
#include <utility>

namespace {

std::vector<std::uint8_t> sizesOf(const FacesData& faces, std::span<const int> faceIds)
{
    std::vector<std::uint8_t> sizes;
    sizes.reserve(faceIds.size());
    for (const int face : faceIds) {
        sizes.push_back(faces.nodeCounts[static_cast<std::size_t>(face)]);
    }
    return sizes;
}

std::vector<int> nodesOf(const FacesData& faces, std::span<const int> faceIds)
{
    std::vector<int> nodes;
    nodes.reserve(4 * faceIds.size());
    for (const int id : faceIds) {
        const auto face = static_cast<std::size_t>(id);
        nodes.insert(nodes.end(), faces.faceNodes(face), faces.faceNodes(face) + faces.nodeCounts[face]);
    }
    return nodes;
}

} // namespace

FaceGroup::FaceGroup(const OFPolymesh& mesh, std::span<const int> faceIds)
    : m_faceNodes(nodesOf(mesh.faces(), faceIds)), m_numbering(m_faceNodes)
{
    m_elements.nodeCounts = sizesOf(mesh.faces(), faceIds);
    buildElements();
}

void FaceGroup::buildElements()
{
    m_elements.types.reserve(m_elements.nodeCounts.size());
    m_elements.connectivities.reserve(m_faceNodes.size());
    for (const int node : m_faceNodes) {
        m_elements.connectivities.push_back(m_numbering.position(node));
    }
    auto nodes = m_elements.connectivities.cbegin();
    for (const std::uint8_t size : m_elements.nodeCounts) {
        const DDPElementType type = OFBoundary::typeFromFaceNodeCount(size);
        m_elements.types.push_back(type);
        if (type == DDP_POLY) {
            m_polyhedra.nodeCounts.push_back(size);
            m_polyhedra.faceCounts.push_back(1);
            m_polyhedra.nodeCountPerFace.push_back(size);
            m_polyhedra.faceNodes.insert(m_polyhedra.faceNodes.end(), nodes, nodes + size);
        }
        nodes += size;
    }
}

void FaceGroup::sendNodes(const OFPolymesh& mesh, DDPNodeGroup* group) const
{
    std::vector<double> points;
    points.reserve(VECTOR_COMPONENTS * nodes().size());
    for (const int node : nodes()) {
        const double* const point = mesh.points().data() + VECTOR_COMPONENTS * static_cast<std::size_t>(node);
        points.insert(points.end(), point, point + VECTOR_COMPONENTS);
    }
    group->setNodes(points.data(), nodes().size());
    group->setNodeIds(numbersFrom(0, nodes().size()).data(), nodes().size());
}

void FaceGroup::sendElements(std::vector<int> elementIds, DDPElementGroup* group)
{
    m_elements.ids = std::move(elementIds);
    ::sendElements(m_elements, group);
    sendPolyhedra(m_polyhedra, group);
}
