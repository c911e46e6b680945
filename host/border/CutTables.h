// SPDX-License-Identifier: MIT
//
// The interface counts faces and nodes of a general element in bytes. Of a greater count the library keeps the low
// byte, and as many entries as that says (docs/decisions/0012-byte-tables-of-polyhedra.md). These functions tell such
// cells from cells that are broken in any other way.
#pragma once

#include "border/HostGeometry.h"
#include "border/HostMetaData.h"

#include <cstddef>
#include <string>
#include <vector>

/// What documents that larger counts are cut.
inline constexpr const char* CUT_TABLES = "decision 12";

/// Some elements of each element group, ascending.
using ElementsByGroup = std::vector<std::vector<std::size_t>>;

/// Finds the general elements whose face tables are cut, and empties these tables, so that all others can be walked.
///
/// Tables that disagree in any other way stay as they are, and so does their whole group.
ElementsByGroup emptyCutTables(const HostMetaData& metaData, HostGeometry* geometry);

/// Fills up the connectivity of sampled surfaces that have faces of fewer than three nodes, with the first node, which
/// is what a host finds that takes three per triangle (docs/decisions/0020-time-and-memory-in-proportion.md).
/// @return the names of these surfaces
std::vector<std::string> padShortSurfaces(const HostMetaData& metaData, HostGeometry* geometry);

/// For each element of a sound group whether it may have a face of more than 255 nodes, of which only some arrived.
///
/// Such a face loses 256 nodes or more: either it leaves at least as many edges of its cell open, or there are nodes
/// that belong to no cell.
std::vector<bool> cellsWithCutFaces(const HostNodeGroup& nodes, const HostElementGroup& elements);
