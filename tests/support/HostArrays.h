// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"

#include <array>
#include <cstddef>
#include <vector>

/// A node and an element group of a host, and the counts that converters tell beside them.
struct HostGroups
{
    HostNodeGroup nodes = HostNodeGroup(0);
    HostElementGroup elements = HostElementGroup(0);
    std::size_t nodeCount = 99;
    std::size_t elementCount = 99;
};

/// The tables of the polyhedra as numbers that compare and print: nodes and faces of each polyhedron, nodes of each
/// face and their labels.
using FaceTables = std::array<std::vector<int>, 4>;
FaceTables faceTables(const HostElementGroup& elements);

/// The signed volume of each element that a host got, by the faces that the host gives a solid and by those of the
/// tables for a polyhedron: positive only if nodes and faces stand as they should. Flat elements have 0.
std::vector<double> elementVolumes(const HostNodeGroup& nodes, const HostElementGroup& elements);
