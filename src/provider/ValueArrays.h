// SPDX-License-Identifier: MIT
#pragma once

#include "casemodel/OFPart.h"
#include "casemodel/OFSampledSurface.h"
#include "interface/DataProviderInterface.h"
#include "records/OFResult.h"

#include <cstddef>
#include <vector>

// The arrays in which values travel to the host: item after item, the components of an item next to each other, and the
// undefined mark where there is no value.

/// Number of values for the nodes or the elements of a part, as the result is mapped; 0 for a part whose mesh was never
/// built.
std::size_t valueCount(const OFResult& result, const OFPart& part);

/// Undefined values for so many items; none for a result without components.
std::vector<double> undefinedItems(std::size_t itemCount, int dimension);

/// Undefined values for the nodes or the elements of a part, as the result is mapped. A part whose mesh was never built
/// has none.
std::vector<double> undefinedValues(const OFResult& result, const OFPart& part);

/// The same for a patch. Its faces are counted by what a built mesh has left in it: the number that a file claims is no
/// size for an array.
std::vector<double> undefinedValues(const OFResult& result, const OFBoundary& boundary);

/// The same for a sampled surface, which has none before it was read.
std::vector<double> undefinedValues(const OFResult& result, const OFSampledSurface& surface);

/// Hands the values to the host, in place of what the group was given before.
void deliver(const std::vector<double>& values, int dimension, DDPResultValueGroup* group);

/// The same, and frees the array at once: the host has its copy.
void deliverAndRelease(std::vector<double>& values, int dimension, DDPResultValueGroup* group);
