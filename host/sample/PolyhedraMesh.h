// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

/// A cube filled with truncated octahedra of 14 faces; those on the boundary are cut.
///
/// The centres form a body-centred lattice of n = `cubesPerEdge` cubes in each direction, corners and centres, which
/// makes `(n + 1)^3 + n^3` cells. All coordinates are multiples of 1/16, so the volumes add up to the cube exactly.
SampleMesh makePolyhedraMesh(int cubesPerEdge);
