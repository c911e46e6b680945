// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <cstddef>
#include <cstdint>
#include <span>
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

/// The outside of a sound group of solids: the faces that occur once among its cells.
DrawnFaces outerFaces(const HostNodeGroup& nodes, const HostElementGroup& elements);

/// The outside of each zone of a sound group of solids, which includes the faces to cells that are not in the zone.
///
/// All zones take about the time of one, since the cells are walked once for all.
/// @param zoneOfCell an index below `zoneCount` for each element, negative for those in no zone
std::vector<DrawnFaces> outerFacesOfZones(const HostNodeGroup& nodes, const HostElementGroup& elements,
                                          std::span<const std::int32_t> zoneOfCell, std::size_t zoneCount);

/// All faces of a sound group of flat elements, also those that lie on each other.
DrawnFaces flatFaces(const HostNodeGroup& nodes, const HostElementGroup& elements);
