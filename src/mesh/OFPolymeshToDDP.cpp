// SPDX-License-Identifier: MIT
#include "mesh/OFPolymeshToDDP.h"

#include "DvnCore/Timer.h"
#include "foamfile/OFLogger.h"
#include "mesh/CellFaceTable.h"
#include "mesh/ElementBlocks.h"
#include "mesh/MeshConsistency.h"

#include <algorithm>

OFPolymeshToDDP::OFPolymeshToDDP(OFPolymesh* mesh) : m_mesh(mesh)
{
    makeConsistent(m_mesh);
}

bool OFPolymeshToDDP::createMesh()
{
    dvn::Timer timer;
    const std::size_t cellCount = m_mesh->cellCount();
    m_elements.types.resize(cellCount);
    m_elements.nodeCounts.resize(cellCount);
    OFLogger::get().track("Partion Cell Counts  ", timer.lapTime());

    CellFaceTable table(*m_mesh);
    release(&m_mesh->neighbors());
    release(&m_mesh->owners());
    double buildTime = timer.lapTime();
    OFLogger::get().track("B1 Assign CellFaces  ", buildTime);

    ElementBlocks blocks(table, m_mesh->faces(), &m_elements, &m_polyhedra);
    double storeTime = 0;
    for (std::size_t cell = 0; cell < cellCount; cell += ElementBlocks::BATCH_CELLS) {
        blocks.build(cell, std::min(cell + ElementBlocks::BATCH_CELLS, cellCount));
        buildTime += timer.lapTime();
        blocks.store();
        storeTime += timer.lapTime();
    }
    OFLogger::get().track("B2 Build Cells       ", buildTime);
    OFLogger::get().track("B3 BuildDDPMeshData  ", storeTime);
    release(&m_mesh->faces());
    finishElements(buildTime, storeTime);
    return true;
}

void OFPolymeshToDDP::finishElements(double buildTime, double storeTime)
{
    m_elements.ids = numbersFrom(0, m_elements.types.size());
    OFLogger::get().logDebug("OFPolymeshToDDP",
                             dvn::Str("-----------------------buildCells().   Time [convert].a : %1").arg(buildTime));
    OFLogger::get().logDebug("OFPolymeshToDDP",
                             dvn::Str("-----------------------buildDDPMesh(). Time [convert].b : %1").arg(storeTime));
}

bool OFPolymeshToDDP::populateNodeGroup(DDPNodeGroup* group, std::size_t* nodeCount) const
{
    const std::size_t count = m_mesh->nodeCount();
    if (nodeCount != nullptr) {
        *nodeCount = count;
    }
    group->setNodes(m_mesh->points().data(), count);
    group->setNodeIds(numbersFrom(1, count).data(), count);
    return true;
}

bool OFPolymeshToDDP::populateElementGroup(DDPElementGroup* group, std::size_t* elementCount)
{
    if (elementCount != nullptr) {
        *elementCount = m_elements.types.size();
    }
    if (m_elements.types.empty()) {
        return false;
    }
    sendElements(m_elements, group);
    release(&m_elements.types);
    release(&m_elements.ids);
    if (!m_polyhedra.faceCounts.empty()) {
        sendPolyhedra(m_polyhedra, group);
        m_polyhedra = PolyhedronArrays();
    }
    return true;
}
