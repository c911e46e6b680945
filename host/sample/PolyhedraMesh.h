// SPDX-License-Identifier: MIT
#pragma once

#include "sample/SampleMesh.h"

/// A cube filled with truncated octahedra of 14 faces; those on the boundary are cut off by it.
///
/// The centres form a body-centred lattice of `cubesPerEdge` cubes in each direction, corners and middles, which makes
/// `(n + 1)^3 + n^3` cells. All coordinates are multiples of 1/16, so the volumes add up to the cube exactly.
SampleMesh makePolyhedraMesh(int cubesPerEdge);
