// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// Builds a mesh from cells that are given one by one with all their faces.
///
/// Two cells that give the same face become its owner and neighbour; a face given by only one cell is on the boundary.
/// No more than two cells may give a face, and two faces that are not the same share at most two nodes.
class SampleMeshBuilder
{
public:
    /// Adds a point and returns its label.
    int addPoint(const SamplePoint& place);

    /// The mesh, for adding many points at once; later labels continue after them.
    SampleMesh& points() { return m_mesh; }

    /// Starts the next cell. Cells are numbered in this order.
    void beginCell() { ++m_mesh.cellCount; }

    /// Adds a face of the current cell, with its nodes counter-clockwise seen from outside the cell.
    void addFace(std::span<const std::int32_t> nodes);

    /// Returns the mesh, with the patches of a box from the origin to `size`. Call once, at the end.
    SampleMesh build(const std::array<double, 3>& size);

private:
    /// A face as given by one cell.
    struct Side
    {
        std::int32_t cell;
        std::int32_t twin; ///< the same face as given by the other cell, -1 on the boundary
    };

    /// Pairs sides that are the same face seen from its two cells.
    void findTwins();
    void addInternalFaces();
    void addPatches(const std::array<double, 3>& size);
    std::span<const std::int32_t> nodesOf(std::size_t side) const;
    /// The number of the patch whose plane contains a side.
    std::size_t patchOf(std::size_t side, const std::array<double, 3>& size) const;

    SampleMesh m_mesh; ///< points and cell count only, until it is built
    std::vector<Side> m_sides;
    std::vector<std::int32_t> m_offsets = {0}; ///< start of the nodes of each side
    std::vector<std::int32_t> m_nodes;
};
