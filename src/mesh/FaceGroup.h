// SPDX-License-Identifier: MIT
#pragma once

#include "interface/DataProviderInterface.h"
#include "mesh/LocalNumbering.h"
#include "mesh/MeshArrays.h"
#include "mesh/OFPolymesh.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// A set of faces cut out of a mesh: a surface with its own nodes, numbered from 0 in the order of their labels.
///
/// Faces keep their file order of nodes; owners and neighbours play no part. A face that is neither triangle nor
/// quadrilateral is delivered as a polyhedron of one face, in the connectivity and in the face tables.
class FaceGroup
{
public:
    /// @param faceIds faces of the mesh, in the order of the elements
    FaceGroup(const OFPolymesh& mesh, std::span<const int> faceIds);

    /// The nodes of all faces as labels of the mesh, face after face; the caller may move from it at the end.
    std::vector<int>& faceNodes() { return m_faceNodes; }
    const std::vector<std::uint8_t>& faceSizes() const { return m_elements.nodeCounts; }
    /// The distinct nodes as labels of the mesh, in ascending order.
    const std::vector<int>& nodes() const { return m_numbering.labels(); }

    /// Hands over the points, with ids from 0.
    void sendNodes(const OFPolymesh& mesh, DDPNodeGroup* group) const;
    /// Hands over elements with these ids, and always the polyhedra as well, even if there are none.
    void sendElements(std::vector<int> elementIds, DDPElementGroup* group);

private:
    void buildElements();

    ElementArrays m_elements;
    PolyhedronArrays m_polyhedra;
    std::vector<int> m_faceNodes;
    LocalNumbering m_numbering;
};
