// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <cstdint>
#include <string>
#include <vector>

/// One named array on the cells or points of a grid.
struct VtkArray
{
    std::string name;
    int components;             ///< values of one item
    std::vector<double> values; ///< `components` values an item; a value that is not known is a quiet NaN
};

/// The elements of one group in the form of the VTK file formats.
///
/// Serves solids and surfaces alike: a surface uses connectivity and offsets, and its types are left aside. All labels
/// count from 0 in the points of the group.
struct VtkGrid
{
    const std::vector<double>* points = nullptr; ///< x, y, z of each point; borrowed
    std::vector<std::int64_t> connectivity;      ///< nodes of all cells, cell after cell
    std::vector<std::int64_t> offsets;           ///< behind the last node of each cell
    std::vector<std::uint8_t> types;             ///< VTK cell types
    std::vector<std::int64_t> faces; ///< for each polyhedron: its number of faces, then for each its count and nodes
    std::vector<std::int64_t> faceOffsets; ///< behind the entry of each cell in `faces`, -1 for cells that have none
    std::vector<std::int32_t> partIds;     ///< one a cell
    std::vector<VtkArray> cellData;        ///< beside the part ids
    std::vector<VtkArray> pointData;       ///< beside the points

    /// True if the face arrays belong into the file.
    bool hasPolyhedra() const { return !faces.empty(); }
};

/// Turns one checked group into a grid of solid cells or, if `surface`, of polygons.
///
/// The node order differs in one shape: VTK wants the first triangle of a wedge to face outward, the host's faces
/// inward, so both triangles are turned over. A group without part ids gets `defaultPartId` for every cell. The points
/// are borrowed from `nodes`.
VtkGrid makeVtkGrid(const HostNodeGroup& nodes, const HostElementGroup& elements, bool surface,
                    std::int32_t defaultPartId);
