// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <array>
#include <cstddef>
#include <map>
#include <string>

/// What one group of a geometry holds, in figures.
struct GroupCounts
{
    std::size_t nodes = 0;
    std::size_t elements = 0;                          ///< cells of a part, faces of a surface
    std::map<std::string, std::size_t> elementsByType; ///< by the type's name, only those that occur
    std::array<double, 3> lower = {};                  ///< corner of the bounding box; all zero without nodes
    std::array<double, 3> upper = {};                  ///< the opposite corner
};

/// Counts a group; `surface` tells what a general element is called, polygon or polyhedron.
GroupCounts countGroup(const HostNodeGroup& nodes, const HostElementGroup& elements, bool surface);
