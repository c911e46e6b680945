// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"
#include "border/HostMetaData.h"
#include "border/HostResult.h"

#include <cstdint>
#include <string>

/// Nodes of an element of this type; 0 for a general element, -1 for a number that is no type.
int nodeCountOfType(std::int32_t type);

/// Looks for the first fault in the arrays of one group: lengths that disagree, sums that do not come out, entries out
/// of range. After a clean check every array can be walked by its counts.
///
/// @return the fault in words, or the empty text; a group of no nodes and no elements is sound
std::string findGroupFault(const HostNodeGroup& nodes, const HostElementGroup& elements);

/// The part of `findGroupFault` that looks at the face tables of general elements: one polyhedron for each of them, and
/// every table as long as the sums of the one above it say.
std::string findPolyhedraFault(const HostNodeGroup& nodes, const HostElementGroup& elements);

/// Checks a whole geometry against the declared groups.
/// @throws HostError of `Misbehaved` that names the group and the fault
void checkGeometry(const HostMetaData& metaData, const HostGeometry& geometry);

/// The values of one group of the geometry, or null where a result has none: face zones never, and sampled surfaces
/// only if the result goes that far.
const HostValueGroup* valuesOfGroup(const HostMetaData& metaData, const HostResult& result, std::size_t groupIndex);

/// False for the moved points of the first state in a case of several parts: the library then takes those of one part
/// for all, and which one is left to its threads.
bool belongsToItsGroups(const HostMetaData& metaData, const HostResultInfo& info, std::int32_t stateId);

/// Checks a result against the geometry: one value group for each group but face zones, in the same order, with as many
/// items as the group has nodes or elements, or none.
///
/// Sampled surfaces may have no value group at all: a result that the state lacks, and the displacements, have none.
/// Displacements have as many items as the file of the moved points says, whatever the mesh has.
/// @throws HostError of `Misbehaved` that names the group and the fault
void checkResult(const HostMetaData& metaData, const HostGeometry& geometry, const HostResultInfo& info,
                 const HostResult& result);
