// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// One named array on the cells or points of a grid.
struct VtkArray
{
    std::string name;
    int components;             ///< values of one item
    std::vector<double> values; ///< `components` values per item; unknown values are quiet NaNs
    std::string unit;           ///< as text; empty if unknown
};

/// One named list of texts that belongs to a whole grid.
struct VtkTexts
{
    std::string name;
    std::vector<std::string> values;
};

/// The elements of one group in the layout of the VTK file formats.
///
/// Used for solids and surfaces; a surface uses connectivity and offsets, but not the types. All labels are 0-based
/// positions in the points of the group.
struct VtkGrid
{
    const std::vector<double>* points = nullptr; ///< x, y, z of each point; borrowed
    std::vector<std::int64_t> connectivity;      ///< nodes of all cells, cell after cell
    std::vector<std::int64_t> offsets;           ///< one past the last node of each cell
    std::vector<std::uint8_t> types;             ///< VTK cell types
    std::vector<std::int64_t> faces; ///< for each polyhedron: its number of faces, then for each its count and nodes
    std::vector<std::int64_t> faceOffsets; ///< one past the entry of each cell in `faces`, -1 for cells without one
    std::vector<std::int32_t> partIds;     ///< one per cell
    std::vector<VtkArray> cellData;        ///< besides the part ids
    std::vector<VtkArray> pointData;       ///< besides the points
    std::optional<double> time;            ///< of the state; viewers show it with the grid
    std::vector<std::int32_t> groupIds;    ///< the part ids that have a name in `texts`
    std::vector<VtkTexts> texts;

    /// True if the file needs the face arrays.
    bool hasPolyhedra() const { return !faces.empty(); }
};

/// Turns one checked group into a grid of solid cells or, if `surface`, of polygons.
///
/// The node order differs for one shape: in VTK the first triangle of a wedge faces outward, in the interface inward,
/// so both triangles are reversed. A group without part ids gets `defaultPartId` for every cell. The points are
/// borrowed from `nodes`.
VtkGrid makeVtkGrid(const HostNodeGroup& nodes, const HostElementGroup& elements, bool surface,
                    std::int32_t defaultPartId);
