// SPDX-License-Identifier: MIT
#pragma once

#include "border/HostGeometry.h"
#include "border/HostMetaData.h"
#include "border/HostResult.h"

#include <cstdint>
#include <string>

/// Nodes of an element of this type; 0 for a general element, -1 for an unknown type.
int nodeCountOfType(std::int32_t type);

/// Finds the first fault in the arrays of one group: lengths or sums that disagree, entries out of range. If there is
/// none, every array can be walked by its counts.
///
/// @return a description of the fault, or an empty string; a group without nodes and elements is sound
std::string findGroupFault(const HostNodeGroup& nodes, const HostElementGroup& elements);

/// The part of `findGroupFault` that looks at the face tables of general elements: one polyhedron for each of them, and
/// every table as long as the sum of the one before it requires.
std::string findPolyhedraFault(const HostNodeGroup& nodes, const HostElementGroup& elements);

/// Checks a whole geometry against the declared groups.
/// @throws HostError of `Misbehaved` that names the group and the fault
void checkGeometry(const HostMetaData& metaData, const HostGeometry& geometry);

/// The values of one group of the geometry, or null if the result has none for it: face zones never have values,
/// sampled surfaces only if the result extends to them.
const HostValueGroup* valuesOfGroup(const HostMetaData& metaData, const HostResult& result, std::size_t groupIndex);

/// False for the moved points of the first state in a case with several parts: the library then uses the points of one
/// part for all, and which one depends on thread scheduling.
bool belongsToItsGroups(const HostMetaData& metaData, const HostResultInfo& info, std::int32_t stateId);

/// Checks a result against the geometry: one value group for each group except face zones, in the same order, with as
/// many items as the group has nodes or elements, or none.
///
/// Sampled surfaces may have no value group at all, as for displacements and for a result that the state lacks.
/// Displacements have as many items as the file of moved points, whatever the mesh has.
/// @throws HostError of `Misbehaved` that names the group and the fault
void checkResult(const HostMetaData& metaData, const HostGeometry& geometry, const HostResultInfo& info,
                 const HostResult& result);
