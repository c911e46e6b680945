// SPDX-License-Identifier: MIT
#pragma once

#include "sample/BoxLattice.h"
#include "sample/SampleMesh.h"

/// The slabs of a mixed mesh along x, and the mean number of cells that a cube becomes in them: 2, 6, 1, 1 and 12.
inline constexpr int MIXED_SLABS = 5;
inline constexpr double MIXED_CELLS_PER_CUBE = (2 + 6 + 1 + 1 + 12) / 5.0;

/// A box with cells of all shapes in five slabs along x: prisms, pyramids, two of hexahedra, tetrahedra.
///
/// The last hexahedra before the tetrahedra have one side that is split into triangles, so they are general polyhedra.
/// The lattice needs at least five cubes in x, one per slab.
SampleMesh makeMixedMesh(const BoxLattice& lattice);
