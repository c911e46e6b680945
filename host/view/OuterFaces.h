// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <cstdint>
#include <optional>
#include <vector>

/// Faces to draw, as polygons over the points that they use.
///
/// Each face starts with a node from which a fan of triangles covers it without folds, if it has such a node.
struct DrawnFaces
{
    std::vector<std::int32_t> nodes;    ///< position in the node group of each point, in the order of first use
    std::vector<std::uint8_t> sizes;    ///< corners of each face
    std::vector<std::int32_t> corners;  ///< of all faces, as entries of `nodes`, counter-clockwise seen from outside
    std::vector<std::int32_t> elements; ///< position of the element that each face belongs to
};

/// The outside of a group of cells: the faces that occur once among them.
///
/// @param elements a sound group of solids
/// @param zone     only the cells with this part id; their outside includes the faces to the other cells
DrawnFaces outerFaces(const HostNodeGroup& nodes, const HostElementGroup& elements,
                      std::optional<std::int32_t> zone = std::nullopt);

/// All faces of a sound group of flat elements, also those that lie on each other.
DrawnFaces flatFaces(const HostNodeGroup& nodes, const HostElementGroup& elements);
