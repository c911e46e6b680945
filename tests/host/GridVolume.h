// SPDX-License-Identifier: MIT
#pragma once

#include "output/VtkGrid.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

using FaceList = std::vector<std::vector<std::size_t>>;

// The faces of VTK's cells as its user's guide draws them, each counter-clockwise seen from outside.
inline const std::map<int, FaceList> VTK_FACES = {
    {10, {{0, 1, 3}, {1, 2, 3}, {2, 0, 3}, {0, 2, 1}}},
    {12, {{0, 4, 7, 3}, {1, 2, 6, 5}, {0, 1, 5, 4}, {3, 7, 6, 2}, {0, 3, 2, 1}, {4, 5, 6, 7}}},
    {13, {{0, 1, 2}, {3, 5, 4}, {0, 3, 4, 1}, {1, 4, 5, 2}, {2, 5, 3, 0}}},
    {14, {{0, 3, 2, 1}, {0, 1, 4}, {1, 2, 4}, {2, 3, 4}, {3, 0, 4}}}};

inline double determinant(const double* a, const double* b, const double* c)
{
    return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
}

/// Volume under one face, a fan of tetrahedra to the origin; positive if the face looks away from there.
inline double volumeUnder(const VtkGrid& grid, const std::vector<std::int64_t>& nodes)
{
    double sum = 0;
    for (std::size_t k = 1; k + 1 < nodes.size(); ++k) {
        const double* const points = grid.points->data();
        sum += determinant(points + 3 * nodes[0], points + 3 * nodes[k], points + 3 * nodes[k + 1]) / 6;
    }
    return sum;
}

inline double typedVolume(const VtkGrid& grid, std::size_t cell)
{
    const std::int64_t first = cell == 0 ? 0 : grid.offsets[cell - 1];
    double sum = 0;
    for (const std::vector<std::size_t>& face : VTK_FACES.at(grid.types[cell])) {
        std::vector<std::int64_t> nodes;
        nodes.reserve(face.size());
        for (const std::size_t corner : face) {
            nodes.push_back(grid.connectivity[static_cast<std::size_t>(first) + corner]);
        }
        sum += volumeUnder(grid, nodes);
    }
    return sum;
}

inline double polyhedronVolume(const VtkGrid& grid, std::size_t at)
{
    double sum = 0;
    const std::int64_t faceCount = grid.faces[at++];
    for (std::int64_t face = 0; face < faceCount; ++face) {
        const auto first = grid.faces.begin() + static_cast<std::ptrdiff_t>(at) + 1;
        sum += volumeUnder(grid, std::vector(first, first + grid.faces[at]));
        at += static_cast<std::size_t>(grid.faces[at]) + 1;
    }
    return sum;
}

/// The signed volume of each cell, by VTK's idea of its faces; positive only if all of them look outward.
inline std::vector<double> cellVolumes(const VtkGrid& grid)
{
    std::vector<double> volumes;
    std::size_t nextPolyhedron = 0;
    for (std::size_t cell = 0; cell < grid.types.size(); ++cell) {
        const bool polyhedron = grid.hasPolyhedra() && grid.faceOffsets[cell] >= 0;
        volumes.push_back(polyhedron ? polyhedronVolume(grid, nextPolyhedron) : typedVolume(grid, cell));
        nextPolyhedron = polyhedron ? static_cast<std::size_t>(grid.faceOffsets[cell]) : nextPolyhedron;
    }
    return volumes;
}
