// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <array>
#include <cstddef>
#include <vector>

/// A node and an element group of a host, and the counts that converters report.
struct HostGroups
{
    HostNodeGroup nodes = HostNodeGroup(0);
    HostElementGroup elements = HostElementGroup(0);
    std::size_t nodeCount = 99;
    std::size_t elementCount = 99;
};

/// The tables of the polyhedra as numbers that can be compared and printed: nodes and faces of each polyhedron, nodes
/// of each face, and their labels.
using FaceTables = std::array<std::vector<int>, 4>;
FaceTables faceTables(const HostElementGroup& elements);

/// The signed volume of each delivered element, positive only if its nodes and faces are in the right order. Solids
/// have the host's faces, polyhedra those of the tables, and flat elements the volume 0.
std::vector<double> elementVolumes(const HostNodeGroup& nodes, const HostElementGroup& elements);
