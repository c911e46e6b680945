// SPDX-License-Identifier: MIT
#pragma once

#include "foamfile/FacesData.h"
#include "interface/DataProviderInterface.h"
#include "mesh/CellKernel.h"
#include "mesh/NodeSet.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Turns cells into elements, one at a time, in storage that it reuses. For one thread at a time.
class CellBuilder
{
public:
    /// Starts a cell of `faceCount` faces, each of which is then set by `setFace`.
    void startCell(std::size_t faceCount) { m_faces.resize(faceCount); }
    void setFace(std::size_t i, const FacesData& faces, std::size_t faceIndex, bool isOwner)
    {
        m_faces[i] = {faces.faceNodes(faceIndex), faces.nodeCounts[faceIndex], isOwner};
    }
    CellFaceViews faces() const { return m_faces; }

    /// Finds the type of the cell and the nodes of its element.
    DDPElementType build();

    /// The element's nodes: in the host's order for a solid, the distinct nodes in ascending order for a polyhedron.
    /// Valid until the next `build`.
    std::span<const int> nodes() const { return m_nodes; }
    /// False if the faces of a solid do not form it: its nodes are then in ascending order, partly overwritten.
    bool isOrdered() const { return m_isOrdered; }

private:
    void collectNodes();

    std::vector<CellFaceView> m_faces;
    std::array<int, MAX_SOLID_NODES> m_solidNodes = {};
    NodeSet m_nodeSet;
    std::span<const int> m_nodes;
    bool m_isOrdered = false;
};
