// SPDX-License-Identifier: MIT
#pragma once

#include "DataProviderInterface.h"

#include <array>
#include <cstdint>
#include <vector>

/// One cell of each shape in the host's node order, side by side and apart from each other. Volume of all: 3.
///
/// The order is taken from the interface's drawing, not from any code: a tetrahedron's apex comes first and its base
/// faces away from it, all other bases are counter-clockwise seen from the top.
struct ReferenceCells
{
    std::vector<double> points;
    std::vector<std::int32_t> types = {DDP_TETRAHEDRON, DDP_PYRAMID, DDP_PENTAHEDRON, DDP_HEXAHEDRON, DDP_POLY};
    std::vector<double> volumes = {1.0 / 6, 1.0 / 3, 0.5, 1.0, 1.0};
    std::vector<std::int32_t> connectivity;
    std::vector<std::int32_t> ids = {0, 1, 2, 3, 4};
    std::vector<unsigned char> nodesPerPolyhedron = {8};
    std::vector<unsigned char> facesPerPolyhedron = {6};
    std::vector<unsigned char> nodesPerFace = {4, 4, 4, 4, 4, 4};
    std::vector<std::int32_t> faceConnectivity;

    ReferenceCells()
    {
        using Corners = std::vector<std::array<double, 3>>;
        const Corners cube = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}};
        addCell({{0, 0, 1}, {0, 0, 0}, {0, 1, 0}, {1, 0, 0}}, 0);
        addCell({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0.5, 0.5, 1}}, 2);
        addCell({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}}, 4);
        addCell(cube, 6);
        const auto first = static_cast<std::int32_t>(points.size() / 3);
        addCell(cube, 8);
        for (const std::int32_t corner : {0, 3, 2, 1, 4, 5, 6, 7, 0, 1, 5, 4, 3, 7, 6, 2, 0, 4, 7, 3, 1, 2, 6, 5}) {
            faceConnectivity.push_back(first + corner);
        }
    }

private:
    void addCell(const std::vector<std::array<double, 3>>& corners, double x)
    {
        for (const std::array<double, 3>& corner : corners) {
            connectivity.push_back(static_cast<std::int32_t>(points.size() / 3));
            points.insert(points.end(), {corner[0] + x, corner[1], corner[2]});
        }
    }
};
