// SPDX-License-Identifier: MIT
#include "mesh/ElementBlocks.h"

#include "LibCore/LargePages.h"
#include "LibCore/Parallel.h"

#include <algorithm>
#include <cstdint>

namespace {

/// Cells of a block: about 0.1 ms of work, far above the cost of a task.
constexpr std::size_t BLOCK_CELLS = 1024;

/// Compatibility (docs/compatibility.md, "byte tables"): the host takes counts as bytes, so a larger count keeps its
/// low 8 bits. Every array holds that many entries, and the rest is left out.
constexpr std::size_t lowByte(std::size_t count)
{
    return count & 0xFF;
}

/// Resizes for the first `done` of `total` cells. When storage has to grow, it grows to what all cells will need if the
/// rest is like those so far, but not beyond `most`, since the first cells of a mesh may be its largest. It always
/// grows enough that moves stay rare.
template <typename T>
void grow(std::vector<T>* values, std::size_t size, std::size_t done, std::size_t total, std::size_t most)
{
    if (size > values->capacity()) {
        const double expected = static_cast<double>(size) / static_cast<double>(done) * static_cast<double>(total);
        const double limited = std::min(expected * 1.01, static_cast<double>(most));
        dvf::reserveLarge(values, std::max({size, static_cast<std::size_t>(limited), values->capacity() * 3 / 2}));
    }
    values->resize(size);
}

} // namespace

ElementBlocks::Extent& ElementBlocks::Extent::operator+=(const Extent& other)
{
    nodes += other.nodes;
    polyhedra += other.polyhedra;
    polyFaces += other.polyFaces;
    polyFaceNodes += other.polyFaceNodes;
    return *this;
}

ElementBlocks::ElementBlocks(const CellFaceTable& table, const FacesData& faces, ElementArrays* elements,
                             PolyhedronArrays* polyhedra)
    : m_table(table), m_faces(faces), m_elements(*elements), m_polyhedra(*polyhedra),
      m_blocks(BATCH_CELLS / BLOCK_CELLS)
{}

void ElementBlocks::build(std::size_t firstCell, std::size_t endCell)
{
    m_usedBlocks = (endCell - firstCell + BLOCK_CELLS - 1) / BLOCK_CELLS;
    for (std::size_t i = 0; i < m_usedBlocks; ++i) {
        m_blocks[i].firstCell = firstCell + i * BLOCK_CELLS;
        m_blocks[i].endCell = std::min(m_blocks[i].firstCell + BLOCK_CELLS, endCell);
    }
    // Memory that is new to the process is several times slower than memory used before, so the arrays grow while the
    // cells are built, by what the cells so far suggest. A task writes its own blocks and the entries of their cells,
    // none of which are in those arrays.
    dvf::invokeAll([this, endCell] { growArrays(expectedEnd(endCell), endCell); },
                   [this] { dvf::forEachIndex(m_usedBlocks, [this](std::size_t i) { build(&m_blocks[i]); }); });
}

ElementBlocks::Extent ElementBlocks::expectedEnd(std::size_t endCell) const
{
    const auto expected = [this, endCell](std::size_t stored) {
        return m_storedCells == 0 ? 0 : stored * endCell / m_storedCells;
    };
    return {expected(m_stored.nodes), expected(m_stored.polyhedra), expected(m_stored.polyFaces),
            expected(m_stored.polyFaceNodes)};
}

void ElementBlocks::build(Block* block) const
{
    CellBuilder& builder = block->builder;
    block->nodes.clear();
    block->size = Extent();
    for (std::size_t cell = block->firstCell; cell != block->endCell; ++cell) {
        m_table.startCell(cell, m_faces, &builder);
        const DDPElementType type = builder.build();
        const std::size_t nodeCount = lowByte(builder.nodes().size());
        m_elements.types[cell] = type;
        m_elements.nodeCounts[cell] = static_cast<std::uint8_t>(nodeCount);
        block->nodes.insert(block->nodes.end(), builder.nodes().data(), builder.nodes().data() + nodeCount);
        if (type == DDP_POLY) {
            block->size += {0, 1, lowByte(builder.faces().size()), lowByte(labelCount(builder.faces()))};
        }
    }
    block->size.nodes = block->nodes.size();
}

void ElementBlocks::store()
{
    for (std::size_t i = 0; i < m_usedBlocks; ++i) {
        m_blocks[i].start = m_stored;
        m_stored += m_blocks[i].size;
        m_storedCells = m_blocks[i].endCell;
    }
    growArrays(m_stored, m_storedCells);
    // The blocks fill consecutive ranges, which do not overlap.
    dvf::forEachIndex(m_usedBlocks, [this](std::size_t i) { store(&m_blocks[i]); });
    m_usedBlocks = 0;
}

void ElementBlocks::growArrays(const Extent& end, std::size_t doneCells)
{
    const std::size_t total = m_table.cellCount();
    // Each face has two sides at most, and a cell names no more nodes than the sides of its faces do.
    const std::size_t mostFaces = 2 * m_faces.faceCount();
    const std::size_t mostNodes = 2 * m_faces.nodes.size();
    grow(&m_elements.connectivities, end.nodes, doneCells, total, mostNodes);
    grow(&m_polyhedra.nodeCounts, end.polyhedra, doneCells, total, total);
    grow(&m_polyhedra.faceCounts, end.polyhedra, doneCells, total, total);
    grow(&m_polyhedra.nodeCountPerFace, end.polyFaces, doneCells, total, mostFaces);
    grow(&m_polyhedra.faceNodes, end.polyFaceNodes, doneCells, total, mostNodes);
}

void ElementBlocks::store(Block* block) const
{
    std::copy(block->nodes.begin(), block->nodes.end(), m_elements.connectivities.data() + block->start.nodes);
    if (block->size.polyhedra != 0) {
        storePolyhedra(block);
    }
}

void ElementBlocks::storePolyhedra(Block* block) const
{
    Extent at = block->start;
    for (std::size_t cell = block->firstCell; cell != block->endCell; ++cell) {
        if (m_elements.types[cell] != DDP_POLY) {
            continue;
        }
        m_table.startCell(cell, m_faces, &block->builder);
        const CellFaceViews faces = block->builder.faces();
        const std::size_t faceCount = lowByte(faces.size());
        const std::size_t faceNodeCount = lowByte(labelCount(faces));
        m_polyhedra.nodeCounts[at.polyhedra] = m_elements.nodeCounts[cell];
        m_polyhedra.faceCounts[at.polyhedra] = static_cast<std::uint8_t>(faceCount);
        for (std::size_t i = 0; i < faceCount; ++i) {
            m_polyhedra.nodeCountPerFace[at.polyFaces + i] = faces[i].nodeCount;
        }
        copyFaceNodes(faces, faceNodeCount, m_polyhedra.faceNodes.data() + at.polyFaceNodes);
        at += {0, 1, faceCount, faceNodeCount};
    }
}
