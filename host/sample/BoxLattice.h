// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

#include <array>
#include <cstddef>
#include <cstdint>

/// A block of equal cubes with one corner at the origin; cells and nodes are numbered with x fastest.
///
///         7--------6        sides in the order low x, high x, low y, high y, low z, high z;
///        /|       /|        the nodes of a side run counter-clockwise seen from outside
///       4--------5 |   z
///       | 3------|-2   | y
///       |/       |/    |/
///       0--------1     +--x
struct BoxLattice
{
    // A power of two: coordinates are exact in binary, and also in six decimal digits for up to 799 cells in a row.
    static constexpr double SPACING = 0.125;

    /// The nodes of one side of a cube.
    using Side = std::array<std::int32_t, 4>;

    /// The corners of each side.
    static constexpr std::array<std::array<std::size_t, 4>, 6> SIDES = {
        {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}}};

    std::array<int, 3> counts = {}; ///< cells in x, y and z

    /// All cubes of the block.
    int cellCount() const { return counts[0] * counts[1] * counts[2]; }
    /// The label of the cube in column i, row j and layer k.
    int cell(int i, int j, int k) const { return (k * counts[1] + j) * counts[0] + i; }
    /// The label of the lowest corner of that cube.
    int node(int i, int j, int k) const { return (k * (counts[1] + 1) + j) * (counts[0] + 1) + i; }

    /// The corner opposite the origin.
    std::array<double, 3> size() const { return {SPACING * counts[0], SPACING * counts[1], SPACING * counts[2]}; }

    /// The nodes of one side of the cube in column i, row j and layer k.
    Side side(int i, int j, int k, std::size_t number) const
    {
        const std::array<std::int32_t, 8> corner = {
            node(i, j, k),     node(i + 1, j, k),     node(i + 1, j + 1, k),     node(i, j + 1, k),
            node(i, j, k + 1), node(i + 1, j, k + 1), node(i + 1, j + 1, k + 1), node(i, j + 1, k + 1)};
        const std::array<std::size_t, 4>& order = SIDES[number];
        return {corner[order[0]], corner[order[1]], corner[order[2]], corner[order[3]]};
    }

    /// Appends all nodes of the lattice to the points of a mesh.
    void addPoints(SampleMesh* mesh) const
    {
        for (int k = 0; k <= counts[2]; ++k) {
            for (int j = 0; j <= counts[1]; ++j) {
                for (int i = 0; i <= counts[0]; ++i) {
                    mesh->addPoint({SPACING * i, SPACING * j, SPACING * k});
                }
            }
        }
    }
};

/// A lattice of about this many cubes, as close to a cube in shape as possible.
BoxLattice latticeOfAbout(int cubes);
