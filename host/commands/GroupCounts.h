// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <array>
#include <cstddef>
#include <map>
#include <string>

/// The counts of one group of a geometry.
struct GroupCounts
{
    std::size_t nodes = 0;
    std::size_t elements = 0;                          ///< cells of a part, faces of a surface
    std::map<std::string, std::size_t> elementsByType; ///< by name of the type, only types that occur
    std::array<double, 3> lower = {};                  ///< corner of the bounding box; all zero without nodes
    std::array<double, 3> upper = {};                  ///< the opposite corner
};

/// Counts a group; `surface` decides whether a general element is called a polygon or a polyhedron.
GroupCounts countGroup(const HostNodeGroup& nodes, const HostElementGroup& elements, bool surface);

/// Adds the counts of one group to those of several, and extends their box.
void addCounts(const GroupCounts& group, GroupCounts* total);
