// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

#include <array>
#include <cstdint>
#include <span>
#include <vector>

/// Makes a mesh of cells that are given one by one with all their faces.
///
/// Two cells that give the same face become its owner and neighbour; a face that one cell alone gives lies on the
/// boundary. No more than two cells may give a face, and two faces that are not the same share at most two nodes.
class SampleMeshBuilder
{
public:
    /// Adds a point and returns its label.
    int addPoint(const SamplePoint& place);

    /// Points that are there already; labels go on behind them.
    SampleMesh& points() { return m_mesh; }

    /// Starts the next cell. Cells are numbered in this order.
    void beginCell() { ++m_mesh.cellCount; }

    /// A face of the present cell, its nodes counter-clockwise seen from outside the cell.
    void addFace(std::span<const std::int32_t> nodes);

    /// The mesh, with the patches of a box that reaches from the origin to `size`. Call once, at the end.
    SampleMesh build(const std::array<double, 3>& size);

private:
    /// A face as one cell gives it.
    struct Side
    {
        std::int32_t cell;
        std::int32_t twin; ///< the same face as the other cell gives it, -1 on the boundary
    };

    /// Pairs the sides that are the same face, seen from its two cells.
    void findTwins();
    void addInternalFaces();
    void addPatches(const std::array<double, 3>& size);
    std::span<const std::int32_t> nodesOf(std::size_t side) const;
    /// The number of the patch whose plane a side lies in.
    std::size_t patchOf(std::size_t side, const std::array<double, 3>& size) const;

    SampleMesh m_mesh; ///< points and cell count only, until it is built
    std::vector<Side> m_sides;
    std::vector<std::int32_t> m_offsets = {0}; ///< start of the nodes of each side
    std::vector<std::int32_t> m_nodes;
};
