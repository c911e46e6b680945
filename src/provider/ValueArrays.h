// SPDX-License-Identifier: MIT
#pragma once

#include "casemodel/OFPart.h"
#include "casemodel/OFSampledSurface.h"
#include "interface/DataProviderInterface.h"
#include "records/OFResult.h"

#include <cstddef>
#include <vector>

// The arrays in which values go to the host: item after item, the components of an item next to each other, and the
// undefined mark for a missing value.

/// Number of values for the nodes or the elements of a part, depending on the mapping of the result; 0 for a part whose
/// mesh was never built.
std::size_t valueCount(const OFResult& result, const OFPart& part);

/// Undefined values for `itemCount` items; none for a result without components.
std::vector<double> undefinedItems(std::size_t itemCount, int dimension);

/// Undefined values for the nodes or the elements of a part, depending on the mapping of the result. A part whose mesh
/// was never built has none.
std::vector<double> undefinedValues(const OFResult& result, const OFPart& part);

/// The same for a patch. The number of its faces is that of the built mesh: one that a file claims must not size an
/// array.
std::vector<double> undefinedValues(const OFResult& result, const OFBoundary& boundary);

/// The same for a sampled surface, which has none before it is read.
std::vector<double> undefinedValues(const OFResult& result, const OFSampledSurface& surface);

/// Hands the values to the host; they replace those that the group was given before.
void deliver(const std::vector<double>& values, int dimension, DDPResultValueGroup* group);

/// The same, and frees the array at once: the host has its copy.
void deliverAndRelease(std::vector<double>& values, int dimension, DDPResultValueGroup* group);
