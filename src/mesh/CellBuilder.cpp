// SPDX-License-Identifier: MIT
#include "mesh/CellBuilder.h"

#include <algorithm>

DDPElementType CellBuilder::build()
{
    FaceTally tally;
    for (const CellFaceView& face : m_faces) {
        tally.add(face.nodeCount);
    }
    m_isOrdered = true;
    // Fast path for nearly every cell of most meshes: no counting, no sorting.
    if (solidOfFaces(tally) == DDP_HEXAHEDRON && isTwoLayersOfFour(m_faces) &&
        orderHexahedron(m_faces, m_solidNodes.data())) {
        m_nodes = m_solidNodes;
        return DDP_HEXAHEDRON;
    }
    collectNodes();
    m_nodes = m_nodeSet.sorted();
    const DDPElementType type = typeOfCell(m_nodes.size(), tally);
    if (type != DDP_POLY) {
        std::ranges::copy(m_nodes, m_solidNodes.begin());
        m_isOrdered = orderSolidNodes(type, m_faces, m_solidNodes.data());
        m_nodes = {m_solidNodes.data(), m_nodes.size()};
    }
    return type;
}

void CellBuilder::collectNodes()
{
    m_nodeSet.restart(labelCount(m_faces));
    for (const CellFaceView& face : m_faces) {
        for (std::size_t i = 0; i < face.nodeCount; ++i) {
            m_nodeSet.insert(face.nodes[i]);
        }
    }
}
