// SPDX-License-Identifier: MIT
#pragma once

#include "sample/BoxLattice.h"
#include "sample/SampleMesh.h"

#include <filesystem>

/// Writes the sampled surfaces of one time: a plane through the middle and the outlet, as triangles with T and U on
/// points.
///
/// @param folder the folder of the time in postProcessing/sampleSurface
void writeSampledSurfaces(const std::filesystem::path& folder, const BoxLattice& lattice, const SampleMesh& mesh,
                          double time);
