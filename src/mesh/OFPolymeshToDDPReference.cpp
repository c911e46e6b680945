// SPDX-License-Identifier: MIT
//
// The reference conversion: serves tests as a second path. Hosts get `createMesh`.
#include "mesh/OFPolymeshToDDP.h"

#include "DvnCore/Timer.h"
#include "LibCore/Parallel.h"

#include <algorithm>
#include <cassert>

namespace {

/// Eight chunks: cell objects for an eighth of the mesh exist at a time.
constexpr std::size_t CHUNK_COUNT = 8;

void sortByCell(PolyDataVector* polys)
{
    dvf::sortPar(polys, [](const PolyData& a, const PolyData& b) { return a.cellIndex < b.cellIndex; });
}

} // namespace

bool OFPolymeshToDDP::createMeshInChunks()
{
    dvn::Timer timer;
    double buildTime = 0;
    double storeTime = 0;
    std::size_t firstCell = 0;
    for (const std::size_t chunk : createCellsChunks(m_mesh->cellCount())) {
        (void)allocateCells(chunk); // these steps cannot fail
        // The sequential form, so that each cell comes out the same on every run.
        (void)assignCellFacesSeq(static_cast<int>(firstCell), static_cast<int>(firstCell + chunk));
        (void)buildElementData(firstCell);
        buildTime += timer.lapTime();
        (void)buildDDPMeshData(firstCell, m_elements.connectivities.size());
        (void)BuildDDPMeshForPolys(firstCell, m_polyhedra.faceCounts.size(), m_polyhedra.nodeCountPerFace.size(),
                                   m_polyhedra.faceNodes.size());
        storeTime += timer.lapTime();
        firstCell += chunk;
    }
    release(&m_cells);
    release(&m_mesh->neighbors());
    release(&m_mesh->owners());
    release(&m_mesh->faces());
    finishElements(buildTime, storeTime);
    return true;
}

std::vector<std::size_t> OFPolymeshToDDP::createCellsChunks(std::size_t cellCount) const
{
    std::vector<std::size_t> chunks(CHUNK_COUNT, cellCount / CHUNK_COUNT);
    chunks.back() = cellCount - (CHUNK_COUNT - 1) * (cellCount / CHUNK_COUNT);
    return chunks;
}

bool OFPolymeshToDDP::allocateCells(std::size_t count)
{
    m_cells.resize(count);
    return true;
}

bool OFPolymeshToDDP::assignCellFaces(int first, int last)
{
    return assignCellFacesPar(first, last);
}

bool OFPolymeshToDDP::assignCellFacesPar(int first, int last)
{
    assert(static_cast<std::size_t>(last - first) <= m_cells.size());
    const OFInsertCellFacesDataFunctor insert = {
        &m_cells, &m_mesh->owners(), &m_mesh->neighbors(), m_mesh->neighbors().size(), first, last};
    dvf::forEachRange(m_mesh->owners().size(), insert);
    return true;
}

bool OFPolymeshToDDP::assignCellFacesSeq(int first, int last)
{
    assert(static_cast<std::size_t>(last - first) <= m_cells.size());
    const OFInsertCellFacesDataFunctor insert = {
        &m_cells, &m_mesh->owners(), &m_mesh->neighbors(), m_mesh->neighbors().size(), first, last};
    insert(dvf::IndexRange(0, m_mesh->owners().size()));
    return true;
}

void OFInsertCellFacesDataFunctor::operator()(const dvf::IndexRange& faces) const
{
    for (std::size_t face = faces.begin(); face != faces.end(); ++face) {
        insertSide((*owners)[face], face, true);
        if (face < neighborCount) {
            insertSide((*neighbors)[face], face, false);
        }
    }
}

void OFInsertCellFacesDataFunctor::insertSide(int cell, std::size_t face, bool isOwner) const
{
    if (cell >= firstCell && cell < endCell) {
        (*cells)[static_cast<std::size_t>(cell - firstCell)].cellFaces().push_back({static_cast<int>(face), isOwner});
    }
}

bool OFPolymeshToDDP::buildElementData(std::size_t firstCell)
{
    m_polys.clear();
    return buildElementDataPar(firstCell);
}

bool OFPolymeshToDDP::buildElementDataPar(std::size_t firstCell)
{
    const OFBuildElementDataFunctor build = {&m_cells, &m_mesh->faces(), &m_polys, typesFrom(firstCell)};
    dvf::forEachRange(m_cells.size(), build);
    sortByCell(&m_polys);
    return true;
}

bool OFPolymeshToDDP::buildElementDataSeq(std::size_t firstCell)
{
    const OFBuildElementDataFunctor build = {&m_cells, &m_mesh->faces(), &m_polys, typesFrom(firstCell)};
    build(dvf::IndexRange(0, m_cells.size()));
    return true;
}

/// The types of the current chunk, whose cells begin with `firstCell`.
DDPElementType* OFPolymeshToDDP::typesFrom(std::size_t firstCell)
{
    m_elements.types.resize(std::max(m_elements.types.size(), firstCell + m_cells.size()));
    return m_elements.types.data() + firstCell;
}

void OFBuildElementDataFunctor::operator()(const dvf::IndexRange& range) const
{
    for (std::size_t i = range.begin(); i != range.end(); ++i) {
        // A cell that is not the solid its faces suggest is kept as it is.
        (void)(*cells)[i].buildElementData(static_cast<int>(i), types, polys, faces);
    }
}

bool OFPolymeshToDDP::buildDDPMeshData(std::size_t firstCell, std::size_t nodeBase)
{
    const std::size_t count = m_cells.size();
    if (count == 0) {
        return true;
    }
    m_elements.nodeCounts.resize(firstCell + count);
    std::uint8_t* const nodeCounts = m_elements.nodeCounts.data() + firstCell;
    dvf::forEachIndex(count, [this, nodeCounts](std::size_t i) {
        nodeCounts[i] = static_cast<std::uint8_t>(m_cells[i].elementNodes().size());
    });
    std::vector<int> offsets(count);
    m_elements.connectivities.resize(
        dvn_exclusive_partial_sum(nodeCounts, count, static_cast<int>(nodeBase), offsets.data()));
    // Compatibility (docs/compatibility.md, "byte tables"): the slot of a cell has the size of the low byte of its
    // count.
    dvf::forEachIndex(count, [this, nodeCounts, &offsets](std::size_t i) {
        std::copy_n(m_cells[i].elementNodes().begin(), nodeCounts[i], m_elements.connectivities.begin() + offsets[i]);
        m_cells[i].clear();
    });
    return true;
}

bool OFPolymeshToDDP::BuildDDPMeshForPolys(std::size_t firstCell, std::size_t polyBase, std::size_t faceBase,
                                           std::size_t nodeBase)
{
    const std::size_t count = m_polys.size();
    if (count == 0) {
        return true;
    }
    m_polyhedra.nodeCounts.resize(polyBase + count);
    m_polyhedra.faceCounts.resize(polyBase + count);
    std::vector<std::uint8_t> faceNodeCounts(count);
    std::uint8_t* const faceCounts = m_polyhedra.faceCounts.data() + polyBase;
    dvf::forEachIndex(count, [&, faceCounts](std::size_t i) {
        const PolyData& poly = m_polys[i];
        faceNodeCounts[i] = static_cast<std::uint8_t>(poly.nodeCount);
        faceCounts[i] = static_cast<std::uint8_t>(poly.faceCount);
        m_polyhedra.nodeCounts[polyBase + i] =
            m_elements.nodeCounts[static_cast<std::size_t>(poly.cellIndex) + firstCell];
    });
    std::vector<int> faceOffsets(count);
    std::vector<int> nodeOffsets(count);
    m_polyhedra.nodeCountPerFace.resize(
        dvn_exclusive_partial_sum(faceCounts, count, static_cast<int>(faceBase), faceOffsets.data()));
    m_polyhedra.faceNodes.resize(
        dvn_exclusive_partial_sum(faceNodeCounts.data(), count, static_cast<int>(nodeBase), nodeOffsets.data()));
    // As with the nodes, slots have the size of the low byte.
    dvf::forEachIndex(count, [&, faceCounts](std::size_t i) {
        const PolyData& poly = m_polys[i];
        std::copy_n(poly.nodeCountPerFace.begin(), faceCounts[i],
                    m_polyhedra.nodeCountPerFace.begin() + faceOffsets[i]);
        std::copy_n(poly.faceNodes.begin(), faceNodeCounts[i], m_polyhedra.faceNodes.begin() + nodeOffsets[i]);
    });
    m_polys.clear();
    return true;
}
