// SPDX-License-Identifier: MIT
#pragma once

#include "mesh/CellBuilder.h"
#include "mesh/CellFaceTable.h"
#include "mesh/MeshArrays.h"

#include <cstddef>
#include <vector>

/// Turns the cells of a mesh into elements, some ten thousand at a time.
///
/// `build` works on blocks of cells in parallel. Each block collects the nodes of its elements in its own storage,
/// which stays in the cache and is reused. `store` then knows how much each block has and copies them all to their
/// final place. `build` only counts the face tables of polyhedra; `store` writes them straight from the faces.
class ElementBlocks
{
public:
    /// Cells of one call of `build`: few enough for the collected nodes to stay in the cache.
    static constexpr std::size_t BATCH_CELLS = 65536;

    /// All arguments must outlive this object. `types` and `nodeCounts` of `elements` already have one entry per cell.
    ElementBlocks(const CellFaceTable& table, const FacesData& faces, ElementArrays* elements,
                  PolyhedronArrays* polyhedra);

    /// Builds the cells from `firstCell` up to but excluding `endCell`, at most `BATCH_CELLS`. Batches follow each
    /// other without a gap.
    void build(std::size_t firstCell, std::size_t endCell);
    /// Appends the elements of the last `build` to the arrays.
    void store();

private:
    /// Sizes of, or positions in, the arrays that grow with each batch.
    struct Extent
    {
        std::size_t nodes = 0;
        std::size_t polyhedra = 0;
        std::size_t polyFaces = 0;
        std::size_t polyFaceNodes = 0;

        Extent& operator+=(const Extent& other);
    };

    /// Consecutive cells that one thread works on at a time.
    struct Block
    {
        std::size_t firstCell = 0;
        std::size_t endCell = 0;
        CellBuilder builder;
        std::vector<int> nodes;
        Extent size;
        Extent start; ///< where the block's part of each array begins
    };

    void build(Block* block) const;
    void store(Block* block) const;
    void storePolyhedra(Block* block) const;
    void growArrays(const Extent& end, std::size_t doneCells);
    Extent expectedEnd(std::size_t endCell) const;

    const CellFaceTable& m_table;
    const FacesData& m_faces;
    ElementArrays& m_elements;
    PolyhedronArrays& m_polyhedra;
    std::vector<Block> m_blocks;
    std::size_t m_usedBlocks = 0;
    Extent m_stored;
    std::size_t m_storedCells = 0;
};
